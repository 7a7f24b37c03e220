// The emulator's receive side: arbitrary client bytes, delivered in pieces,
// must never crash it, every message it sends must be a well-formed frame,
// and its state may change only through an upload it accepted.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "link/protocol.h"
#include "tools/sim/sim_session.h"
#include "tools/sim/sim_state.h"

namespace {

class QuietObserver : public lumeth::sim::SimSessionObserver {
public:
    void Log(std::string_view) override {}
    void BadInput(std::string_view, std::string_view, size_t) override {}
    void FrameIn(std::string_view) override {}
};

const lumeth::sim::SimState& Template() {
    static const lumeth::sim::SimState state = [] {
        lumeth::PanelStore store;
        store.ResetToDefaults();
        lumeth::sim::SetChannelNames(store.alpha(lumeth::SubType::Input), {"MIC 1", "CD 2"});
        store.lists(lumeth::SubType::Input)[0].channelCount = 1;
        return lumeth::sim::SimState(std::move(store), "studio");
    }();
    return state;
}

void CheckFrame(const std::string& m) {
    if (m.empty() || !lumeth::HasTopBit(static_cast<uint8_t>(m[0]))) {
        std::abort();
    }
    if (m.size() == 1) {
        return;
    }
    if (static_cast<uint8_t>(m.back()) != lumeth::kEndMarker) {
        std::abort();
    }
    for (size_t i = 1; i + 1 < m.size(); ++i) {
        if (lumeth::HasTopBit(static_cast<uint8_t>(m[i]))) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    lumeth::sim::SimState state = Template();
    QuietObserver observer;
    lumeth::sim::SimSession session(state, observer);
    session.Start();

    // The first byte chooses how the rest arrives: piece size and polls.
    const size_t piece = (data[0] & 15u) + 1;
    const bool polls = (data[0] & 16u) != 0;
    std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    while (!rest.empty()) {
        const size_t n = rest.size() < piece ? rest.size() : piece;
        session.Receive(rest.substr(0, n));
        rest.remove_prefix(n);
        if (polls) {
            session.PollTick();
        }
        for (const auto& m : session.TakeOutgoing()) {
            CheckFrame(m.bytes);
        }
    }
    if (state.version() != Template().version() && session.stats().uploadsAccepted == 0) {
        std::abort();
    }
    return 0;
}
