#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/codec.h"
#include "link/link_state.h"
#include "tests/link/layout.h"
#include "tests/sim/sim_loop.h"
#include "tests/sim/store_dump.h"
#include "tools/sim/sim_session.h"
#include "tools/sim/sim_state.h"

using namespace lumeth;
using namespace lumeth::sim;
using lumeth::testing::DumpStore;
using lumeth::testing::Layout;
using lumeth::testing::Raw;
using lumeth::testing::SimLoop;
using lumeth::testing::SimRecorder;

namespace {

// A small configuration with every kind of data.
SimState SmallState() {
    PanelStore store;
    store.ResetToDefaults();
    SetChannelNames(store.alpha(SubType::Input), {"MIC 1", "CD 2", "Studio Phone"});
    SetChannelNames(store.alpha(SubType::Output), {"SPK", "HP"});
    SetChannelNames(store.alpha(SubType::Opto), {"ONAIR"});
    SetChannelNames(store.alpha(SubType::Relay), {});
    store.lists(SubType::Input)[0] = {2, "Studio A", {2, 0}};
    store.listCount(SubType::Output) = 2;
    store.lists(SubType::Output).resize(2);
    store.lists(SubType::Output)[1] = {1, "Monitors", {1}};
    store.userGroupNames[0] = "Morning";
    store.userGroups[0] = {2, {0, 1}, {11, 21}};
    ButtonTemplate& tpl = store.buttonTemplates[0];
    tpl.number = 7;
    tpl.buttonCount = 2;
    tpl.buttons = {PanelButton::Cleared(), PanelButton::Cleared()};
    tpl.buttons[0].type = 40;
    tpl.buttons[0].channel = 1;
    tpl.buttons[1].type = 1010;
    tpl.buttons[1].captionOption = 1;
    tpl.buttons[1].label = "TALK";
    tpl.buttons[1].channel = tpl.buttons[1].channel2 = 0;
    return SimState(std::move(store), "studio");
}

} // namespace

TEST(SimSession, ABadUploadNeverChangesTheState) {
    SimState state = SmallState();
    SimLoop loop(state);
    loop.sim.Start();
    loop.Run();
    loop.clientStore.lists(SubType::Input)[0].name = "Changed";
    loop.clientStore.userGroupNames[0] = "Changed";
    loop.clientStore.templateNames[0] = "Changed";
    const auto apply = loop.client.BuildApplyMessages();
    const std::string before = DumpStore(state.store());
    const uint64_t version = state.version();

    std::vector<std::string> bad;
    for (const std::string& m : apply) {
        const std::string body = m.substr(0, m.size() - 2);
        bad.push_back(Layout::Of(body).Finish(1)); // wrong checksum
        // One body byte more than the counts say; checksum kept right.
        bad.push_back(Layout::Of(body + '\x01').Finish());
    }
    // A button message that is not an "R" message is ignored.
    std::string notR = apply[5].substr(0, apply[5].size() - 2);
    notR[2] = 0x51;
    bad.push_back(Layout::Of(notR).Finish());

    for (const std::string& m : bad) {
        loop.sim.Receive(m);
    }
    EXPECT_TRUE(loop.sim.TakeOutgoing().empty()) << "a rejected upload is not acknowledged";
    EXPECT_EQ(loop.sim.stats().uploadsRejected, static_cast<int>(bad.size()));
    EXPECT_EQ(loop.sim.stats().uploadsAccepted, 0);
    EXPECT_EQ(state.version(), version);
    EXPECT_EQ(DumpStore(state.store()), before);
    EXPECT_TRUE(loop.simLog.Logged("Message Length Error"));
}
