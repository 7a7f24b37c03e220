// Feeds a random byte stream into a link session in random chunks, draining
// the buffer with DecodeNext after each chunk, and checks that the session
// neither stalls nor leaves the store with arrays shorter than their rules.
//
// Input layout: byte 0 seeds the chunk sizes; the rest is the stream.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "link/frame_reader.h"
#include "link/protocol.h"
#include "link/session.h"

namespace {

class QuietObserver : public lumeth::SessionObserver {
public:
    void PartReceived(lumeth::Part) override {}
    void WriteErrorLog(std::string_view, std::string_view) override {}
    void ReportError(std::string_view, std::string_view, const lumeth::Failure&) override {}
    void LogActivity(std::string_view, std::string_view) override {}
};

void Check(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

// What may stay in the buffer after draining: nothing, or the start of a
// frame still waiting for its end marker.
void CheckLeftover(const std::string& buffer) {
    if (buffer.empty()) {
        return;
    }
    const auto front = lumeth::ReadFront(buffer, lumeth::CutRule::OnceEndArrives);
    Check(front.kind == lumeth::FrontOfBuffer::Kind::Partial);
    Check(!lumeth::IsOneByte(front.command));
}

void CheckStore(const lumeth::PanelStore& s) {
    using lumeth::kAllSubTypes;
    for (auto st : kAllSubTypes) {
        const auto& a = s.alpha(st);
        Check(a.names.size() == static_cast<size_t>(a.count));
        Check(a.numbers.size() == a.names.size());
        Check(a.positionOf.size() == a.names.size());
        const auto& lists = s.lists(st);
        Check(!lists.empty());
        if (s.listCount(st) > 0) {
            Check(lists.size() == static_cast<size_t>(s.listCount(st)));
        }
        for (const auto& l : lists) {
            Check(!l.channels.empty());
            Check(l.channels.size() >= static_cast<size_t>(l.channelCount));
        }
    }
    Check(!s.groups.userGroups.empty());
    Check(s.groups.userGroupNames.size() == s.groups.userGroups.size());
    Check(s.groups.userGroupIndex.size() == s.groups.userGroups.size());
    Check(s.groups.userGroupNumber.size() == s.groups.userGroups.size());
    for (const auto& g : s.groups.userGroups) {
        Check(g.listIndexes.size() >= static_cast<size_t>(g.listCount));
        Check(g.listTypes.size() >= static_cast<size_t>(g.listCount));
    }
    Check(!s.templates.buttonTemplates.empty());
    Check(s.templates.templateNames.size() == s.templates.buttonTemplates.size());
    Check(s.templates.templateIndex.size() == s.templates.buttonTemplates.size());
    Check(s.templates.templatePosition.size() == s.templates.buttonTemplates.size());
    for (const auto& t : s.templates.buttonTemplates) {
        Check(!t.buttons.empty());
        Check(t.buttons.size() >= static_cast<size_t>(t.buttonCount));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    uint32_t rng = data[0] * 2654435761u + 1;
    const std::string_view stream(reinterpret_cast<const char*>(data + 1), size - 1);

    lumeth::PanelStore store;
    lumeth::LinkState state;
    QuietObserver observer;
    lumeth::LinkSession session(store, state, observer);

    size_t at = 0;
    while (at < stream.size()) {
        rng = rng * 1103515245u + 12345u;
        const size_t chunk = 1 + (rng >> 16) % 97;
        session.Receive(stream.substr(at, chunk));
        at += chunk;
        // Every call that does not finish the buffer must consume bytes;
        // a call that changes nothing means a partial frame is waiting.
        while (!session.BufferEmpty()) {
            const size_t before = state.receiveBuffer.size();
            session.DecodeNext();
            if (state.receiveBuffer.size() == before) {
                break;
            }
            Check(state.receiveBuffer.size() < before);
        }
        CheckLeftover(state.receiveBuffer);
        for (const std::string& m : session.TakeOutgoing()) {
            Check(!m.empty());
        }
    }
    CheckStore(store);
    return 0;
}
