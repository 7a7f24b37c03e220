// The download handlers fed through the framing as a server would send them:
// what each accepted message stores and reports, what each rejected one logs
// and asks for again, and that any chunking of the stream gives one result.
#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "link/decoders.h"
#include "link/frame_reader.h"
#include "link/protocol.h"
#include "tests/link/messages.h"
#include "tests/link/session_harness.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

std::string Pad(const std::string& s, size_t w) {
    return s + std::string(w - s.size(), ' ');
}

// A session over a reset store with every part of the download pending.
struct Downloading : Harness {
    Downloading() {
        store.ResetToDefaults();
        state.pendingA = kRequestEverything.a;
        state.pendingC = kRequestEverything.c;
    }
};

TEST(Download, AcceptedMessagesClearTheirBitAndSayWhatChanged) {
    struct Case {
        std::string message;
        uint32_t bitA, bitC;
        std::vector<std::string> activities;
        Part change;
    };
    const Case cases[] = {
        {PasswordAnswer("abc"), Wire(Part::Password).bit, 0, {}, Part::Password},
        {AlphaBody(20, 5, {"beta"}, {0}).Finish(),
         Wire(Part::OutputAlphas).bit,
         0,
         {"Output Alphas"},
         Part::OutputAlphas},
        {AlphaBody(40, 5, {"beta"}, {0}).Finish(),
         Wire(Part::RelayAlphas).bit,
         0,
         {"Relay Alphas"},
         Part::RelayAlphas},
        {ListBody(11, 16, {{"Mix", {1}}}).Finish(),
         0,
         Wire(Part::InputLists).bit,
         {"Source Display Lists"},
         Part::InputLists},
        {ListBody(21, 16, {{"Mix", {1}}}).Finish(),
         0,
         Wire(Part::OutputLists).bit,
         {"Destination Display Lists"},
         Part::OutputLists},
        {GroupBody(16, {{"Studio", {}}}).Finish(),
         0,
         Wire(Part::UserGroups).bit,
         {"Group Data"},
         Part::UserGroups},
        {ButtonBody(1, 0, 8, 16, {{"Desk", 5, {}}}).Finish(),
         0,
         Wire(Part::Templates).bit,
         {"Button Templates"},
         Part::Templates},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Hex(c.message));
        Downloading h;
        h.Feed(c.message);
        EXPECT_TRUE(h.observer.Quiet());
        EXPECT_TRUE(h.Sent().empty());
        EXPECT_EQ(h.state.pendingA, kRequestEverything.a & ~c.bitA);
        EXPECT_EQ(h.state.pendingC, kRequestEverything.c & ~c.bitC);
        EXPECT_EQ(h.observer.activities, c.activities);
        EXPECT_EQ(h.observer.changes, std::vector<Part>{c.change});
    }
}

struct ExpectedReport {
    std::string location, category;
    std::optional<ErrorCode> code;
};

// Each rejected message leaves the store as it was; some are logged or
// reported, and some make the session ask for that part alone again.
TEST(Download, RejectedMessagesLeaveTheStoreAsItWas) {
    const Layout alpha = AlphaBody(10, 4, {"Mic", "Line"}, {0, 1});
    const Layout lists = ListBody(11, 8, {{"One", {4, 5}}, {"Two", {6}}});
    const Layout buttons = ButtonBody(1, 0, 8, 16, {{"Desk", 5, {{40, 0, 1, 2, "L"}}}});
    std::string notR = buttons.Body();
    notR[2] = 0x53;
    auto longer = [](const Layout& l) { return Layout::Of(l.Body() + " ").Finish(); };
    auto shorter = [](const Layout& l) {
        return Layout::Of(l.Body().substr(0, l.Body().size() - 1)).Finish();
    };
    // Lists that announce more than they carry; in the second the count of
    // list 2 is read from the checksum and end marker (32640 + checksum
    // channels: it fits 16 bits and runs past the end).
    const std::string fiveLists =
        Layout(0xDF).Byte(31).U14(5).U14(0).Byte(4).U14(1).U14(7).Text("abcd").Finish();
    const std::string twoLists =
        Layout(0xDF).Byte(31).U14(2).U14(0).Byte(4).U14(1).U14(7).Text("abcd").Finish();
    const std::string hugeList =
        Layout(0xDF).Byte(31).U14(1).U14(0).Byte(4).U14(16000).U14(7).Finish();
    const std::string badLength = Layout(0x80).Bytes({0x05, 4}).Text("abc").Finish(); // 4 for 3

    const ExpectedReport shortRead{"Error Receiving Display Lists", "48QX Message Error",
                                   ErrorCode::InvalidProcedureCall};
    const ExpectedReport listSite{"Error Receiving Display Lists", "48QX Message Error", {}};
    const ExpectedReport noLength{"Error Receiving Password", "IP Message Error", {}};
    const ExpectedReport relaySum{"48QX Check Sum Error", "Relay Display Lists", {}};
    const ExpectedReport groupSum{"48QX Check Sum Error", "", {}};
    const std::vector<std::string> lengthError{"Message Length Error|Source Display Lists"};
    const std::vector<std::string> buttonSum{"48QX Check Sum Error|Button Data"};
    const std::pair<uint32_t, uint32_t> password{Wire(Part::Password).bit, 0};
    const std::pair<uint32_t, uint32_t> relayLists{0, Wire(Part::RelayLists).bit};
    const std::pair<uint32_t, uint32_t> groups{0, Wire(Part::UserGroups).bit};
    struct Case {
        const char* what;
        std::string message;
        std::vector<std::string> log;
        std::vector<ExpectedReport> reports;
        std::optional<std::pair<uint32_t, uint32_t>> request; // masks A and C asked again
    };
    const Case cases[] = {
        {"password checksum", PasswordAnswer("abc", 1), {}, {}, password},
        {"password length", badLength, {}, {}, password},
        {"password without length", Raw({0x80, 0xFF}), {}, {noLength}, {}},
        {"alpha checksum", alpha.Finish(1), {}, {}, {}},
        {"alpha one byte too long", longer(alpha), {}, {}, {}},
        {"alpha one byte too short", shorter(alpha), {}, {}, {}},
        {"alpha unknown code", AlphaBody(50, 4, {"Mic"}, {0}).Finish(), {}, {}, {}},
        {"lists one byte too long", longer(lists), lengthError, {}, {}},
        {"lists one byte too short", shorter(lists), lengthError, {}, {}},
        {"5 lists announced", fiveLists, {}, {shortRead}, {}},
        {"2 lists announced", twoLists, {}, {shortRead}, {}},
        {"16000 channels", hugeList, {}, {shortRead}, {}},
        {"lists checksum", ListBody(41, 16, {{"R", {1}}}).Finish(3), {}, {relaySum}, relayLists},
        {"lists of unknown sub-type", ListBody(12, 16, {{"R", {1}}}).Finish(), {}, {listSite}, {}},
        {"groups checksum", GroupBody(16, {{"S", {{0, 11}}}}).Finish(5), {}, {groupSum}, groups},
        {"buttons checksum", buttons.Finish(1), buttonSum, {}, {}},
        {"buttons without the R marker", Layout::Of(notR).Finish(), {}, {}, {}},
    };
    Downloading untouched;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Downloading h;
        h.Feed(c.message);
        EXPECT_EQ(test::PartsOf(h.store), test::PartsOf(untouched.store));
        EXPECT_TRUE(h.observer.changes.empty());
        EXPECT_EQ(h.observer.logLines, c.log);
        ASSERT_EQ(h.observer.reports.size(), c.reports.size());
        for (size_t i = 0; i < c.reports.size(); ++i) {
            EXPECT_EQ(h.observer.reports[i].location, c.reports[i].location);
            EXPECT_EQ(h.observer.reports[i].category, c.reports[i].category);
            if (c.reports[i].code) {
                EXPECT_EQ(h.observer.reports[i].failure.code, *c.reports[i].code);
            }
        }
        if (c.request) {
            // A single re-request replaces every mask.
            const auto [a, cMask] = *c.request;
            EXPECT_EQ(h.Sent(), std::vector<std::string>{Request(a, 0, cMask)});
            EXPECT_EQ(h.state.pendingA, a);
            EXPECT_EQ(h.state.pendingC, cMask);
        } else {
            EXPECT_TRUE(h.Sent().empty());
            EXPECT_EQ(h.state.pendingA, kRequestEverything.a);
            EXPECT_EQ(h.state.pendingC, kRequestEverything.c);
        }
    }
}

TEST(AlphaDownload, SortsCaseInsensitivelyKeepingChannelOrderAlongside) {
    Harness h;
    h.Feed(AlphaBody(20, 5, {"beta", "Alpha", "alpha"}, {0, 1, 2}).Finish());
    const AlphaTable& t = h.store.alpha(SubType::Output);
    EXPECT_EQ(t.count, 3);
    EXPECT_EQ(t.names, (std::vector<std::string>{"Alpha", "alpha", "beta "}));
    EXPECT_EQ(t.numbers, (std::vector<int16_t>{1, 2, 0}));
    EXPECT_EQ(t.positionOf, (std::vector<int16_t>{2, 0, 1}));
    EXPECT_EQ(t.channelNames, (std::vector<std::string>{"beta ", "Alpha", "alpha"}));

    // Records before the start index are skipped.
    h.Feed(AlphaBody(40, 3, {"zzz", "b", "c"}, {0, 1, 2}, /*start=*/1).Finish());
    EXPECT_EQ(h.store.alpha(SubType::Relay).channelNames,
              (std::vector<std::string>{"", "b  ", "c  "}));
    EXPECT_EQ(h.store.alpha(SubType::Relay).numbers, (std::vector<int16_t>{0, 1, 2}));

    // An empty table replaces the old one.
    h.Feed(AlphaBody(20, 2, {}, {}).Finish());
    EXPECT_EQ(h.store.alpha(SubType::Output).count, 0);
    EXPECT_TRUE(h.store.alpha(SubType::Output).names.empty());
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(DisplayListDownload, ReplacesTheListsOfItsSubTypeOnly) {
    Downloading h;
    h.Feed(ListBody(21, 16, {{"Mix", {1, 2, 300}}, {"Bad\nname", {}}}).Finish());
    ASSERT_EQ(h.store.listCount(SubType::Output), 2);
    const auto& lists = h.store.lists(SubType::Output);
    ASSERT_EQ(lists.size(), 2u);
    EXPECT_EQ(lists[0].name, Pad("Mix", 16));
    EXPECT_EQ(lists[0].channels, (std::vector<int16_t>{1, 2, 300}));
    EXPECT_EQ(lists[1].name, Pad("Bad.name", 16));
    EXPECT_EQ(lists[1].channelCount, 0);
    EXPECT_EQ(lists[1].channels.size(), 1u);
    EXPECT_EQ(h.store.lists(SubType::Input)[0].name, "First In List");

    // DF 0B 00 00 00 00 W checksum FF with W = 16 (sum 11 + 16 = 27) empties Input.
    h.Feed(Raw({0xDF, 0x0B, 0, 0, 0, 0, 16, 27, 0xFF}));
    EXPECT_TRUE(h.observer.Quiet());
    EXPECT_EQ(h.store.listCount(SubType::Input), 0);
    EXPECT_EQ(h.store.lists(SubType::Input).size(), 1u);
}

TEST(GroupDownload, ReplacesTheGroupsAndNoGroupsKeepsTheArrays) {
    Downloading h;
    h.Feed(GroupBody(16, {{"Studio", {{0, 11}, {3, 41}}}, {"Empty\x7F", {}}}).Finish());
    const PanelStore& s = h.store;
    ASSERT_EQ(s.groups.userGroupCount, 2);
    ASSERT_EQ(s.groups.userGroups.size(), 2u);
    EXPECT_EQ(s.groups.userGroupNames[0], Pad("Studio", 16));
    EXPECT_EQ(s.groups.userGroupNames[1], Pad("Empty.", 16));
    EXPECT_EQ(s.groups.userGroupIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.groups.userGroupNumber, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.groups.userGroups[0].listIndexes, (std::vector<int16_t>{0, 3}));
    EXPECT_EQ(s.groups.userGroups[0].listTypes, (std::vector<int16_t>{11, 41}));
    EXPECT_EQ(s.groups.userGroups[1].listCount, 0);

    h.Feed(GroupBody(16, {}).Finish());
    EXPECT_EQ(s.groups.userGroupCount, 0);
    EXPECT_EQ(s.groups.userGroupNames.size(), 2u);
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(GroupDownload, DamagedMessagesLeaveTheGroupsWrittenSoFar) {
    Downloading h;
    h.state.pendingC = Wire(Part::UserGroups).bit;
    const std::string body = GroupBody(8, {{"First", {{1, 21}}}, {"Second", {}}}).Body() + "x";
    h.Feed(Layout::Of(body).Finish());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Message Length Error|"});
    EXPECT_EQ(h.store.groups.userGroupCount, 2);
    EXPECT_EQ(h.store.groups.userGroupNames[1], Pad("Second", 8));
    EXPECT_EQ(h.state.pendingC, Wire(Part::UserGroups).bit);
    EXPECT_TRUE(h.observer.changes.empty());

    Downloading shortRead;
    shortRead.Feed(Layout(0xCC).Byte(0).U14(2).U14(0).Byte(2).Text("ab").U14(9000).Finish());
    ASSERT_FALSE(shortRead.observer.reports.empty());
    EXPECT_EQ(shortRead.observer.reports.back().location, "Error Receiving Group Data");
    EXPECT_EQ(shortRead.store.groups.userGroupNames[0], "ab");
}

TEST(ButtonDownload, FillsTemplatesAndButtons) {
    Downloading h;
    const std::string zeroLabel("Ta\0k", 4);
    h.Feed(ButtonBody(2, 0, 8, 16,
                      {{"Desk", 5, {{810, 1, 12, 7, zeroLabel}, {16383, 0, 16383, 16383, ""}}},
                       {"Spare", 6, {}}})
               .Finish());
    const PanelStore& s = h.store;
    EXPECT_EQ(s.templates.templateCount, 2);
    ASSERT_EQ(s.templates.buttonTemplates.size(), 2u);
    EXPECT_EQ(s.templates.templateNames,
              (std::vector<std::string>{Pad("Desk", 16), Pad("Spare", 16)}));
    EXPECT_EQ(s.templates.templateIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.templates.templatePosition, (std::vector<int16_t>{0, 1}));
    const ButtonTemplate& t = s.templates.buttonTemplates[0];
    EXPECT_EQ(t.number, 5);
    ASSERT_EQ(t.buttonCount, 2);
    EXPECT_EQ(t.buttons[0].type, 810);
    EXPECT_EQ(t.buttons[0].captionOption, 1);
    EXPECT_EQ(t.buttons[0].channel, 12);
    EXPECT_EQ(t.buttons[0].channel2, 7);
    EXPECT_EQ(t.buttons[0].label, "Ta.k    ");
    EXPECT_EQ(t.buttons[1].channel2, 16383);
    EXPECT_EQ(s.templates.buttonTemplates[1].number, 6);
    EXPECT_EQ(s.templates.buttonTemplates[1].buttonCount, 0);
}

TEST(ButtonDownload, PartialTableStartsAtItsFirstPosition) {
    Downloading h;
    h.Feed(ButtonBody(4, 2, 8, 16, {{"Two", 22, {{40, 0, 1, 16383, "x"}}}, {"Three", 33, {}}})
               .Finish());
    EXPECT_TRUE(h.observer.Quiet());
    const PanelStore& s = h.store;
    EXPECT_EQ(s.templates.templateCount, 2);
    ASSERT_EQ(s.templates.buttonTemplates.size(), 4u);
    EXPECT_EQ(s.templates.buttonTemplates[1].number, 0);
    EXPECT_EQ(s.templates.buttonTemplates[1].buttonCount, 0);
    EXPECT_EQ(s.templates.buttonTemplates[2].number, 22);
    EXPECT_EQ(s.templates.buttonTemplates[3].number, 33);
    EXPECT_EQ(s.templates.templateNames[0], "None"); // kept from before
    EXPECT_EQ(s.templates.templateNames[3], Pad("Three", 16));
    EXPECT_EQ(s.templates.templateIndex[3], 3);
}

TEST(ButtonDownload, DamagedMessagesKeepWhatWasWritten) {
    // A table of 3 carrying one template, two bytes too long: the names grow
    // to the table size, the records keep pace but are not filled.
    Downloading h;
    h.store.templates.buttonTemplates[0].number = 99;
    h.Feed(Layout::Of(ButtonBody(3, 0, 8, 16, {{"Desk", 5, {}}}).Body() + "zz").Finish());
    EXPECT_EQ(h.observer.logLines,
              std::vector<std::string>{"48QX Message Length Error|Button Info"});
    EXPECT_EQ(h.store.templates.templateNames[0], Pad("Desk", 16));
    EXPECT_EQ(h.store.templates.buttonTemplates[0].number, 99);
    EXPECT_EQ(h.store.templates.templateNames.size(), 3u);
    EXPECT_EQ(h.store.templates.buttonTemplates.size(), 3u);
    EXPECT_EQ(h.store.templates.templateIndex.size(), 3u);

    // A second template in a table of one.
    Downloading beyond;
    beyond.Feed(ButtonBody(1, 0, 8, 16, {{"A", 1, {}}, {"B", 2, {}}}).Finish());
    ASSERT_EQ(beyond.observer.reports.size(), 1u);
    EXPECT_EQ(beyond.observer.reports[0].failure.code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(beyond.store.templates.templateNames, std::vector<std::string>{Pad("A", 16)});
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

// Store, bytes sent, password and the three masks after feeding `stream` cut at `cuts`.
using Outcome = std::tuple<test::StoreParts, std::vector<std::string>, std::string, uint32_t,
                           uint32_t, uint32_t>;

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
    return {test::PartsOf(h.store), h.Sent(),         h.state.serverPassword,
            h.state.pendingA,       h.state.pendingB, h.state.pendingC};
}

TEST(DownloadSplitPoints, WholeStreamGivesTheExpectedStore) {
    const auto [parts, sent, password, a, b, c] = FeedInChunks(DownloadStream(), {});
    const auto& [alphas, lists, groups, templates] = parts;
    // Identity answer, request for everything, poll answer, then the
    // re-request of the Output lists, which reset the masks.
    EXPECT_EQ(sent, (std::vector<std::string>{Raw({0x81, 0x11, 0x01, 0x12, 0xFF}),
                                              Request(0x03000302, 0, 0xFC), Raw({0xF4}),
                                              Request(0, 0, 0x20)}));
    EXPECT_EQ(password, "secret");
    EXPECT_EQ(a, 0u);
    EXPECT_EQ(c, 0x20u);
    EXPECT_EQ(alphas[Index(SubType::Input)].names,
              (std::vector<std::string>{"      ", "DJ    ", "mic 1 ", "Mic 2 ", "Mic 2 "}));
    EXPECT_EQ(groups.userGroupNames[0], "Studio A        ");
    EXPECT_EQ(templates.buttonTemplates[0].buttons[0].label, "On air  ");
}

TEST(DownloadSplitPoints, AnyChunkingGivesTheSameResult) {
    const std::string stream = DownloadStream();
    const Outcome whole = FeedInChunks(stream, {});
    // Two pieces, cut at every position.
    for (size_t cut = 1; cut < stream.size() && !HasFailure(); ++cut) {
        EXPECT_EQ(FeedInChunks(stream, {cut}), whole) << "cut at " << cut;
    }
    // One byte at a time.
    std::vector<size_t> every;
    for (size_t i = 1; i < stream.size(); ++i) {
        every.push_back(i);
    }
    EXPECT_EQ(FeedInChunks(stream, every), whole);
}

// The decoders' values put into a side copy of the configuration give the
// store the session builds from the same bytes, damaged frames included.
TEST(DownloadSplitPoints, DecodedValuesGiveTheSessionsStore) {
    const std::string stream =
        DownloadStream() +
        Layout::Of(GroupBody(8, {{"First", {{1, 21}}}, {"Second", {}}}).Body() + "x").Finish() +
        Layout::Of(ButtonBody(3, 0, 8, 16, {{"Desk", 5, {}}}).Body() + "zz").Finish();
    Harness h;
    h.store.ResetToDefaults();
    h.Feed(stream);

    PanelStore side;
    side.ResetToDefaults();
    FrameReader reader;
    reader.Append(stream);
    while (const auto event = reader.Next()) {
        if (event->kind == FrameEvent::Kind::Frame) {
            Decoded decoded = decode::Frame(event->bytes, side);
            StorePart(side, decoded.part, std::move(decoded.value));
        }
    }
    EXPECT_EQ(test::PartsOf(side), test::PartsOf(h.store));
}

} // namespace
} // namespace lumeth
