// Wire integers and the checksum.
#include <gtest/gtest.h>

#include "link/wire.h"
#include "tests/link/layout.h"

namespace lumeth {
namespace {

using testing::Raw;

TEST(Wire, AppendFollowsTheLayout) {
    for (int v : {0, 1, 127, 128, 133, 8191, 16383}) {
        std::string out;
        wire::Append14(out, v);
        EXPECT_EQ(out, Raw({v % 128, v / 128}));
    }
    std::string out;
    wire::Append28(out, 0x0FFFFFFF);
    wire::Append28(out, 0x03000302);
    EXPECT_EQ(out, Raw({0x7F, 0x7F, 0x7F, 0x7F, 0x02, 0x06, 0x00, 0x18}));
}

TEST(Wire, ChecksumAndFinish) {
    // Command byte and end marker only: an empty sum.
    EXPECT_EQ(wire::Checksum(Raw({0xF2, 0xFF}), 2), 0);
    EXPECT_EQ(wire::Checksum(Raw({0xF2}), 2), 0);
    EXPECT_EQ(wire::Checksum("", 0), 0);
    // The identity answer's worked example, with and without its tail.
    EXPECT_EQ(wire::Checksum(Raw({0x81, 0x11, 0x01}), 0), 0x12);
    EXPECT_EQ(wire::Checksum(Raw({0x81, 0x11, 0x01, 0x12, 0xFF}), 2), 0x12);
    EXPECT_EQ(wire::Checksum(Raw({0xDF, 0x7F, 0x7F, 0x7F}), 0), (3 * 127) % 128);

    std::string m = Raw({0x80, 0x05, 0x00});
    wire::Finish(m);
    EXPECT_EQ(m, Raw({0x80, 0x05, 0x00, 0x05, 0xFF}));
}

TEST(Wire, SplitBytes) {
    std::string text(40000, 'x');
    text[16384] = 'y';
    EXPECT_EQ(wire::SplitBytes(text, 16384).size(), 16384u);
    EXPECT_EQ(text.size(), 40000u - 16384u);
    EXPECT_EQ(text[0], 'y');
    std::string shortText = "abc";
    EXPECT_EQ(wire::SplitBytes(shortText, 10), "abc");
    EXPECT_TRUE(shortText.empty());
}

} // namespace
} // namespace lumeth
