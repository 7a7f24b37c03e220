#include "link/session.h"

#include <new>
#include <stdexcept>

#include "link/codec.h"
#include "link/decoders.h"

namespace lumeth {

namespace {

// Location of the framing's own log lines.
constexpr std::string_view kFramingLocation = "Receive Buffer";

bool TopBit(char c) {
    return (static_cast<unsigned char>(c) & 0x80) != 0;
}

std::string HexByte(uint8_t b) {
    static const char* const kDigits = "0123456789ABCDEF";
    std::string out;
    if (b >= 16) {
        out.push_back(kDigits[b >> 4]);
    }
    out.push_back(kDigits[b & 15]);
    return out;
}

using Handler = void (*)(LinkSession&, SessionObserver&, std::string_view);

struct Route {
    uint8_t command;
    Handler handler;
};

void Ignore(LinkSession&, SessionObserver&, std::string_view) {}

// Complete frames by command byte. A server's 0xF2 is consumed whatever its
// length; commands not listed are dropped without a log line.
constexpr Route kRoutes[] = {
    {0x80, decode::Password},        {0x81, decode::Identity}, {0xCC, decode::UserGroups},
    {0xDF, decode::DisplayLists},    {0xF2, Ignore},           {0xFC, decode::AlphaTable},
    {0xFD, decode::ButtonTemplates},
};

} // namespace

LinkSession::LinkSession(PanelStore& store, LinkState& state, SessionObserver& observer)
    : m_store(store), m_state(state), m_observer(observer) {}

void LinkSession::Receive(std::string_view bytes) {
    m_state.receiveBuffer.append(bytes);
}

std::string LinkSession::TrimBuffer(size_t count) {
    std::string& buffer = m_state.receiveBuffer;
    if (count >= buffer.size()) {
        std::string all = std::move(buffer);
        buffer.clear();
        return all;
    }
    std::string head = buffer.substr(0, count);
    buffer.erase(0, count);
    return head;
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
        size_t garbage = 0;
        while (garbage < buffer.size() && !TopBit(buffer[garbage])) {
            ++garbage;
        }
        if (garbage > 0) {
            const bool nothingElse = garbage == buffer.size();
            TrimBuffer(garbage);
            m_observer.WriteErrorLog("Invalid Data " + std::to_string(garbage) + " bytes",
                                     kFramingLocation);
            if (nothingElse) {
                return;
            }
            continue;
        }

        const auto command = static_cast<uint8_t>(buffer[0]);
        if (command == 0xF5) {
            TrimBuffer(1);
            Queue(std::string(1, static_cast<char>(0xF4)));
            m_state.acknowledged = false;
            return;
        }
        if (command == 0xF4 || command == 0xF1 || command == 0xF3) {
            TrimBuffer(1);
            m_state.acknowledged = false;
            return;
        }

        const size_t length = codec::FindEndOfMessage(buffer);
        if (length == 0) {
            return; // the rest of the frame has not arrived yet
        }
        if (command != 0x81) {
            size_t cut = 0;
            for (size_t i = 1; i + 1 < length; ++i) {
                if (TopBit(buffer[i])) {
                    cut = i;
                    break;
                }
            }
            if (cut > 0) {
                // A new command byte inside the frame: the frame before it
                // was cut short and is dropped.
                m_observer.WriteErrorLog("Incomplete Message " + HexByte(command),
                                         kFramingLocation);
                TrimBuffer(cut);
                continue;
            }
        }
        const std::string message = TrimBuffer(length);
        Dispatch(command, message);
        return;
    }
}

void LinkSession::Dispatch(uint8_t command, std::string_view message) {
    for (const Route& route : kRoutes) {
        if (route.command == command) {
            route.handler(*this, m_observer, message);
            return;
        }
    }
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

void LinkSession::RequestEverything() {
    RequestData(request::kEverythingA, 0, request::kEverythingC);
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

std::vector<LinkSession::ApplyStep> LinkSession::BuildApplySteps() const {
    std::vector<ApplyStep> steps;
    for (codec::Upload& upload : codec::UploadMessages(m_store))
        steps.push_back({std::move(upload.message), upload.failureLocation, upload.status});
    return steps;
}

void LinkSession::Queue(std::string message) {
    m_outgoing.push_back(std::move(message));
}

} // namespace lumeth
