#include <gtest/gtest.h>

#include <string>

#include "tests/link/layout.h"
#include "tools/sim/fault_injector.h"

using lumeth::sim::Delivery;
using lumeth::sim::FaultInjector;
using lumeth::sim::FaultOptions;
using lumeth::testing::Layout;

namespace {

// A framed display-list answer with a body of `bodyLength` bytes.
std::string Answer(size_t bodyLength) {
    Layout l(0xDF);
    for (size_t i = 0; i < bodyLength; ++i) {
        l.Byte(int(i % 128));
    }
    return l.Finish();
}

std::string Joined(const Delivery& d) {
    std::string all;
    for (const auto& c : d.chunks) {
        all += c.bytes;
    }
    return all;
}

} // namespace

// Each spoiling fault at certainty, checked over many draws.
TEST(FaultInjector, SpoiledMessagesKeepTheirShape) {
    FaultOptions checksum, cut, garbage;
    checksum.checksum = 1.0;
    cut.cut = 1.0;
    garbage.garbage = 1.0;
    FaultInjector checksums(checksum, 1), cuts(cut, 7), noise(garbage, 1);
    const std::string m = Answer(30);
    const size_t sum = m.size() - 2;
    for (int i = 0; i < 200; ++i) {
        // A wrong checksum is still a seven-bit byte; all else is as it was.
        std::string sent = Joined(checksums.Shape(m, true));
        ASSERT_EQ(sent.size(), m.size());
        EXPECT_EQ(sent.substr(0, sum), m.substr(0, sum));
        EXPECT_NE(sent[sum], m[sum]);
        EXPECT_EQ(static_cast<uint8_t>(sent[sum]) & 0x80u, 0u);
        EXPECT_EQ(sent.back(), m.back());

        // A cut answer keeps its command byte and loses the end marker.
        sent = Joined(cuts.Shape(m, true));
        ASSERT_GE(sent.size(), 1u);
        ASSERT_LE(sent.size(), m.size() - 1);
        EXPECT_EQ(sent, m.substr(0, sent.size()));

        // Garbage is up to eight seven-bit bytes before the whole message.
        sent = Joined(noise.Shape(m, false));
        ASSERT_GT(sent.size(), m.size());
        ASSERT_LE(sent.size(), m.size() + 8);
        const size_t extra = sent.size() - m.size();
        for (size_t k = 0; k < extra; ++k) {
            EXPECT_EQ(static_cast<uint8_t>(sent[k]) & 0x80u, 0u);
        }
        EXPECT_EQ(sent.substr(extra), m);
    }
}

TEST(FaultInjector, SplitAndSlowKeepTheBytesAndAddPauses) {
    const std::string m = Answer(100);
    FaultOptions split;
    split.split = true;
    const Delivery d = FaultInjector(split, 1).Shape(m, true);
    EXPECT_GT(d.chunks.size(), 5u);
    EXPECT_EQ(Joined(d), m);
    for (const auto& c : d.chunks) {
        EXPECT_LE(c.bytes.size(), 16u);
        EXPECT_LE(c.delayMs, 2);
    }

    FaultOptions slow;
    slow.slowMs = 3;
    const Delivery s = FaultInjector(slow, 1).Shape(m, true);
    ASSERT_EQ(s.chunks.size(), 1u);
    EXPECT_EQ(Joined(s), m);
    EXPECT_EQ(s.chunks[0].delayMs, 3);
    EXPECT_EQ(s.chunks[0].byteDelayMs, 3);
}

TEST(FaultInjector, DropClosesAfterTheNthMessageAndSendsNothingMore) {
    FaultOptions options;
    options.dropAfter = 3;
    FaultInjector faults(options, 1);
    const std::string m = Answer(4);
    EXPECT_FALSE(faults.Shape(m, true).closeAfter);
    EXPECT_FALSE(faults.Shape(m, true).closeAfter);
    const Delivery third = faults.Shape(m, true);
    EXPECT_TRUE(third.closeAfter);
    EXPECT_EQ(Joined(third), m);
    EXPECT_TRUE(faults.Closed());
    EXPECT_TRUE(faults.Shape(m, true).chunks.empty());
}
