#include "tools/sim/sim_session.h"

#include "link/codec.h"
#include "link/decoders.h"
#include "link/protocol.h"
#include "link/wire.h"

namespace lumeth::sim {

namespace {

// The problems the administrator's decoder found in an upload, for the log.
std::string Describe(const std::vector<Problem>& problems) {
    std::string text;
    for (const Problem& problem : problems) {
        if (!text.empty()) {
            text += "; ";
        }
        if (const auto* line = std::get_if<LogLine>(&problem)) {
            text += line->message + (line->location.empty() ? "" : " (" + line->location + ")");
        } else {
            const auto& report = std::get<ErrorReport>(problem);
            text += report.location + ": " + report.failure.LogMessage();
        }
    }
    return text;
}

} // namespace

std::string Hex(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() * 3);
    for (char c : bytes) {
        if (!out.empty()) {
            out.push_back(' ');
        }
        out += wire::HexByte(static_cast<uint8_t>(c));
    }
    return out;
}

SimSession::SimSession(SimState& state, SimSessionObserver& observer)
    : m_state(state), m_observer(observer) {}

void SimSession::Start() {
    Queue(codec::IdentityQuery(), false);
}

void SimSession::Receive(std::string_view bytes) {
    m_reader.Append(bytes);
    while (auto event = m_reader.Next()) {
        Handle(*event);
    }
}

void SimSession::PollTick() {
    if (m_pollOutstanding) {
        ++m_stats.missingPollAnswers;
        Log("no poll answer (F4) since the last poll");
    }
    ++m_stats.polls;
    m_pollOutstanding = true;
    Queue(std::string(1, Char(Command::Poll)), false);
}

std::vector<OutMessage> SimSession::TakeOutgoing() {
    std::vector<OutMessage> out;
    out.swap(m_outgoing);
    return out;
}

void SimSession::Queue(std::string bytes, bool answer) {
    m_outgoing.push_back({std::move(bytes), answer});
}

void SimSession::Log(const std::string& line) {
    m_observer.Log(line);
}

void SimSession::BadInput(const std::string& kind, const std::string& detail, size_t bytes) {
    m_observer.BadInput(kind, kind + detail, bytes);
}

void SimSession::Handle(const FrameEvent& event) {
    switch (event.kind) {
    case FrameEvent::Kind::Frame:
        m_observer.FrameIn(event.bytes);
        HandleFrame(event.bytes);
        break;
    case FrameEvent::Kind::Garbage:
        m_stats.garbageBytes += event.dropped;
        BadInput("Invalid Data", std::string(" ") + std::to_string(event.dropped) + " bytes",
                 event.dropped);
        break;
    case FrameEvent::Kind::Cut:
        ++m_stats.cutFrames;
        BadInput("Incomplete Message " + wire::HexByte(event.command),
                 " (" + std::to_string(event.dropped) + " bytes dropped)", event.dropped);
        break;
    case FrameEvent::Kind::Overlong:
        ++m_stats.cutFrames;
        BadInput("frame " + wire::HexByte(event.command),
                 " longer than " + std::to_string(event.dropped - 1) +
                     " bytes without an end marker, dropped",
                 event.dropped);
        break;
    }
}

void SimSession::HandleFrame(const std::string& frame) {
    const auto command = static_cast<Command>(static_cast<uint8_t>(frame[0]));
    switch (command) {
    case Command::Identity:
        if (frame == codec::IdentityAnswer()) {
            m_identified = true;
        } else {
            ++m_stats.badFrames;
            BadInput("unexpected identity answer", std::string(" ") + Hex(frame), frame.size());
        }
        return;
    case Command::DataRequest:
        HandleRequest(frame);
        return;
    case Command::PollAnswer:
        m_pollOutstanding = false;
        return;
    case Command::Poll:
        Queue(std::string(1, Char(Command::PollAnswer)), false);
        return;
    case Command::Acknowledge1:
    case Command::Acknowledge3:
        return;
    case Command::Password:
    case Command::DisplayLists:
    case Command::UserGroups:
    case Command::ButtonData:
        HandleUpload(frame);
        return;
    case Command::AlphaTable:
        break;
    }
    ++m_stats.badFrames;
    BadInput("unknown command " + wire::HexByte(Byte(command)),
             " dropped (" + std::to_string(frame.size()) + " bytes)", frame.size());
}

void SimSession::HandleRequest(const std::string& frame) {
    const std::optional<RequestMasks> masks = codec::ParseDataRequest(frame);
    if (!masks) {
        ++m_stats.badFrames;
        BadInput("bad data request", " dropped: " + Hex(frame), frame.size());
        return;
    }
    ++m_stats.requests;
    ForEachPart(PartsIn(*masks), [&](Part part) {
        Queue(m_state.Answer(part), true);
        ++m_stats.answers;
    });
}

void SimSession::HandleUpload(const std::string& frame) {
    // The administrator's own decoder decides whether the message is valid;
    // what it would ask for again is ignored.
    Decoded decoded = decode::Frame(frame, m_state.store());
    const std::string name = "upload " + wire::HexByte(static_cast<uint8_t>(frame[0]));
    if (!decoded.complete) {
        ++m_stats.uploadsRejected;
        const std::string problems = Describe(decoded.problems);
        BadInput(name + " rejected",
                 " (" + std::to_string(frame.size()) + " bytes)" +
                     (problems.empty() ? std::string() : ": " + problems),
                 frame.size());
        return;
    }
    m_state.Replace(decoded.part, std::move(decoded.value));
    ++m_stats.uploadsAccepted;
    Log(name + " accepted (" + std::to_string(frame.size()) + " bytes)");
    if (!m_state.lastPersistError().empty()) {
        Log("state file not written: " + m_state.lastPersistError());
    }
    Queue(std::string(1, Char(Command::Acknowledge1)), false);
}

} // namespace lumeth::sim
