#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/link_state.h"
#include "link/session.h"
#include "model/panel_store.h"

namespace lumeth::testing {

// Records everything a session reports.
class RecordingObserver : public SessionObserver {
public:
    struct Report {
        std::string location;
        std::string category;
        Failure failure;
    };

    void PartReceived(Part part) override { changes.push_back(part); }
    void WriteErrorLog(std::string_view message, std::string_view location) override {
        logLines.push_back(std::string(message) + "|" + std::string(location));
    }
    void ReportError(std::string_view location, std::string_view category,
                     const Failure& failure) override {
        reports.push_back(Report{std::string(location), std::string(category), failure});
    }
    void LogActivity(std::string_view text, std::string_view) override {
        activities.emplace_back(text);
    }

    bool Quiet() const { return logLines.empty() && reports.empty(); }

    std::vector<Part> changes;
    std::vector<std::string> logLines; // "message|location"
    std::vector<Report> reports;
    std::vector<std::string> activities;
};

// A session with its own store, state and observer.
struct Harness {
    PanelStore store;
    LinkState state;
    RecordingObserver observer;
    LinkSession session{store, state, observer};

    // Run DecodeNext until the buffer is empty or a call makes no progress
    // (a partial frame waiting for more bytes). Returns the number of calls
    // that changed the buffer.
    int Drain() {
        int steps = 0;
        while (!session.BufferEmpty()) {
            const std::string before = state.receiveBuffer;
            session.DecodeNext();
            if (state.receiveBuffer == before) {
                break;
            }
            ++steps;
        }
        return steps;
    }
    void Feed(std::string_view bytes) {
        session.Receive(bytes);
        Drain();
    }
    std::vector<std::string> Sent() { return session.TakeOutgoing(); }
};

} // namespace lumeth::testing
