// What the session sends: identity answer, data requests, the password and
// the Apply messages; and the shared layouts read back by a session.
#include <gtest/gtest.h>

#include "link/codec.h"
#include "tests/link/messages.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

TEST(Identity, QueryIsAnsweredWithTheRequestForEverything) {
    Harness h;
    h.state.pendingC = 0x4;
    h.Feed(Raw({0x81, 0x64, 0x64, 0xFF}));
    const std::vector<std::string> expected = {
        Raw({0x81, 0x11, 0x01, 0x12, 0xFF}),
        Raw({0xF2, 0x02, 0x06, 0x00, 0x18, 0x00, 0x00, 0x00, 0x00, 0x7C, 0x01, 0x00, 0x00, 0x00,
             0x00, 0x1D, 0xFF})};
    EXPECT_EQ(h.Sent(), expected);
    EXPECT_EQ(h.state.pendingA, 0x03000302u);
    EXPECT_EQ(h.state.pendingB, 0u);
    EXPECT_EQ(h.state.pendingC, 0xFCu);
}

TEST(Identity, OtherIdentityFramesAreIgnored) {
    for (const std::string& m : {
             Layout(0x81).Byte('e').Finish(),          // not "d"
             Raw({0x81, 0x64, 0x65, 0xFF}),            // bad checksum
             Layout(0x81).Bytes({'d', 0, 0}).Finish(), // six bytes
             Raw({0x81, 0xFF}),                        // too short
             Layout(0x81).Bytes({'d', 0}).Finish(),    // five bytes: accepted
         }) {
        Harness h;
        h.Feed(m);
        const bool accepted = m.size() == 5 && m[1] == 'd';
        EXPECT_EQ(h.Sent().size(), accepted ? 2u : 0u) << Hex(m);
        EXPECT_TRUE(h.observer.Quiet());
    }
}

TEST(Requests, EachRequestReplacesAllThreeMasks) {
    Harness h;
    h.session.RequestEverything();
    h.session.RequestData(0, 0, request::kUserGroups);
    EXPECT_EQ(h.state.pendingA, 0u);
    EXPECT_EQ(h.state.pendingC, request::kUserGroups);
    h.session.RequestData(request::kRelayAlphas, 5, 0);
    EXPECT_EQ(h.state.pendingA, request::kRelayAlphas);
    EXPECT_EQ(h.state.pendingB, 5u);
    EXPECT_EQ(h.state.pendingC, 0u);
    const auto sent = h.Sent();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[1], Request(0, 0, 4));
    EXPECT_EQ(sent[2], Request(request::kRelayAlphas, 5, 0));
    EXPECT_FALSE(h.session.HasOutgoing());
}

TEST(Requests, SetPassword) {
    Harness h;
    h.session.SendPassword();
    h.state.serverPassword = "New pw";
    h.session.SendPassword();
    const auto sent = h.Sent();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0], Raw({0x80, 0x05, 0x00, 0x05, 0xFF}));
    EXPECT_EQ(sent[1], Layout(0x80).Bytes({0x05, 6}).Text("New pw").Finish());
}

PanelStore EditedStore() {
    PanelStore s;
    s.ResetToDefaults();
    for (SubType st : kAllSubTypes) {
        auto& lists = s.lists(st);
        lists.resize(2);
        s.listCount(st) = 2;
        lists[1].name = std::string(SubTypeName(st)) + " list with a long name";
        lists[1].channelCount = 2;
        lists[1].channels = {static_cast<int16_t>(int(st)), 9000};
    }
    s.ResizeUserGroups(2);
    s.userGroupCount = 2;
    s.userGroupNames[1] = "Mix";
    s.userGroupIndex[1] = 1;
    s.userGroupNumber[1] = 1;
    s.userGroups[1].listCount = 3;
    s.userGroups[1].listIndexes = {1, 0, 1};
    s.userGroups[1].listTypes = {11, 31, 41};
    s.ResizeTemplates(1);
    s.buttonTemplates[0].number = 12;
    s.buttonTemplates[0].buttonCount = 2;
    s.buttonTemplates[0].buttons = {PanelButton{1012, 1, "Door relay", 3, 4},
                                    PanelButton::Cleared()};
    return s;
}

TEST(Apply, SixMessagesInOrderWithoutTouchingTheMasks) {
    Harness h;
    h.store = EditedStore();
    h.state.pendingC = 0x8;
    const auto messages = h.session.BuildApplyMessages();
    ASSERT_EQ(messages.size(), 6u);
    const int heads[6][2] = {{0xDF, 11}, {0xDF, 21}, {0xDF, 31},
                             {0xDF, 41}, {0xCC, 0},  {0xFD, 0x7F}};
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(static_cast<unsigned char>(messages[i][0]), heads[i][0]) << i;
        EXPECT_EQ(static_cast<unsigned char>(messages[i][1]), heads[i][1]) << i;
        EXPECT_EQ(static_cast<unsigned char>(messages[i].back()), 0xFF);
    }
    EXPECT_EQ(messages[4], codec::GroupMessage(h.store));
    EXPECT_EQ(h.state.pendingC, 0x8u);
    EXPECT_FALSE(h.session.HasOutgoing()); // the connection sends them, 500 ms apart
}

TEST(Apply, ValuesTheWireCannotCarryFailTheirUploadOnly) {
    // A channel of -1 would go out as 16383 ("no channel") and one of 16384
    // as 0 if masked: those uploads fail under their own locations, the
    // others are clean.
    Harness h;
    h.store = EditedStore();
    auto steps = h.session.BuildApplySteps();
    ASSERT_EQ(steps.size(), 6u);
    for (const auto& step : steps) {
        EXPECT_TRUE(step.status.ok()) << step.status.failure().detail;
    }

    h.store.lists(SubType::Output)[0].channelCount = 1;
    h.store.lists(SubType::Output)[0].channels = {-1};
    h.store.userGroups[0].listCount = 1;
    h.store.userGroups[0].listIndexes = {0};
    h.store.userGroups[0].listTypes = {-21};
    h.store.buttonTemplates[0].buttons[0].channel2 = 16384;
    steps = h.session.BuildApplySteps();
    const char* const locations[6] = {
        "Error Sending Panel Display Lists", "Error Sending Panel Display Lists",
        "Error Sending Panel Display Lists", "Error Sending Panel Display Lists",
        "Error Sending Panel Group Data",    "Error Sending Panel Button Data"};
    const bool fails[6] = {false, true, false, false, true, true};
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(steps[i].failureLocation, locations[i]) << i;
        EXPECT_EQ(!steps[i].status.ok(), fails[i]) << i;
        if (fails[i]) {
            EXPECT_EQ(steps[i].status.failure().code, ErrorCode::Overflow) << i;
        }
    }
    EXPECT_NE(steps[5].status.failure().detail.find("channel 2 16384"), std::string::npos)
        << steps[5].status.failure().detail;
    // The clean messages are the ones BuildApplyMessages gives.
    EXPECT_EQ(steps[0].message, h.session.BuildApplyMessages()[0]);
}

TEST(Apply, UploadsReadBackIntoAnEqualStore) {
    // The uploads use the download layouts, so a session fed the Apply
    // messages must end up with the same lists, groups and templates (names
    // now blank-padded to their fixed widths).
    const PanelStore edited = EditedStore();
    Harness sender;
    sender.store = edited;
    Harness receiver;
    receiver.store.ResetToDefaults();
    for (const std::string& m : sender.session.BuildApplyMessages()) {
        receiver.Feed(m);
    }
    EXPECT_TRUE(receiver.observer.Quiet());
    EXPECT_EQ(receiver.observer.changes.size(), 6u);

    PanelStore expected = edited;
    for (SubType st : kAllSubTypes) {
        for (auto& l : expected.lists(st)) {
            l.name = codec::FixedWidth(l.name, 16);
        }
    }
    for (auto& n : expected.userGroupNames) {
        n = codec::FixedWidth(n, 16);
    }
    for (auto& n : expected.templateNames) {
        n = codec::FixedWidth(n, 16);
    }
    for (auto& b : expected.buttonTemplates[0].buttons) {
        b.label = codec::FixedWidth(b.label, 8);
    }
    EXPECT_EQ(Dump(receiver.store), Dump(expected));
}

TEST(ServerSide, AlphaTableFromTheCodecIsSortedOnArrival) {
    Harness h;
    const std::vector<std::string> names = {"Studio", "air", "AIR", "", "Booth"};
    h.Feed(codec::AlphaTableMessage(SubType::Opto, names));
    EXPECT_TRUE(h.observer.Quiet());
    const AlphaTable& t = h.store.alpha(SubType::Opto);
    EXPECT_EQ(t.count, 5);
    // Worked through by hand: the two equal "air" names swap places, the
    // exchange sort is not stable.
    EXPECT_EQ(t.names,
              (std::vector<std::string>{"      ", "AIR   ", "air   ", "Booth ", "Studio"}));
    EXPECT_EQ(t.numbers, (std::vector<int16_t>{3, 2, 1, 4, 0}));
    for (size_t k = 0; k < t.numbers.size(); ++k) {
        EXPECT_EQ(t.positionOf[static_cast<size_t>(t.numbers[k])], static_cast<int16_t>(k));
    }
}

} // namespace
} // namespace lumeth
