// Golden vectors for every message builder. Expected bytes come from the
// frame layouts via tests/link/layout.h, never from the builders.
#include <gtest/gtest.h>

#include "link/codec.h"
#include "tests/link/layout.h"

namespace lumeth {
namespace {

using testing::Hex;
using testing::Layout;
using testing::Raw;

#define EXPECT_BYTES(actual, expected) EXPECT_EQ(Hex(actual), Hex(expected))

TEST(CodecFixed, IdentityMessages) {
    EXPECT_BYTES(codec::IdentityQuery(), Raw({0x81, 0x64, 0x64, 0xFF}));
    EXPECT_BYTES(codec::IdentityAnswer(), Raw({0x81, 0x11, 0x01, 0x12, 0xFF}));
}

TEST(CodecFixed, DataRequestForEverything) {
    const std::string expected = Raw({0xF2, 0x02, 0x06, 0x00, 0x18, 0x00, 0x00, 0x00, 0x00, 0x7C,
                                      0x01, 0x00, 0x00, 0x00, 0x00, 0x1D, 0xFF});
    EXPECT_BYTES(codec::DataRequest(0x03000302, 0, 0x00FC), expected);
}

TEST(CodecFixed, DataRequestCarriesEachMaskInItsOwnField) {
    // Mask B is never used by the tool, but a builder that dropped or swapped
    // it would still be wrong for the emulator.
    const uint32_t a = 0x0ABCDEF1 & 0x0FFFFFFF;
    const uint32_t b = 0x01234567;
    const uint32_t c = 0x0080;
    const std::string expected =
        Layout(0xF2).U28(a).U28(b).U14(static_cast<int>(c)).Bytes({0, 0, 0, 0}).Finish();
    const std::string actual = codec::DataRequest(a, b, c);
    ASSERT_EQ(actual.size(), 17u);
    EXPECT_BYTES(actual, expected);
    // A single re-request for the password.
    EXPECT_BYTES(codec::DataRequest(2, 0, 0),
                 Raw({0xF2, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0xFF}));
}

TEST(CodecPassword, EmptyAndShortPasswords) {
    EXPECT_BYTES(codec::PasswordMessage(""), Raw({0x80, 0x05, 0x00, 0x05, 0xFF}));
    EXPECT_BYTES(codec::PasswordMessage("abc"), Layout(0x80).Bytes({0x05, 3}).Text("abc").Finish());
}

TEST(CodecPassword, ZeroBytesAreLeftOutButCounted) {
    const std::string pw("a\0b", 3);
    EXPECT_BYTES(codec::PasswordMessage(pw), Layout(0x80).Bytes({0x05, 3}).Text("ab").Finish());
}

TEST(CodecText, FixedWidthCutsAndPads) {
    EXPECT_EQ(codec::FixedWidth("Mix", 16), "Mix             ");
    EXPECT_EQ(codec::FixedWidth("Twenty characters!!!", 16), "Twenty character");
    EXPECT_EQ(codec::FixedWidth("", 8), std::string(8, ' '));
    EXPECT_EQ(codec::FixedWidth("exactly8", 8), "exactly8");
}

TEST(CodecFraming, FindEndOfMessage) {
    EXPECT_EQ(codec::FindEndOfMessage(""), 0u);
    EXPECT_EQ(codec::FindEndOfMessage(Raw({0xDF, 0x0B, 0x01})), 0u);
    EXPECT_EQ(codec::FindEndOfMessage(Raw({0xFF})), 1u);
    EXPECT_EQ(codec::FindEndOfMessage(Raw({0x81, 0x11, 0x01, 0x12, 0xFF, 0x80, 0xFF})), 5u);
}

PanelStore StoreWithLists() {
    PanelStore s;
    s.ResetToDefaults();
    auto& in = s.lists(SubType::Input);
    in.resize(2);
    in[0].name = "Mix";
    in[0].channelCount = 3;
    in[0].channels = {5, 200, 16383};
    in[1].name = "A name of twenty chr";
    in[1].channelCount = 0;
    in[1].channels = {0};
    s.listCount(SubType::Input) = 2;
    return s;
}

TEST(CodecUpload, DisplayListsCutAndPadNames) {
    const PanelStore s = StoreWithLists();
    const std::string expected = Layout(0xDF)
                                     .Byte(11)
                                     .U14(2)
                                     .Bytes({0, 0, 16})
                                     .U14(3)
                                     .U14(5)
                                     .U14(200)
                                     .U14(16383)
                                     .Text("Mix             ")
                                     .U14(0)
                                     .Text("A name of twenty")
                                     .Finish();
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input), expected);
}

TEST(CodecUpload, OneEmptyListPerSubType) {
    PanelStore s;
    s.ResetToDefaults();
    s.lists(SubType::Relay)[0].name = "";
    const std::string actual = codec::DisplayListMessage(s, SubType::Relay);
    std::string expected = Raw({0xDF, 41, 1, 0, 0, 0, 16, 0, 0}) + std::string(16, ' ');
    // 41 + 1 + 16 + 16 blanks (16 * 32 = 512 = 0 mod 128) = 58.
    expected += Raw({58, 0xFF});
    EXPECT_BYTES(actual, expected);
}

TEST(CodecUpload, CountsBeyondTheArraysAreNotRead) {
    PanelStore s = StoreWithLists();
    s.listCount(SubType::Input) = 9;              // only 2 lists exist
    s.lists(SubType::Input)[0].channelCount = 40; // only 3 channels exist
    const std::string expected = Layout(0xDF)
                                     .Byte(11)
                                     .U14(2)
                                     .Bytes({0, 0, 16})
                                     .U14(3)
                                     .U14(5)
                                     .U14(200)
                                     .U14(16383)
                                     .Text("Mix             ")
                                     .U14(0)
                                     .Text("A name of twenty")
                                     .Finish();
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input), expected);

    s.listCount(SubType::Input) = -3;
    EXPECT_BYTES(codec::DisplayListMessage(s, SubType::Input),
                 Layout(0xDF).Byte(11).U14(0).Bytes({0, 0, 16}).Finish());

    s.userGroupCount = 5; // one group array element only
    s.templateCount = 7;
    EXPECT_EQ(codec::GroupMessage(s),
              Layout(0xCC).Byte(0).U14(1).Bytes({0, 0, 16}).Padded("No Users", 16).U14(0).Finish());
    EXPECT_EQ(static_cast<unsigned char>(codec::ButtonMessage(s)[3]), 1u); // X clamped to 1
}

TEST(CodecUpload, GroupsWithMixedSubTypes) {
    PanelStore s;
    s.ResetToDefaults();
    s.ResizeUserGroups(2);
    s.userGroupCount = 2;
    s.userGroupNames = {"Studio A", "Newsroom group 12345"};
    s.userGroups[0].listCount = 2;
    s.userGroups[0].listIndexes = {0, 130};
    s.userGroups[0].listTypes = {11, 41};
    s.userGroups[1] = UserGroup{};
    const std::string expected = Layout(0xCC)
                                     .Byte(0)
                                     .U14(2)
                                     .Bytes({0, 0, 16})
                                     .Padded("Studio A", 16)
                                     .U14(2)
                                     .U14(0)
                                     .U14(11)
                                     .U14(130)
                                     .U14(41)
                                     .Padded("Newsroom group 1", 16)
                                     .U14(0)
                                     .Finish();
    EXPECT_BYTES(codec::GroupMessage(s), expected);
}

TEST(CodecUpload, ButtonTemplates) {
    PanelStore s;
    s.ResetToDefaults();
    s.ResizeTemplates(2);
    s.templateCount = 2;
    s.templateNames = {"Desk", "A very long template name"};
    ButtonTemplate& t0 = s.buttonTemplates[0];
    t0.number = 300;
    t0.buttonCount = 2;
    t0.buttons = {PanelButton{810, 1, "Listen to studio", 12, 7}, PanelButton::Cleared()};
    s.buttonTemplates[1] = ButtonTemplate{};
    s.buttonTemplates[1].number = 1;

    const std::string expected = Layout(0xFD)
                                     .Bytes({0x7F, 0x52})
                                     .U14(2)
                                     .U14(2)
                                     .U14(0)
                                     .Bytes({8, 16})
                                     .Padded("Desk", 16)
                                     .U14(300)
                                     .U14(2)
                                     .U14(810)
                                     .U14(1)
                                     .U14(12)
                                     .U14(7)
                                     .Text("Listen t")
                                     .U14(0)
                                     .U14(0)
                                     .U14(16383)
                                     .U14(16383)
                                     .Padded("", 8)
                                     .Padded("A very long template name", 16)
                                     .U14(1)
                                     .U14(0)
                                     .Finish();
    EXPECT_BYTES(codec::ButtonMessage(s), expected);
}

TEST(CodecServer, AlphaTableWidthAndNumbers) {
    const std::vector<std::string> names = {"Mic 1", "Studio B long", ""};
    const std::string expected = Layout(0xFC)
                                     .Bytes({20, 13})
                                     .U14(3)
                                     .U14(0)
                                     .Padded("Mic 1", 13)
                                     .U14(0)
                                     .Text("Studio B long")
                                     .U14(1)
                                     .Padded("", 13)
                                     .U14(2)
                                     .Finish();
    EXPECT_BYTES(codec::AlphaTableMessage(SubType::Output, names), expected);

    const std::string narrow =
        Layout(0xFC).Bytes({40, 4}).U14(1).U14(0).Text("Mic ").U14(0).Finish();
    EXPECT_BYTES(codec::AlphaTableMessage(SubType::Relay, {"Mic 1"}, 4), narrow);
}

TEST(CodecServer, LargeAlphaTableNumbersUseBothSeptets) {
    std::vector<std::string> names(300, "x");
    const std::string m = codec::AlphaTableMessage(SubType::Input, names);
    ASSERT_EQ(m.size(), 9u + 300u * 3u);
    // Record 299 sits at 7 + 299 * 3; its number follows the one name byte.
    const size_t at = 7 + 299 * 3 + 1;
    EXPECT_EQ(static_cast<unsigned char>(m[at]), 299 % 128);
    EXPECT_EQ(static_cast<unsigned char>(m[at + 1]), 299 / 128);
    EXPECT_EQ(static_cast<unsigned char>(m[3]), 300 % 128);
    EXPECT_EQ(static_cast<unsigned char>(m[4]), 300 / 128);
}

} // namespace
} // namespace lumeth
