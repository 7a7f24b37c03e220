// The download handlers: password, alpha tables, display lists, user groups
// and button templates, fed through the framing as a server would send them.
#include <gtest/gtest.h>

#include <random>

#include "tests/link/messages.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

std::string Pad(const std::string& s, size_t w) {
    return s + std::string(w - s.size(), ' ');
}

// ---------------------------------------------------------------- password

TEST(PasswordDownload, AcceptedAnswerClearsItsBit) {
    Harness h;
    h.state.pendingA = request::kEverythingA;
    h.Feed(PasswordAnswer("abc"));
    EXPECT_EQ(h.state.serverPassword, "abc");
    EXPECT_TRUE(h.state.passwordReceived);
    EXPECT_EQ(h.state.pendingA, request::kEverythingA & ~request::kPassword);
    EXPECT_TRUE(h.Sent().empty());
    EXPECT_TRUE(h.observer.Quiet());
    ASSERT_EQ(h.observer.changes.size(), 1u);
    EXPECT_EQ(h.observer.changes[0].first, StoreChange::Password);
}

TEST(PasswordDownload, BadAnswersAreRequestedAgain) {
    const std::string again = Raw({0xF2, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0xFF});
    const std::string wrongLength =
        Layout(0x80).Bytes({0x05, 4}).Text("abc").Finish(); // says 4, carries 3
    for (const std::string& bad : {PasswordAnswer("abc", 1), wrongLength}) {
        Harness h;
        h.state.pendingC = request::kEverythingC;
        h.Feed(bad);
        EXPECT_FALSE(h.state.passwordReceived);
        EXPECT_TRUE(h.state.serverPassword.empty());
        EXPECT_EQ(h.Sent(), std::vector<std::string>{again});
        // The re-request replaced every mask.
        EXPECT_EQ(h.state.pendingA, request::kPassword);
        EXPECT_EQ(h.state.pendingC, 0u);
    }
}

TEST(PasswordDownload, FrameWithoutLengthByteIsReported) {
    Harness h;
    h.Feed(Raw({0x80, 0xFF}));
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "Error Receiving Password");
    EXPECT_EQ(h.observer.reports[0].category, "IP Message Error");
    EXPECT_FALSE(h.state.passwordReceived);
}

// ---------------------------------------------------------------- alpha tables

TEST(AlphaDownload, SortsCaseInsensitivelyAndKeepsTiesInPlace) {
    Harness h;
    h.state.pendingA = request::kEverythingA;
    h.Feed(AlphaBody(20, 5, {"beta", "Alpha", "alpha"}, {0, 1, 2}).Finish());
    const AlphaTable& t = h.store.alpha(SubType::Output);
    EXPECT_EQ(t.count, 3);
    EXPECT_EQ(t.names, (std::vector<std::string>{"Alpha", "alpha", "beta "}));
    EXPECT_EQ(t.numbers, (std::vector<int16_t>{1, 2, 0}));
    EXPECT_EQ(t.positionOf, (std::vector<int16_t>{2, 0, 1}));
    EXPECT_EQ(t.channelNames, (std::vector<std::string>{"beta ", "Alpha", "alpha"}));
    EXPECT_EQ(h.state.pendingA, request::kEverythingA & ~request::kOutputAlphas);
    EXPECT_EQ(h.observer.activities, std::vector<std::string>{"Output Alphas"});
    ASSERT_EQ(h.observer.changes.size(), 1u);
    EXPECT_EQ(h.observer.changes[0], std::make_pair(StoreChange::Alphas, SubType::Output));
}

TEST(AlphaDownload, RecordsBeforeTheStartIndexAreSkipped) {
    Harness h;
    h.Feed(AlphaBody(40, 3, {"zzz", "b", "c"}, {0, 1, 2}, /*start=*/1).Finish());
    const AlphaTable& t = h.store.alpha(SubType::Relay);
    EXPECT_EQ(t.channelNames, (std::vector<std::string>{"", "b  ", "c  "}));
    EXPECT_EQ(t.names, (std::vector<std::string>{"", "b  ", "c  "}));
    EXPECT_EQ(t.numbers, (std::vector<int16_t>{0, 1, 2}));
}

TEST(AlphaDownload, BadMessagesAreDroppedWithoutAWord) {
    const Layout good = AlphaBody(10, 4, {"Mic", "Line"}, {0, 1});
    std::string longer = good.Body();
    longer.push_back(0x20);
    std::string shorter = good.Body();
    shorter.pop_back();
    const std::vector<std::string> bad = {
        good.Finish(1),                                     // checksum
        Layout::Of(longer).Finish(),                        // one byte too long
        Layout::Of(shorter).Finish(),                       // one byte too short
        AlphaBody(50, 4, {"Mic", "Line"}, {0, 1}).Finish(), // unknown code
    };
    for (const std::string& m : bad) {
        Harness h;
        h.state.pendingA = request::kInputAlphas;
        h.Feed(m);
        EXPECT_EQ(h.store.alpha(SubType::Input).count, 0);
        EXPECT_TRUE(h.store.alpha(SubType::Input).channelNames.empty());
        EXPECT_EQ(h.state.pendingA, request::kInputAlphas) << Hex(m);
        EXPECT_TRUE(h.observer.Quiet()) << Hex(m);
        EXPECT_TRUE(h.Sent().empty());
    }
}

TEST(AlphaDownload, EmptyTableReplacesTheOldOne) {
    Harness h;
    h.Feed(AlphaBody(30, 2, {"a", "b"}, {0, 1}).Finish());
    ASSERT_EQ(h.store.alpha(SubType::Opto).count, 2);
    h.Feed(AlphaBody(30, 2, {}, {}).Finish());
    EXPECT_EQ(h.store.alpha(SubType::Opto).count, 0);
    EXPECT_TRUE(h.store.alpha(SubType::Opto).names.empty());
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(AlphaDownload, ChannelNumberOutsideTheTableIsReported) {
    Harness h;
    h.Feed(AlphaBody(10, 1, {"x", "y"}, {0, 1}).Finish());
    h.state.pendingA = request::kInputAlphas;
    h.Feed(AlphaBody(10, 1, {"a", "b"}, {0, 2}).Finish());
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "Error Processing Alpha Table");
    EXPECT_EQ(h.observer.reports[0].category, "IP Error");
    EXPECT_EQ(h.observer.reports[0].failure.code, ErrorCode::SubscriptOutOfRange);
    const AlphaTable& t = h.store.alpha(SubType::Input);
    // The names in channel order were already stored; the sorted table was not.
    EXPECT_EQ(t.channelNames, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(t.names, (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(h.state.pendingA, request::kInputAlphas);
}

// ---------------------------------------------------------------- display lists

TEST(DisplayListDownload, ReplacesTheListsOfItsSubType) {
    Harness h;
    h.store.ResetToDefaults();
    h.state.pendingC = request::kEverythingC;
    h.Feed(ListBody(21, 16, {{"Mix", {1, 2, 300}}, {"Bad\nname", {}}}).Finish());
    EXPECT_TRUE(h.observer.Quiet());
    ASSERT_EQ(h.store.listCount(SubType::Output), 2);
    const auto& lists = h.store.lists(SubType::Output);
    ASSERT_EQ(lists.size(), 2u);
    EXPECT_EQ(lists[0].name, Pad("Mix", 16));
    EXPECT_EQ(lists[0].channelCount, 3);
    EXPECT_EQ(lists[0].channels, (std::vector<int16_t>{1, 2, 300}));
    EXPECT_EQ(lists[1].name, Pad("Bad.name", 16));
    EXPECT_EQ(lists[1].channelCount, 0);
    EXPECT_EQ(lists[1].channels.size(), 1u);
    EXPECT_EQ(h.store.lists(SubType::Input)[0].name, "First In List");
    EXPECT_EQ(h.state.pendingC, request::kEverythingC & ~request::kOutputLists);
    EXPECT_EQ(h.observer.activities, std::vector<std::string>{"Destination Display Lists"});
    ASSERT_EQ(h.observer.changes.size(), 1u);
    EXPECT_EQ(h.observer.changes[0], std::make_pair(StoreChange::DisplayLists, SubType::Output));
}

TEST(DisplayListDownload, NineByteMessageEmptiesTheSubType) {
    Harness h;
    h.store.ResetToDefaults();
    // DF 0B 00 00 00 00 W checksum FF, W = 16: sum 11 + 16 = 27.
    h.Feed(Raw({0xDF, 0x0B, 0, 0, 0, 0, 16, 27, 0xFF}));
    EXPECT_TRUE(h.observer.Quiet());
    EXPECT_EQ(h.store.listCount(SubType::Input), 0);
    EXPECT_EQ(h.store.lists(SubType::Input).size(), 1u);
}

TEST(DisplayListDownload, LengthOffByOneKeepsTheOldLists) {
    const Layout good = ListBody(11, 8, {{"One", {4, 5}}, {"Two", {6}}});
    std::string longer = good.Body() + Raw({0x20});
    std::string shorter = good.Body();
    shorter.pop_back();
    for (const std::string& body : {longer, shorter}) {
        Harness h;
        h.store.ResetToDefaults();
        h.state.pendingC = request::kInputLists;
        h.Feed(Layout::Of(body).Finish());
        EXPECT_EQ(h.observer.logLines,
                  std::vector<std::string>{"Message Length Error|Source Display Lists"});
        EXPECT_TRUE(h.observer.reports.empty());
        EXPECT_EQ(h.store.listCount(SubType::Input), 1);
        EXPECT_EQ(h.store.lists(SubType::Input)[0].name, "First In List");
        EXPECT_EQ(h.state.pendingC, request::kInputLists);
        EXPECT_TRUE(h.observer.changes.empty());
    }
}

TEST(DisplayListDownload, CountsRunningPastTheMessageAreReported) {
    Harness h;
    h.store.ResetToDefaults();
    // Says 5 lists, carries 1; then a list claiming 16000 channels.
    Layout l(0xDF);
    l.Byte(31).U14(5).U14(0).Byte(4).U14(1).U14(7).Text("abcd");
    h.Feed(l.Finish());
    Layout huge(0xDF);
    huge.Byte(31).U14(1).U14(0).Byte(4).U14(16000).U14(7);
    h.Feed(huge.Finish());
    ASSERT_FALSE(h.observer.reports.empty());
    int shortReads = 0;
    for (const auto& r : h.observer.reports) {
        if (r.location == "Error Receiving Display Lists") {
            EXPECT_EQ(r.category, "48QX Message Error");
            EXPECT_EQ(r.failure.code, ErrorCode::InvalidProcedureCall);
            ++shortReads;
        }
    }
    EXPECT_EQ(shortReads, 2);
    EXPECT_EQ(h.store.listCount(SubType::Opto), 1);
    EXPECT_EQ(h.store.lists(SubType::Opto)[0].name, "First Opto List");
}

TEST(DisplayListDownload, CountReadFromTheEndMarkerIsAShortRead) {
    // Two lists announced, one carried: the second list's count is read from
    // the checksum and the end marker, 32640 + checksum channels. No integer
    // conversion error (the sum fits 16 bits) and no length check: the
    // channels run past the message.
    Harness h;
    h.store.ResetToDefaults();
    Layout l(0xDF);
    l.Byte(31).U14(2).U14(0).Byte(4).U14(1).U14(7).Text("abcd");
    h.Feed(l.Finish());
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "Error Receiving Display Lists");
    EXPECT_EQ(h.observer.reports[0].failure.code, ErrorCode::InvalidProcedureCall);
    EXPECT_TRUE(h.observer.logLines.empty());
    EXPECT_EQ(h.store.lists(SubType::Opto)[0].name, "First Opto List");
}

TEST(DisplayListDownload, ChecksumErrorRequestsTheSubTypeAgain) {
    Harness h;
    h.store.ResetToDefaults();
    h.state.pendingA = request::kEverythingA;
    h.state.pendingC = request::kEverythingC;
    h.Feed(ListBody(41, 16, {{"R", {1}}}).Finish(3));
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "48QX Check Sum Error");
    EXPECT_EQ(h.observer.reports[0].category, "Relay Display Lists");
    EXPECT_EQ(h.Sent(), std::vector<std::string>{Request(0, 0, 0x80)});
    EXPECT_EQ(h.state.pendingA, 0u); // a single re-request forgets the rest
    EXPECT_EQ(h.state.pendingC, 0x80u);
    EXPECT_EQ(h.store.lists(SubType::Relay)[0].name, "First Relay List");
}

TEST(DisplayListDownload, UnknownSubTypeIsReportedAndDropped) {
    Harness h;
    h.store.ResetToDefaults();
    h.Feed(ListBody(12, 16, {{"R", {1}}}).Finish());
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "Error Receiving Display Lists");
    EXPECT_TRUE(h.Sent().empty());
    EXPECT_TRUE(h.observer.changes.empty());
}

// ---------------------------------------------------------------- user groups

TEST(GroupDownload, ReplacesTheGroups) {
    Harness h;
    h.store.ResetToDefaults();
    h.state.pendingC = request::kEverythingC;
    h.Feed(GroupBody(16, {{"Studio", {{0, 11}, {3, 41}}}, {"Empty\x7F", {}}}).Finish());
    EXPECT_TRUE(h.observer.Quiet());
    const PanelStore& s = h.store;
    ASSERT_EQ(s.userGroupCount, 2);
    ASSERT_EQ(s.userGroups.size(), 2u);
    EXPECT_EQ(s.userGroupNames[0], Pad("Studio", 16));
    EXPECT_EQ(s.userGroupNames[1], Pad("Empty.", 16));
    EXPECT_EQ(s.userGroupIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.userGroupNumber, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.userGroups[0].listCount, 2);
    EXPECT_EQ(s.userGroups[0].listIndexes, (std::vector<int16_t>{0, 3}));
    EXPECT_EQ(s.userGroups[0].listTypes, (std::vector<int16_t>{11, 41}));
    EXPECT_EQ(s.userGroups[1].listCount, 0);
    EXPECT_EQ(h.state.pendingC, request::kEverythingC & ~request::kUserGroups);
    EXPECT_EQ(h.observer.activities, std::vector<std::string>{"Group Data"});
    ASSERT_EQ(h.observer.changes.size(), 1u);
    EXPECT_EQ(h.observer.changes[0].first, StoreChange::UserGroups);
}

TEST(GroupDownload, NoGroupsKeepsTheArrays) {
    Harness h;
    h.Feed(GroupBody(16, {{"a", {}}, {"b", {}}, {"c", {}}}).Finish());
    h.Feed(GroupBody(16, {}).Finish());
    EXPECT_EQ(h.store.userGroupCount, 0);
    EXPECT_EQ(h.store.userGroupNames.size(), 3u);
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(GroupDownload, LengthErrorLeavesTheGroupsWrittenSoFar) {
    Harness h;
    h.store.ResetToDefaults();
    h.state.pendingC = request::kUserGroups;
    const std::string body = GroupBody(8, {{"First", {{1, 21}}}, {"Second", {}}}).Body() + "x";
    h.Feed(Layout::Of(body).Finish());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Message Length Error|"});
    EXPECT_EQ(h.store.userGroupCount, 2);
    EXPECT_EQ(h.store.userGroupNames[1], Pad("Second", 8));
    EXPECT_EQ(h.state.pendingC, request::kUserGroups);
    EXPECT_TRUE(h.observer.changes.empty());
}

TEST(GroupDownload, ChecksumErrorTouchesNothingAndRequestsAgain) {
    Harness h;
    h.store.ResetToDefaults();
    h.Feed(GroupBody(16, {{"Studio", {{0, 11}}}}).Finish(5));
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].location, "48QX Check Sum Error");
    EXPECT_EQ(h.observer.reports[0].category, "");
    EXPECT_EQ(h.Sent(), std::vector<std::string>{Request(0, 0, 4)});
    EXPECT_EQ(h.store.userGroupNames[0], "No Users");
}

TEST(GroupDownload, CountsRunningPastTheMessageAreReported) {
    Harness h;
    h.store.ResetToDefaults();
    Layout l(0xCC);
    l.Byte(0).U14(2).U14(0).Byte(2).Text("ab").U14(9000);
    h.Feed(l.Finish());
    ASSERT_FALSE(h.observer.reports.empty());
    EXPECT_EQ(h.observer.reports.back().location, "Error Receiving Group Data");
    EXPECT_EQ(h.store.userGroupNames[0], "ab");
}

// ---------------------------------------------------------------- button templates

TEST(ButtonDownload, FillsTemplatesAndButtons) {
    Harness h;
    h.store.ResetToDefaults();
    h.state.pendingC = request::kEverythingC;
    const std::string zeroLabel("Ta\0k", 4);
    h.Feed(ButtonBody(2, 0, 8, 16,
                      {{"Desk", 5, {{810, 1, 12, 7, zeroLabel}, {16383, 0, 16383, 16383, ""}}},
                       {"Spare", 6, {}}})
               .Finish());
    EXPECT_TRUE(h.observer.Quiet());
    const PanelStore& s = h.store;
    EXPECT_EQ(s.templateCount, 2);
    ASSERT_EQ(s.buttonTemplates.size(), 2u);
    ASSERT_EQ(s.templateNames.size(), 2u);
    EXPECT_EQ(s.templateNames[0], Pad("Desk", 16));
    EXPECT_EQ(s.templateIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.templatePosition, (std::vector<int16_t>{0, 1}));
    const ButtonTemplate& t = s.buttonTemplates[0];
    EXPECT_EQ(t.number, 5);
    ASSERT_EQ(t.buttonCount, 2);
    EXPECT_EQ(t.buttons[0].type, 810);
    EXPECT_EQ(t.buttons[0].captionOption, 1);
    EXPECT_EQ(t.buttons[0].channel, 12);
    EXPECT_EQ(t.buttons[0].channel2, 7);
    EXPECT_EQ(t.buttons[0].label, "Ta.k    ");
    EXPECT_EQ(t.buttons[1].channel2, 16383);
    EXPECT_EQ(s.buttonTemplates[1].number, 6);
    EXPECT_EQ(s.buttonTemplates[1].buttonCount, 0);
    EXPECT_EQ(h.state.pendingC, request::kEverythingC & ~request::kTemplates);
    EXPECT_EQ(h.observer.activities, std::vector<std::string>{"Button Templates"});
}

TEST(ButtonDownload, PartialTableStartsAtItsFirstPosition) {
    Harness h;
    h.store.ResetToDefaults();
    h.Feed(ButtonBody(4, 2, 8, 16, {{"Two", 22, {{40, 0, 1, 16383, "x"}}}, {"Three", 33, {}}})
               .Finish());
    EXPECT_TRUE(h.observer.Quiet());
    const PanelStore& s = h.store;
    EXPECT_EQ(s.templateCount, 2);
    ASSERT_EQ(s.buttonTemplates.size(), 4u);
    EXPECT_EQ(s.buttonTemplates[0].number, 0);
    EXPECT_EQ(s.buttonTemplates[0].buttonCount, 0);
    EXPECT_EQ(s.buttonTemplates[1].number, 0);
    EXPECT_EQ(s.buttonTemplates[2].number, 22);
    EXPECT_EQ(s.buttonTemplates[3].number, 33);
    EXPECT_EQ(s.templateNames[0], "None"); // kept from before
    EXPECT_EQ(s.templateNames[3], Pad("Three", 16));
    EXPECT_EQ(s.templateIndex[3], 3);
}

TEST(ButtonDownload, RejectedMessagesChangeNothingAndAskForNothing) {
    const Layout good = ButtonBody(1, 0, 8, 16, {{"Desk", 5, {{40, 0, 1, 2, "L"}}}});
    std::string notR = good.Body();
    notR[2] = 0x53;
    struct Case {
        std::string message;
        std::vector<std::string> log;
    };
    const std::vector<Case> cases = {
        {good.Finish(1), {"48QX Check Sum Error|Button Data"}},
        {Layout::Of(notR).Finish(), {}},
    };
    for (const Case& c : cases) {
        Harness h;
        h.store.ResetToDefaults();
        h.state.pendingC = request::kTemplates;
        h.Feed(c.message);
        EXPECT_EQ(h.observer.logLines, c.log);
        EXPECT_TRUE(h.Sent().empty());
        EXPECT_EQ(h.store.templateNames[0], "None");
        EXPECT_EQ(h.store.templateCount, 1);
        EXPECT_EQ(h.state.pendingC, request::kTemplates);
    }
}

TEST(ButtonDownload, LengthErrorKeepsNamesButNotRecords) {
    Harness h;
    h.store.ResetToDefaults();
    h.store.buttonTemplates[0].number = 99;
    // A table of 3 carrying one template, two bytes too long.
    const std::string body = ButtonBody(3, 0, 8, 16, {{"Desk", 5, {}}}).Body() + "zz";
    h.Feed(Layout::Of(body).Finish());
    EXPECT_EQ(h.observer.logLines,
              std::vector<std::string>{"48QX Message Length Error|Button Info"});
    EXPECT_EQ(h.store.templateNames[0], Pad("Desk", 16));
    EXPECT_EQ(h.store.buttonTemplates[0].number, 99);
    // The names grew to the table size; the records keep pace with them.
    EXPECT_EQ(h.store.templateNames.size(), 3u);
    EXPECT_EQ(h.store.buttonTemplates.size(), 3u);
    EXPECT_EQ(h.store.templateIndex.size(), 3u);
}

TEST(ButtonDownload, TemplateBeyondTheTableIsReported) {
    Harness h;
    h.store.ResetToDefaults();
    h.Feed(ButtonBody(1, 0, 8, 16, {{"A", 1, {}}, {"B", 2, {}}}).Finish());
    ASSERT_EQ(h.observer.reports.size(), 1u);
    EXPECT_EQ(h.observer.reports[0].failure.code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(h.store.templateNames.size(), 1u);
    EXPECT_EQ(h.store.templateNames[0], Pad("A", 16));
}

// ---------------------------------------------------------------- split points

// A whole download as the server sends it after the identity query, with
// garbage and polls between frames, one bad checksum and one frame one byte
// too long.
std::string DownloadStream() {
    std::string s;
    s += Raw({0x81, 0x64, 0x64, 0xFF});
    s += Raw({0x01, 0x02, 0x03});
    s += PasswordAnswer("secret");
    s += AlphaBody(10, 6, {"Mic 2", "mic 1", "", "Mic 2", "DJ"}, {0, 1, 2, 3, 4}).Finish();
    s += AlphaBody(20, 4, {"Out", "Air"}, {0, 1}).Finish();
    s += Raw({0xF5});
    s += AlphaBody(30, 2, {"o"}, {0}).Finish();
    s += AlphaBody(40, 2, {}, {}).Finish();
    s += Raw({0x7E});
    s += ListBody(11, 16, {{"Mics", {0, 1, 3}}, {"DJ", {4}}}).Finish();
    s += ListBody(21, 16, {{"Air", {1}}}).Finish(2); // bad checksum
    s += ListBody(31, 16, {}).Finish();
    s += Layout::Of(ListBody(41, 16, {{"R", {}}}).Body() + "q").Finish();
    s += Raw({0xF1, 0xF3, 0xF4});
    s += GroupBody(16, {{"Studio A", {{0, 11}, {1, 11}}}, {"Spare", {}}}).Finish();
    s += ButtonBody(2, 0, 8, 16, {{"Desk", 1, {{40, 1, 0, 16383, "On air"}}}, {"Other", 2, {}}})
             .Finish();
    return s;
}

struct Outcome {
    std::string store;
    std::vector<std::string> sent;
    std::string password;
    uint32_t a, b, c;
};

Outcome FeedInChunks(const std::string& stream, const std::vector<size_t>& cuts) {
    Harness h;
    h.store.ResetToDefaults();
    size_t at = 0;
    for (size_t cut : cuts) {
        h.Feed(std::string_view(stream).substr(at, cut - at));
        at = cut;
    }
    h.Feed(std::string_view(stream).substr(at));
    EXPECT_TRUE(h.session.BufferEmpty());
    for (const std::string& line : h.observer.logLines) {
        // A partial frame must never be mistaken for a cut-off one.
        EXPECT_EQ(line.find("Incomplete"), std::string::npos) << line;
    }
    return {Dump(h.store),    h.Sent(),         h.state.serverPassword,
            h.state.pendingA, h.state.pendingB, h.state.pendingC};
}

void ExpectSame(const Outcome& a, const Outcome& b) {
    EXPECT_EQ(a.store, b.store);
    EXPECT_EQ(a.sent, b.sent);
    EXPECT_EQ(a.password, b.password);
    EXPECT_EQ(a.a, b.a);
    EXPECT_EQ(a.b, b.b);
    EXPECT_EQ(a.c, b.c);
}

TEST(DownloadSplitPoints, WholeStreamGivesTheExpectedStore) {
    const Outcome whole = FeedInChunks(DownloadStream(), {});
    // Identity answer, request for everything, poll answer, then the
    // re-request of the Output lists.
    ASSERT_EQ(whole.sent.size(), 4u);
    EXPECT_EQ(whole.sent[0], Raw({0x81, 0x11, 0x01, 0x12, 0xFF}));
    EXPECT_EQ(whole.sent[1], Request(0x03000302, 0, 0xFC));
    EXPECT_EQ(whole.sent[2], Raw({0xF4}));
    EXPECT_EQ(whole.sent[3], Request(0, 0, 0x20));
    EXPECT_EQ(whole.password, "secret");
    // The re-request reset the masks; groups and templates cleared theirs.
    EXPECT_EQ(whole.a, 0u);
    EXPECT_EQ(whole.c, 0x20u);
    EXPECT_NE(whole.store.find("'      ','DJ    ','mic 1 ','Mic 2 ','Mic 2 '"), std::string::npos);
    EXPECT_NE(whole.store.find("'Studio A        '"), std::string::npos);
    EXPECT_NE(whole.store.find("'On air  '"), std::string::npos);
}

TEST(DownloadSplitPoints, EverySplitPointGivesTheSameResult) {
    const std::string stream = DownloadStream();
    const Outcome whole = FeedInChunks(stream, {});
    // Two pieces, cut at every position.
    for (size_t cut = 1; cut < stream.size(); ++cut) {
        SCOPED_TRACE(cut);
        ExpectSame(FeedInChunks(stream, {cut}), whole);
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
    // One byte at a time.
    std::vector<size_t> every;
    for (size_t i = 1; i < stream.size(); ++i) {
        every.push_back(i);
    }
    ExpectSame(FeedInChunks(stream, every), whole);
}

TEST(DownloadSplitPoints, RandomChunking) {
    const std::string stream = DownloadStream();
    const Outcome whole = FeedInChunks(stream, {});
    std::mt19937 rng(1234);
    for (int round = 0; round < 200; ++round) {
        std::vector<size_t> cuts;
        size_t at = 0;
        std::uniform_int_distribution<size_t> step(1, 40);
        while ((at += step(rng)) < stream.size()) {
            cuts.push_back(at);
        }
        SCOPED_TRACE(round);
        ExpectSame(FeedInChunks(stream, cuts), whole);
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace lumeth
