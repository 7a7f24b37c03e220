#include "link/session.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "link/codec.h"
#include "link/decoders.h"
#include "link/frame_reader.h"
#include "link/protocol.h"
#include "link/wire.h"

namespace lumeth {

namespace {

// Location of the framing's own log lines.
constexpr std::string_view kFramingLocation = "Receive Buffer";
// Activity-log location of the download milestones.
constexpr std::string_view kActivityLocation = "Server Module Download";

} // namespace

LinkSession::LinkSession(PanelStore& store, LinkState& state, SessionObserver& observer,
                         size_t maxMessage)
    : m_store(store), m_state(state), m_observer(observer), m_maxMessage(maxMessage) {}

LinkSession::Received LinkSession::Receive(std::string_view bytes) {
    std::string& buffer = m_state.receiveBuffer;
    // Decoding only removes bytes from the front: whatever was removed past
    // the last end marker shortens the unterminated tail with it.
    m_unterminated = std::min(m_unterminated, buffer.size());
    // A message of m_maxMessage bytes has at most m_maxMessage - 1 before its
    // end marker: a run that long without one, ended or not, is no message.
    bool tooLong = false;
    size_t from = 0;
    for (size_t end = bytes.find(static_cast<char>(kEndMarker)); end != std::string_view::npos;
         end = bytes.find(static_cast<char>(kEndMarker), from)) {
        tooLong = tooLong || m_unterminated + (end - from) >= m_maxMessage;
        m_unterminated = 0;
        from = end + 1;
    }
    m_unterminated += bytes.size() - from;
    if (tooLong || m_unterminated >= m_maxMessage) {
        const size_t dropped = buffer.size() + bytes.size();
        buffer.clear();
        buffer.shrink_to_fit();
        m_unterminated = 0;
        m_observer.WriteErrorLog("Message Too Long " + std::to_string(dropped) + " bytes",
                                 kFramingLocation);
        return Received::MessageTooLong;
    }
    buffer.append(bytes);
    return Received::Buffered;
}

void LinkSession::DropFront(size_t count) {
    m_state.receiveBuffer.erase(0, count);
}

void LinkSession::DecodeNext() {
    try {
        DecodeStep();
    } catch (const std::bad_alloc&) {
        m_observer.ReportError("Error Processing Command", "Connection Error",
                               Failure{ErrorCode::OutOfMemory, "allocation failed"});
    } catch (const std::exception& e) {
        m_observer.ReportError("Error Processing Command", "Connection Error",
                               Failure{ErrorCode::InvalidProcedureCall, e.what()});
    }
}

void LinkSession::DecodeStep() {
    std::string& buffer = m_state.receiveBuffer;
    if (buffer.empty()) {
        return;
    }
    // Every pass either returns or removes at least one byte, so the loop ends.
    for (;;) {
        const FrontOfBuffer front = ReadFront(buffer, CutRule::OnceEndArrives);
        switch (front.kind) {
        case FrontOfBuffer::Kind::Garbage: {
            const bool nothingElse = front.length == buffer.size();
            DropFront(front.length);
            m_observer.WriteErrorLog("Invalid Data " + std::to_string(front.length) + " bytes",
                                     kFramingLocation);
            if (nothingElse) {
                return;
            }
            continue;
        }
        case FrontOfBuffer::Kind::Cut:
            // A new command byte inside the frame: the frame before it was
            // cut short and is dropped.
            m_observer.WriteErrorLog("Incomplete Message " + wire::HexByte(front.command),
                                     kFramingLocation);
            DropFront(front.length);
            continue;
        case FrontOfBuffer::Kind::Partial:
            return; // the rest of the frame has not arrived yet
        case FrontOfBuffer::Kind::Frame:
            HandleFront(front.length);
            return;
        }
    }
}

void LinkSession::HandleFront(size_t length) {
    const std::string& buffer = m_state.receiveBuffer;
    const auto command = static_cast<uint8_t>(buffer[0]);
    if (IsOneByte(command)) {
        DropFront(1);
        if (command == Byte(Command::Poll)) {
            Queue(std::string(1, Char(Command::PollAnswer)));
        }
        m_state.acknowledged = false;
        return;
    }
    // Decoding only reads the frame: it is decoded where it lies and taken
    // out of the buffer before anything is reported or stored.
    Decoded decoded = decode::Frame(std::string_view(buffer).substr(0, length), m_store);
    DropFront(length);
    Apply(std::move(decoded));
}

void LinkSession::Apply(Decoded&& decoded) {
    for (const Problem& problem : decoded.problems) {
        if (const auto* line = std::get_if<LogLine>(&problem)) {
            m_observer.WriteErrorLog(line->message, line->location);
        } else {
            const auto& report = std::get<ErrorReport>(problem);
            m_observer.ReportError(report.location, report.category, report.failure);
        }
    }
    if (decoded.identityQuery) {
        Queue(codec::IdentityAnswer());
        RequestEverything();
    }
    if (decoded.again) {
        RequestParts(PartSet{*decoded.again});
    }
    const Part part = decoded.part;
    if (auto* password = std::get_if<std::string>(&decoded.value)) {
        m_state.serverPassword = std::move(*password);
        m_state.passwordReceived = true;
    } else if (!std::holds_alternative<std::monostate>(decoded.value)) {
        m_observer.PartArriving(part);
        StorePart(m_store, part, std::move(decoded.value));
    }
    if (!decoded.complete) {
        return;
    }
    const PartWire& wire = Wire(part);
    (wire.mask == Mask::A ? m_state.pendingA : m_state.pendingC) &= ~wire.bit;
    if (part != Part::Password) {
        m_observer.LogActivity(Info(part).logText, kActivityLocation);
    }
    m_observer.PartReceived(part);
}

std::vector<std::string> LinkSession::TakeOutgoing() {
    std::vector<std::string> out;
    out.swap(m_outgoing);
    return out;
}

void LinkSession::Connected() {
    m_state.receiveBuffer.clear();
}

void LinkSession::Disconnected() {
    m_state.receiveBuffer.clear();
    m_state.enteredPassword.clear();
    m_state.passwordReceived = false;
}

void LinkSession::RequestData(uint32_t maskA, uint32_t maskB, uint32_t maskC) {
    Queue(codec::DataRequest(maskA, maskB, maskC));
    m_state.pendingA = maskA;
    m_state.pendingB = maskB;
    m_state.pendingC = maskC;
}

void LinkSession::RequestParts(PartSet parts) {
    const RequestMasks masks = MasksFor(parts);
    RequestData(masks.a, masks.b, masks.c);
}

void LinkSession::RequestEverything() {
    RequestParts(kAllParts);
}

void LinkSession::SendPassword() {
    Queue(codec::PasswordMessage(m_state.serverPassword));
}

std::vector<std::string> LinkSession::BuildApplyMessages() const {
    std::vector<std::string> out;
    for (codec::Upload& upload : codec::UploadMessages(m_store))
        out.push_back(std::move(upload.message));
    return out;
}

std::vector<codec::Upload> LinkSession::BuildApplySteps(PartSet parts) const {
    return codec::UploadMessages(m_store, parts);
}

void LinkSession::Queue(std::string message) {
    m_outgoing.push_back(std::move(message));
}

} // namespace lumeth
