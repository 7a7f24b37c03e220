#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/frame_reader.h"
#include "tools/sim/sim_state.h"

namespace lumeth::sim {

// How a session reports to the server around it.
class SimSessionObserver {
public:
    virtual ~SimSessionObserver() = default;
    // One line for the emulator's log (no line end).
    virtual void Log(std::string_view line) = 0;
    // One line about bad input from the client that dropped `bytes`; `kind`
    // is the line without its figures (the server may summarise a stream of
    // them by kind instead of writing each).
    virtual void BadInput(std::string_view kind, std::string_view line, size_t bytes) = 0;
    // A complete frame received from the client (for --trace).
    virtual void FrameIn(std::string_view frame) = 0;
};

// A message the session wants sent.
struct OutMessage {
    std::string bytes;
    bool answer = false; // answers a data request (faults may corrupt it)
};

// Counters for the log and for tests.
struct SessionStats {
    int requests = 0; // data requests answered
    int answers = 0;  // answer messages queued
    int uploadsAccepted = 0;
    int uploadsRejected = 0;
    int badFrames = 0;       // bad requests, identity answers and unknown commands
    size_t garbageBytes = 0; // bytes dropped before a command byte
    int cutFrames = 0;
    int polls = 0;
    int missingPollAnswers = 0;
};

// The server module's side of one client connection, without I/O: the server
// feeds received bytes in and sends what TakeOutgoing hands out. The session
// sends the identity query on Start, answers each data request with exactly
// the messages its bits ask for, validates uploads with the administrator's
// own decoders and commits only what passed,
// answers polls and sends its own. A bad message is logged and dropped; it
// never changes the state and never ends the connection.
class SimSession {
public:
    SimSession(SimState& state, SimSessionObserver& observer);

    // The client has connected: queue the identity query.
    void Start();
    // Bytes from the client; every complete frame is handled at once.
    void Receive(std::string_view bytes);
    // The poll interval has passed: log a missing answer to the previous poll
    // and send the next one.
    void PollTick();

    std::vector<OutMessage> TakeOutgoing();
    bool HasOutgoing() const { return !m_outgoing.empty(); }

    const SessionStats& stats() const { return m_stats; }
    bool identified() const { return m_identified; }
    // Bytes of an incomplete frame waiting for more.
    size_t Buffered() const { return m_reader.Buffered(); }

private:
    void Handle(const FrameEvent& event);
    void HandleFrame(const std::string& frame);
    void HandleRequest(const std::string& frame);
    void HandleUpload(const std::string& frame);
    void Queue(std::string bytes, bool answer);
    void Log(const std::string& line);
    // `kind` + `detail` as one line (see SimSessionObserver::BadInput).
    void BadInput(const std::string& kind, const std::string& detail, size_t bytes);

    SimState& m_state;
    SimSessionObserver& m_observer;
    FrameReader m_reader;
    std::vector<OutMessage> m_outgoing;
    SessionStats m_stats;
    bool m_identified = false;
    bool m_pollOutstanding = false;
};

// "DF 0B 01 ..." (upper-case hex, space separated).
std::string Hex(std::string_view bytes);

} // namespace lumeth::sim
