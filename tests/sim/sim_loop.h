#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "link/session.h"
#include "tools/sim/sim_session.h"

namespace lumeth::testing {

// Records what a SimSession reports.
class SimRecorder : public sim::SimSessionObserver {
public:
    std::vector<std::string> lines;

    void Log(std::string_view line) override { lines.emplace_back(line); }
    void FrameIn(std::string_view) override {}
    bool Logged(std::string_view text) const {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& l) { return l.find(text) != std::string::npos; });
    }
};

// Records what the administrator's session reports.
class ClientRecorder : public SessionObserver {
public:
    std::vector<std::string> errors;

    void StoreChanged(StoreChange, SubType) override {}
    void WriteErrorLog(std::string_view message, std::string_view) override {
        errors.emplace_back(message);
    }
    void ReportError(std::string_view location, std::string_view, const Failure&) override {
        errors.emplace_back(location);
    }
    void LogActivity(std::string_view, std::string_view) override {}
};

// The administrator's session and an emulator session wired back to back in
// memory: everything one queues is fed to the other until both are quiet.
class SimLoop {
public:
    explicit SimLoop(sim::SimState& state)
        : sim(state, simLog), client(clientStore, link, clientLog) {}

    // Deliver queued messages both ways until nothing moves. Returns the
    // messages the emulator sent, in order.
    std::vector<std::string> Run() {
        std::vector<std::string> fromSim;
        for (int round = 0; round < 10000; ++round) {
            bool moved = false;
            for (auto& m : sim.TakeOutgoing()) {
                fromSim.push_back(m.bytes);
                client.Receive(m.bytes);
                moved = true;
            }
            // One message per call, like the decode timer; stop when a
            // partial message waits for more bytes.
            while (!client.BufferEmpty()) {
                const size_t before = link.receiveBuffer.size();
                client.DecodeNext();
                if (link.receiveBuffer.size() == before) {
                    break;
                }
                moved = true;
            }
            for (auto& m : client.TakeOutgoing()) {
                sim.Receive(m);
                moved = true;
            }
            if (!moved) {
                break;
            }
        }
        return fromSim;
    }

    SimRecorder simLog;
    sim::SimSession sim;
    PanelStore clientStore;
    LinkState link;
    ClientRecorder clientLog;
    LinkSession client;
};

} // namespace lumeth::testing
