// Wire integers and the checksum.
#include <gtest/gtest.h>

#include "link/wire.h"
#include "tests/link/layout.h"

namespace lumeth {
namespace {

using testing::Raw;

TEST(Wire, JoinSeptets) {
    EXPECT_EQ(wire::JoinSeptets(0x7F, 0x7F), 16383);
    EXPECT_EQ(wire::JoinSeptets(5, 1), 133);
    EXPECT_EQ(wire::JoinSeptets(0, 0), 0);
    EXPECT_FALSE(wire::JoinSeptets(0x80, 0).has_value());
    EXPECT_FALSE(wire::JoinSeptets(0, 0xFF).has_value());
}

TEST(Wire, Read14StaysInsideTheMessage) {
    const std::string m = Raw({0xDF, 0x05, 0x01, 0x7F});
    EXPECT_EQ(wire::Read14(m, 1), 133);
    EXPECT_EQ(wire::Read14(m, 2), 1 + 127 * 128);
    EXPECT_FALSE(wire::Read14(m, 3).has_value());
    EXPECT_FALSE(wire::Read14(m, 4).has_value());
    EXPECT_FALSE(wire::Read14(m, static_cast<size_t>(-1)).has_value());
    EXPECT_FALSE(wire::Read14(m, 0).has_value()); // command byte has its top bit set
    EXPECT_FALSE(wire::Read14("", 0).has_value());
}

TEST(Wire, AppendRoundTripsThroughTheLayout) {
    for (int v : {0, 1, 127, 128, 133, 8191, 16383}) {
        std::string out;
        wire::Append14(out, v);
        ASSERT_EQ(out.size(), 2u);
        EXPECT_EQ(static_cast<unsigned char>(out[0]), v % 128);
        EXPECT_EQ(static_cast<unsigned char>(out[1]), v / 128);
        EXPECT_EQ(wire::Read14(out, 0), v);
    }
    std::string out;
    wire::Append28(out, 0x0FFFFFFF);
    EXPECT_EQ(out, Raw({0x7F, 0x7F, 0x7F, 0x7F}));
    out.clear();
    wire::Append28(out, 0x03000302);
    EXPECT_EQ(out, Raw({0x02, 0x06, 0x00, 0x18}));
}

TEST(Wire, ChecksumTails) {
    // Command byte and end marker only: an empty sum.
    EXPECT_EQ(wire::Checksum(Raw({0xF2, 0xFF}), 2), 0);
    EXPECT_EQ(wire::Checksum(Raw({0xF2}), 2), 0);
    EXPECT_EQ(wire::Checksum("", 0), 0);
    // The identity answer's worked example.
    EXPECT_EQ(wire::Checksum(Raw({0x81, 0x11, 0x01}), 0), 0x12);
    EXPECT_EQ(wire::Checksum(Raw({0x81, 0x11, 0x01, 0x12, 0xFF}), 2), 0x12);
    // Reduced to 7 bits as it goes.
    EXPECT_EQ(wire::Checksum(Raw({0xDF, 0x7F, 0x7F, 0x7F}), 0), (3 * 127) % 128);

    std::string m = Raw({0x80, 0x05, 0x00});
    wire::Finish(m);
    EXPECT_EQ(m, Raw({0x80, 0x05, 0x00, 0x05, 0xFF}));
}

TEST(Wire, SplitBytes) {
    std::string text(40000, 'x');
    text[16384] = 'y';
    const std::string first = wire::SplitBytes(text, 16384);
    EXPECT_EQ(first.size(), 16384u);
    EXPECT_EQ(text.size(), 40000u - 16384u);
    EXPECT_EQ(text[0], 'y');
    std::string shortText = "abc";
    EXPECT_EQ(wire::SplitBytes(shortText, 10), "abc");
    EXPECT_TRUE(shortText.empty());
}

} // namespace
} // namespace lumeth
