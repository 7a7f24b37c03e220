// Golden vectors for every message builder. Expected bytes come from the
// frame layouts via tests/link/layout.h and messages.h, never from the builders.
#include <gtest/gtest.h>

#include <optional>

#include "link/codec.h"
#include "tests/link/messages.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

#define EXPECT_BYTES(actual, expected) EXPECT_EQ(Hex(actual), Hex(expected))

TEST(Codec, PasswordFitsOnlyWhatTheMessageCarriesWhole) {
    // 0..127 bytes of 1..127: a longer one overflows the count byte, a zero
    // byte is left out and a byte at or above 0x80 ends the frame early.
    const std::pair<std::string, bool> passwords[] = {{"", true},
                                                      {std::string(127, '~'), true},
                                                      {std::string(128, 'x'), false},
                                                      {"\x80", false},
                                                      {std::string("a\0b", 3), false}};
    for (const auto& [password, fits] : passwords) {
        EXPECT_EQ(codec::PasswordFitsMessage(password), fits) << password;
    }
}

TEST(Codec, DataRequestParsesOnlyWellFormedRequests) {
    const RequestMasks masks{0x03000302, 0x0ABCDEF, 0x00FC};
    const std::string good = Request(masks.a, masks.b, masks.c);
    std::string badSum = good;
    badSum[15] = static_cast<char>((badSum[15] + 1) & 127);
    std::string notRequest = good;
    notRequest[0] = static_cast<char>(0xF1);
    const std::pair<std::string, std::optional<RequestMasks>> cases[] = {
        {good, masks},
        {Request(0, 0, 0), RequestMasks{}},
        {badSum, std::nullopt},
        {notRequest, std::nullopt},
        {good.substr(0, 16), std::nullopt},
        {good + good, std::nullopt},
    };
    for (const auto& [message, expected] : cases) {
        EXPECT_EQ(codec::ParseDataRequest(message), expected) << Hex(message);
    }
}

PanelStore StoreWithLists() {
    PanelStore s;
    s.ResetToDefaults();
    s.lists(SubType::Input) = {DisplayList{3, "Mix", {5, 200, 16383}},
                               DisplayList{0, "A name of twenty chr", {0}}};
    s.listCount(SubType::Input) = 2;
    return s;
}

TEST(CodecUpload, DisplayLists) {
    const PanelStore s = StoreWithLists();
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input),
                 ListBody(11, 16, {{"Mix", {5, 200, 16383}}, {"A name of twenty", {}}}).Finish());
    PanelStore empty;
    empty.ResetToDefaults();
    empty.lists(SubType::Relay)[0].name = "";
    // 41 + 1 + 16 + 16 blanks (16 * 32 = 512 = 0 mod 128) = 58.
    EXPECT_BYTES(codec::DisplayListMessage(empty, SubType::Relay),
                 Raw({0xDF, 41, 1, 0, 0, 0, 16, 0, 0}) + std::string(16, ' ') + Raw({58, 0xFF}));
}

TEST(CodecUpload, CountsBeyondTheArraysAreNotRead) {
    PanelStore s = StoreWithLists();
    const std::string clean = codec::DisplayListMessage(s, SubType::Input);
    s.listCount(SubType::Input) = 9;              // only 2 lists exist
    s.lists(SubType::Input)[0].channelCount = 40; // only 3 channels exist
    // Clamped to what exists, and the counts on the wire say so too.
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input), clean);
    s.listCount(SubType::Input) = -3;
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input), ListBody(11, 16, {}).Finish());

    s.groups.userGroupCount = 5; // one group array element only
    s.templates.templateCount = 7;
    EXPECT_BYTES(codec::GroupMessage(s), GroupBody(16, {{"No Users", {}}}).Finish());
    EXPECT_EQ(static_cast<unsigned char>(codec::ButtonMessage(s)[3]), 1u); // X clamped to 1
}

TEST(CodecUpload, GroupsWithMixedSubTypes) {
    PanelStore s;
    s.ResetToDefaults();
    s.groups.Resize(2);
    s.groups.userGroupCount = 2;
    s.groups.userGroupNames = {"Studio A", "Newsroom group 12345"};
    s.groups.userGroups[0] = UserGroup{2, {0, 130}, {11, 41}};
    s.groups.userGroups[1] = UserGroup{};
    EXPECT_BYTES(
        codec::GroupMessage(s),
        GroupBody(16, {{"Studio A", {{0, 11}, {130, 41}}}, {"Newsroom group 1", {}}}).Finish());
}

TEST(CodecUpload, ButtonTemplates) {
    PanelStore s;
    s.ResetToDefaults();
    s.templates.Resize(2);
    s.templates.templateCount = 2;
    s.templates.templateNames = {"Desk", "A very long template name"};
    s.templates.buttonTemplates[0].number = 300;
    s.templates.buttonTemplates[0].buttonCount = 2;
    s.templates.buttonTemplates[0].buttons = {PanelButton{810, 1, "Listen to studio", 12, 7},
                                              PanelButton::Cleared()};
    s.templates.buttonTemplates[1] = ButtonTemplate{};
    s.templates.buttonTemplates[1].number = 1;
    EXPECT_BYTES(codec::ButtonMessage(s),
                 ButtonBody(2, 0, 8, 16,
                            {{"Desk", 300, {{810, 1, 12, 7, "Listen t"}, {0, 0, 16383, 16383, ""}}},
                             {"A very long template name", 1, {}}})
                     .Finish());
}

} // namespace
} // namespace lumeth
