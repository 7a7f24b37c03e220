#include "tools/sim/sim_session.h"

#include <cstdio>

#include "link/codec.h"
#include "link/session.h"
#include "link/wire.h"

namespace lumeth::sim {

namespace {

std::string HexByte(uint8_t b) {
    char text[4];
    std::snprintf(text, sizeof text, "%02X", b);
    return text;
}

// Collects what the administrator's handler made of an upload.
class UploadCheck : public SessionObserver {
public:
    bool changed = false;
    Part part = Part::Password;
    std::string problems;

    void PartReceived(Part p) override {
        changed = true;
        part = p;
    }
    void WriteErrorLog(std::string_view message, std::string_view location) override {
        Add(std::string(message) + (location.empty() ? "" : " (" + std::string(location) + ")"));
    }
    void ReportError(std::string_view location, std::string_view, const Failure& failure) override {
        Add(std::string(location) + ": " + failure.LogMessage());
    }
    void LogActivity(std::string_view, std::string_view) override {}

private:
    void Add(const std::string& text) {
        if (!problems.empty()) {
            problems += "; ";
        }
        problems += text;
    }
};

constexpr AnswerKind kAnswerOrder[] = {
    AnswerKind::Password,    AnswerKind::InputAlphas, AnswerKind::OutputAlphas,
    AnswerKind::OptoAlphas,  AnswerKind::RelayAlphas, AnswerKind::InputLists,
    AnswerKind::OutputLists, AnswerKind::OptoLists,   AnswerKind::RelayLists,
    AnswerKind::UserGroups,  AnswerKind::Templates,
};

uint32_t Read28(std::string_view m, size_t index) {
    uint32_t value = 0;
    for (size_t k = 0; k < 4; ++k) {
        value |= static_cast<uint32_t>(static_cast<uint8_t>(m[index + k]) & 127u) << (7 * k);
    }
    return value;
}

} // namespace

std::string Hex(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() * 3);
    for (char c : bytes) {
        if (!out.empty()) {
            out.push_back(' ');
        }
        out += HexByte(static_cast<uint8_t>(c));
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
    Queue(std::string(1, static_cast<char>(0xF5)), false);
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

void SimSession::Handle(const FrameEvent& event) {
    switch (event.kind) {
    case FrameEvent::Kind::Frame:
        m_observer.FrameIn(event.bytes);
        HandleFrame(event.bytes);
        break;
    case FrameEvent::Kind::Garbage:
        m_stats.garbageBytes += event.dropped;
        Log("Invalid Data " + std::to_string(event.dropped) + " bytes");
        break;
    case FrameEvent::Kind::Cut:
        ++m_stats.cutFrames;
        Log("Incomplete Message " + HexByte(event.command) + " (" + std::to_string(event.dropped) +
            " bytes dropped)");
        break;
    case FrameEvent::Kind::Overlong:
        ++m_stats.cutFrames;
        Log("frame " + HexByte(event.command) + " longer than " +
            std::to_string(event.dropped - 1) + " bytes without an end marker, dropped");
        break;
    }
}

void SimSession::HandleFrame(const std::string& frame) {
    const auto command = static_cast<uint8_t>(frame[0]);
    switch (command) {
    case 0x81:
        if (frame == codec::IdentityAnswer()) {
            m_identified = true;
        } else {
            ++m_stats.badFrames;
            Log("unexpected identity answer " + Hex(frame));
        }
        break;
    case 0xF2:
        HandleRequest(frame);
        break;
    case 0xF4:
        m_pollOutstanding = false;
        break;
    case 0xF5:
        Queue(std::string(1, static_cast<char>(0xF4)), false);
        break;
    case 0xF1:
    case 0xF3:
        break;
    case 0x80:
    case 0xDF:
    case 0xCC:
    case 0xFD:
        HandleUpload(frame);
        break;
    default:
        ++m_stats.badFrames;
        Log("unknown command " + HexByte(command) + " dropped (" + std::to_string(frame.size()) +
            " bytes)");
        break;
    }
}

void SimSession::HandleRequest(const std::string& frame) {
    if (frame.size() != 17 || wire::Checksum(frame, 2) != static_cast<uint8_t>(frame[15])) {
        ++m_stats.badFrames;
        Log("bad data request dropped: " + Hex(frame));
        return;
    }
    const uint32_t maskA = Read28(frame, 1);
    const uint32_t maskC = static_cast<uint32_t>(frame[9]) | static_cast<uint32_t>(frame[10]) << 7;
    ++m_stats.requests;
    for (AnswerKind kind : kAnswerOrder) {
        const RequestBit bit = RequestBitOf(kind);
        if (((bit.mask == 'A' ? maskA : maskC) & bit.bit) != 0) {
            Queue(m_state.Answer(kind), true);
            ++m_stats.answers;
        }
    }
}

void SimSession::HandleUpload(const std::string& frame) {
    const auto command = static_cast<uint8_t>(frame[0]);
    PanelStore scratch = m_state.ScratchFor(command);
    LinkState link;
    UploadCheck check;
    {
        // The administrator's own download handler decides whether the
        // message is valid; what it would send (re-requests) is ignored.
        LinkSession session(scratch, link, check);
        session.Receive(frame);
        session.DecodeNext();
    }

    const std::string name = "upload " + HexByte(command);
    bool accepted = false;
    if (check.changed) {
        const PartInfo& info = Info(check.part);
        switch (info.kind) {
        case PartKind::Password:
            accepted = command == 0x80;
            if (accepted) {
                m_state.ReplacePassword(link.serverPassword);
            }
            break;
        case PartKind::DisplayLists:
            accepted = command == 0xDF;
            if (accepted) {
                m_state.ReplaceDisplayLists(*info.subType, scratch);
            }
            break;
        case PartKind::UserGroups:
            accepted = command == 0xCC;
            if (accepted) {
                m_state.ReplaceUserGroups(scratch);
            }
            break;
        case PartKind::Templates:
            accepted = command == 0xFD;
            if (accepted) {
                m_state.ReplaceTemplates(scratch);
            }
            break;
        case PartKind::Alphas:
            break;
        }
    }
    if (!accepted) {
        ++m_stats.uploadsRejected;
        Log(name + " rejected (" + std::to_string(frame.size()) + " bytes)" +
            (check.problems.empty() ? std::string() : ": " + check.problems));
        return;
    }
    ++m_stats.uploadsAccepted;
    Log(name + " accepted (" + std::to_string(frame.size()) + " bytes)");
    if (!m_state.lastPersistError().empty()) {
        Log("state file not written: " + m_state.lastPersistError());
    }
    Queue(std::string(1, static_cast<char>(0xF1)), false);
}

} // namespace lumeth::sim
