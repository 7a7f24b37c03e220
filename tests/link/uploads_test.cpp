// What the session sends: identity answer, data requests, the password and
// the Apply messages.
#include <gtest/gtest.h>

#include "link/protocol.h"
#include "tests/link/messages.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

// The identity query is answered with the request for everything; each
// request replaces all three masks.
TEST(Requests, EachRequestReplacesAllThreeMasksAndPasswordIsSentAsItIs) {
    Harness h;
    h.state.pendingC = 0x4;
    h.Feed(Raw({0x81, 0x64, 0x64, 0xFF}));
    EXPECT_EQ(h.state.pendingA, 0x03000302u);
    EXPECT_EQ(h.state.pendingB, 0u);
    EXPECT_EQ(h.state.pendingC, 0xFCu);
    h.session.RequestData(0, 0, Wire(Part::UserGroups).bit);
    EXPECT_EQ(h.state.pendingA, 0u);
    EXPECT_EQ(h.state.pendingC, Wire(Part::UserGroups).bit);
    h.session.RequestData(Wire(Part::RelayAlphas).bit, 5, 0);
    EXPECT_EQ(h.state.pendingA, Wire(Part::RelayAlphas).bit);
    EXPECT_EQ(h.state.pendingB, 5u);
    EXPECT_EQ(h.state.pendingC, 0u);
    EXPECT_EQ(h.Sent(), (std::vector<std::string>{Raw({0x81, 0x11, 0x01, 0x12, 0xFF}),
                                                  Request(0x03000302, 0, 0xFC), Request(0, 0, 4),
                                                  Request(Wire(Part::RelayAlphas).bit, 5, 0)}));
    EXPECT_FALSE(h.session.HasOutgoing());

    // Setting the password sends the server password as it stands.
    h.session.SendPassword();
    h.state.serverPassword = "New pw";
    h.session.SendPassword();
    EXPECT_EQ(h.Sent(), (std::vector<std::string>{PasswordAnswer(""), PasswordAnswer("New pw")}));
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
    s.groups.Resize(2);
    s.groups.userGroupCount = 2;
    s.groups.userGroupNames[1] = "Mix";
    s.groups.userGroupIndex[1] = 1;
    s.groups.userGroupNumber[1] = 1;
    s.groups.userGroups[1].listCount = 3;
    s.groups.userGroups[1].listIndexes = {1, 0, 1};
    s.groups.userGroups[1].listTypes = {11, 31, 41};
    s.templates.Resize(1);
    s.templates.buttonTemplates[0].number = 12;
    s.templates.buttonTemplates[0].buttonCount = 2;
    s.templates.buttonTemplates[0].buttons = {PanelButton{1012, 1, "Door relay", 3, 4},
                                              PanelButton::Cleared()};
    return s;
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
    h.store.groups.userGroups[0].listCount = 1;
    h.store.groups.userGroups[0].listIndexes = {0};
    h.store.groups.userGroups[0].listTypes = {-21};
    h.store.templates.buttonTemplates[0].buttons[0].channel2 = 16384;
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

} // namespace
} // namespace lumeth
