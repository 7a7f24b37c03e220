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

} // namespace
} // namespace lumeth
