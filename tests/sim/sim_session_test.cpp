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

// A data request: F2, mask A (4 groups), mask B (4), mask C (2), four zeros.
std::string Request(uint32_t a, uint32_t c) {
    return Layout(0xF2).U28(a).U28(0).U14(int(c)).U28(0).Finish();
}

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

TEST(SimSession, ServesTheWholeConfigurationOnStartUp) {
    SimState state = SmallState();
    SimLoop loop(state);
    loop.sim.Start();
    const auto sent = loop.Run();

    // Identity query, then the eleven answers in request-bit order.
    ASSERT_EQ(sent.size(), 12u);
    EXPECT_EQ(sent[0], Raw({0x81, 0x64, 0x64, 0xFF}));
    std::vector<uint8_t> commands;
    for (size_t i = 1; i < sent.size(); ++i) {
        commands.push_back(static_cast<uint8_t>(sent[i][0]));
    }
    EXPECT_EQ(commands, (std::vector<uint8_t>{0x80, 0xFC, 0xFC, 0xFC, 0xFC, 0xDF, 0xDF, 0xDF, 0xDF,
                                              0xCC, 0xFD}));
    EXPECT_TRUE(loop.sim.identified());
    EXPECT_EQ(loop.sim.stats().requests, 1);

    // The administrator decoded every answer into the emulator's configuration.
    EXPECT_FALSE(loop.link.AnyPending());
    EXPECT_TRUE(loop.clientLog.errors.empty()) << loop.clientLog.errors.front();
    EXPECT_EQ(loop.link.serverPassword, "studio");
    EXPECT_EQ(DumpStore(loop.clientStore), DumpStore(state.store()));
}

// The start-up fetch covers which message answers which bit; a request for
// one bit gets that message alone, and unknown bits ask for nothing.
TEST(SimSession, AnswersOnlyTheRequestedBits) {
    SimState state = SmallState();
    SimRecorder log;
    SimSession session(state, log);
    session.Receive(Request(0, request::kOutputLists));
    const auto out = session.TakeOutgoing();
    ASSERT_EQ(out.size(), 1u);
    EXPECT_TRUE(out[0].answer);
    EXPECT_EQ(out[0].bytes.substr(0, 2), Raw({0xDF, 21}));

    session.Receive(Request(0x00400001, 0x1003));
    EXPECT_TRUE(session.TakeOutgoing().empty());
    EXPECT_EQ(session.stats().requests, 2);
}

TEST(SimSession, AlphaWidthIsTheLongestNameOrTheSetWidth) {
    SimState state = SmallState();
    SimRecorder log;
    SimSession session(state, log);
    auto inputAlphas = [&session](uint32_t bit) {
        session.Receive(Request(bit, 0));
        return session.TakeOutgoing().at(0).bytes;
    };
    std::string m = inputAlphas(request::kInputAlphas);
    EXPECT_EQ(static_cast<uint8_t>(m[2]), 12u); // "Studio Phone"
    EXPECT_EQ(m.size(), 3u * (12 + 2) + 9);

    state.setAlphaWidth(8);
    m = inputAlphas(request::kInputAlphas);
    EXPECT_EQ(static_cast<uint8_t>(m[2]), 8u);
    EXPECT_EQ(m.size(), 3u * (8 + 2) + 9);
    EXPECT_EQ(m.substr(7 + 2 * 10, 8), "Studio P");
    // An empty table is a 9-byte message.
    EXPECT_EQ(inputAlphas(request::kRelayAlphas).size(), 9u);
}

TEST(SimSession, AppliedUploadsReplaceTheStateAndAreAcknowledged) {
    SimState state = SmallState();
    int persisted = 0;
    state.setChangeListener([&persisted](const SimState&) {
        ++persisted;
        return std::string();
    });
    SimLoop loop(state);
    loop.sim.Start();
    loop.Run();

    // The operator edits and presses Apply.
    PanelStore& edited = loop.clientStore;
    edited.lists(SubType::Input)[0] = {3, "Studio B", {0, 1, 2}};
    edited.listCount(SubType::Relay) = 0;
    edited.userGroupCount = 2;
    edited.ResizeUserGroups(2);
    edited.userGroupNames[1] = "Evening";
    edited.userGroups[1] = {1, {1}, {21}};
    edited.buttonTemplates[0].buttons[0].label = "NEWS";
    edited.buttonTemplates[0].buttons[0].captionOption = 1;

    for (const std::string& m : loop.client.BuildApplyMessages()) {
        loop.sim.Receive(m);
    }
    const auto out = loop.sim.TakeOutgoing();
    ASSERT_EQ(out.size(), 6u);
    for (const auto& m : out) {
        EXPECT_EQ(m.bytes, Raw({0xF1}));
    }
    EXPECT_EQ(loop.sim.stats().uploadsAccepted, 6);
    EXPECT_EQ(persisted, 6);
    EXPECT_EQ(DumpStore(state.store(), false), DumpStore(edited, false));

    // Another client fetching now gets the new configuration.
    SimLoop second(state);
    second.sim.Start();
    second.Run();
    EXPECT_EQ(DumpStore(second.clientStore, false), DumpStore(edited, false));
}

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

TEST(SimSession, SetPasswordIsAcceptedAndServed) {
    SimState state = SmallState();
    SimRecorder log;
    SimSession session(state, log);
    session.Receive(codec::PasswordMessage("newpass"));
    auto out = session.TakeOutgoing();
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].bytes, Raw({0xF1}));
    EXPECT_EQ(state.password(), "newpass");

    // Layout: 80 05 L <bytes> checksum FF; a wrong length byte is refused.
    session.Receive(Layout(0x80).Bytes({0x05, 0x04}).Text("abc").Finish());
    EXPECT_TRUE(session.TakeOutgoing().empty());
    EXPECT_EQ(state.password(), "newpass");

    session.Receive(Request(request::kPassword, 0));
    out = session.TakeOutgoing();
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].bytes, Layout(0x80).Bytes({0x05, 0x07}).Text("newpass").Finish());
}

TEST(SimSession, PollsAndLogsAMissingAnswer) {
    SimState state = SmallState();
    SimRecorder log;
    SimSession session(state, log);
    session.PollTick();
    EXPECT_EQ(session.TakeOutgoing().at(0).bytes, Raw({0xF5}));
    session.Receive(Raw({0xF4}));
    session.PollTick();
    EXPECT_EQ(session.stats().missingPollAnswers, 0);
    session.TakeOutgoing();
    session.PollTick(); // the previous poll was never answered
    EXPECT_EQ(session.stats().missingPollAnswers, 1);
    EXPECT_TRUE(log.Logged("no poll answer"));

    // A poll from the client is answered with F4.
    session.TakeOutgoing();
    session.Receive(Raw({0xF5}));
    EXPECT_EQ(session.TakeOutgoing().at(0).bytes, Raw({0xF4}));
}

TEST(SimSession, BadInputIsLoggedAndLeavesStateAndLinkIntact) {
    SimState state = SmallState();
    const std::string before = DumpStore(state.store());
    SimRecorder log;
    SimSession session(state, log);
    const std::string password = Request(request::kPassword, 0);

    // Broken requests: a wrong checksum, one byte short.
    session.Receive(
        Layout::Of(Request(request::kEverythingA, request::kEverythingC).substr(0, 15)).Finish(1));
    session.Receive(password.substr(0, 12) + password.substr(13));
    EXPECT_TRUE(session.TakeOutgoing().empty());
    EXPECT_EQ(session.stats().badFrames, 2);
    EXPECT_TRUE(log.Logged("bad data request"));

    session.Receive(Raw({0x01, 0x02, 0x03}));
    session.Receive(Raw({0xDF, 0x0B, 0x01}) + password);
    EXPECT_EQ(session.TakeOutgoing().size(), 1u) << "the request after the cut frame is answered";
    EXPECT_EQ(session.stats().garbageBytes, 3u);
    EXPECT_EQ(session.stats().cutFrames, 1);
    EXPECT_TRUE(log.Logged("Invalid Data 3 bytes"));
    EXPECT_TRUE(log.Logged("Incomplete Message DF"));

    // Unknown commands and stray acknowledgements.
    session.Receive(Raw({0x90, 0x01, 0x01, 0xFF, 0xF1, 0xF3}));
    EXPECT_TRUE(session.TakeOutgoing().empty());
    EXPECT_EQ(DumpStore(state.store()), before);
    EXPECT_EQ(state.password(), "studio");

    // A wrong identity answer is logged and does not identify the client.
    session.Receive(Raw({0x81, 0x11, 0x02, 0x13, 0xFF}));
    EXPECT_FALSE(session.identified());
    EXPECT_TRUE(log.Logged("unexpected identity answer 81 11 02 13 FF"));
    session.Receive(Raw({0x81, 0x11, 0x01, 0x12, 0xFF}));
    EXPECT_TRUE(session.identified());
}

TEST(SimSession, AFailedStateWriteIsLoggedButTheUploadStands) {
    SimState state = SmallState();
    state.setChangeListener([](const SimState&) { return std::string("disk full"); });
    SimRecorder log;
    SimSession session(state, log);
    session.Receive(codec::PasswordMessage("x"));
    EXPECT_EQ(state.password(), "x");
    EXPECT_TRUE(log.Logged("state file not written: disk full"));
}
