#include <gtest/gtest.h>

#include <string>

#include "tools/sim/fault_injector.h"

using lumeth::sim::Delivery;
using lumeth::sim::FaultInjector;
using lumeth::sim::FaultOptions;

namespace {

// A framed answer: command, body, checksum, end marker.
std::string Answer(size_t bodyLength) {
    std::string m(1, static_cast<char>(0xDF));
    unsigned sum = 0;
    for (size_t i = 0; i < bodyLength; ++i) {
        const char b = static_cast<char>(i % 128);
        m.push_back(b);
        sum = (sum + static_cast<unsigned>(b)) & 127u;
    }
    m.push_back(static_cast<char>(sum));
    m.push_back(static_cast<char>(0xFF));
    return m;
}

std::string Joined(const Delivery& d) {
    std::string all;
    for (const auto& c : d.chunks) {
        all += c.bytes;
    }
    return all;
}

} // namespace

TEST(FaultInjector, WithoutFaultsEveryMessageGoesOutWhole) {
    FaultInjector faults(FaultOptions{}, 1);
    const std::string m = Answer(40);
    for (int i = 0; i < 100; ++i) {
        const Delivery d = faults.Shape(m, true);
        ASSERT_EQ(d.chunks.size(), 1u);
        EXPECT_EQ(d.chunks[0].bytes, m);
        EXPECT_EQ(d.chunks[0].delayMs, 0);
        EXPECT_FALSE(d.closeAfter);
    }
}

TEST(FaultInjector, TheSameSeedAndConnectionGiveTheSameFaults) {
    FaultOptions options;
    options.seed = 42;
    options.split = true;
    options.garbage = 0.5;
    options.checksum = 0.3;
    options.cut = 0.2;
    FaultInjector a(options, 3), b(options, 3), other(options, 4);
    bool differs = false;
    for (int i = 0; i < 50; ++i) {
        const std::string m = Answer(static_cast<size_t>(10 + i));
        const Delivery da = a.Shape(m, true);
        const Delivery db = b.Shape(m, true);
        ASSERT_EQ(da.chunks.size(), db.chunks.size());
        for (size_t k = 0; k < da.chunks.size(); ++k) {
            EXPECT_EQ(da.chunks[k].bytes, db.chunks[k].bytes);
            EXPECT_EQ(da.chunks[k].delayMs, db.chunks[k].delayMs);
        }
        differs = differs || Joined(other.Shape(m, true)) != Joined(da);
    }
    EXPECT_TRUE(differs) << "another connection should draw other faults";
}

TEST(FaultInjector, AWrongChecksumIsStillASevenBitByte) {
    FaultOptions options;
    options.checksum = 1.0;
    FaultInjector faults(options, 1);
    const std::string m = Answer(30);
    for (int i = 0; i < 200; ++i) {
        const std::string sent = Joined(faults.Shape(m, true));
        ASSERT_EQ(sent.size(), m.size());
        EXPECT_EQ(sent.substr(0, m.size() - 2), m.substr(0, m.size() - 2));
        EXPECT_NE(sent[m.size() - 2], m[m.size() - 2]);
        EXPECT_EQ(static_cast<uint8_t>(sent[m.size() - 2]) & 0x80u, 0u);
        EXPECT_EQ(sent.back(), m.back());
    }
}

TEST(FaultInjector, OnlyAnswersAreCorruptedOrCut) {
    FaultOptions options;
    options.checksum = 1.0;
    options.cut = 1.0;
    FaultInjector faults(options, 1);
    const std::string identity = "\x81\x64\x64\xFF";
    EXPECT_EQ(Joined(faults.Shape(identity, false)), identity);
    EXPECT_EQ(Joined(faults.Shape("\xF5", true)), "\xF5");
}

TEST(FaultInjector, ACutAnswerKeepsItsCommandByteAndLosesTheEndMarker) {
    FaultOptions options;
    options.cut = 1.0;
    FaultInjector faults(options, 7);
    const std::string m = Answer(20);
    for (int i = 0; i < 200; ++i) {
        const std::string sent = Joined(faults.Shape(m, true));
        ASSERT_GE(sent.size(), 1u);
        ASSERT_LE(sent.size(), m.size() - 1);
        EXPECT_EQ(sent, m.substr(0, sent.size()));
    }
}

TEST(FaultInjector, GarbageIsSevenBitBytesBeforeTheMessage) {
    FaultOptions options;
    options.garbage = 1.0;
    FaultInjector faults(options, 1);
    const std::string m = Answer(5);
    for (int i = 0; i < 100; ++i) {
        const std::string sent = Joined(faults.Shape(m, false));
        ASSERT_GT(sent.size(), m.size());
        ASSERT_LE(sent.size(), m.size() + 8);
        const size_t noise = sent.size() - m.size();
        for (size_t k = 0; k < noise; ++k) {
            EXPECT_EQ(static_cast<uint8_t>(sent[k]) & 0x80u, 0u);
        }
        EXPECT_EQ(sent.substr(noise), m);
    }
}

TEST(FaultInjector, SplitAndSlowKeepTheBytesAndAddPauses) {
    const std::string m = Answer(100);
    FaultOptions split;
    split.split = true;
    FaultInjector splitter(split, 1);
    const Delivery d = splitter.Shape(m, true);
    EXPECT_GT(d.chunks.size(), 5u);
    EXPECT_EQ(Joined(d), m);
    for (const auto& c : d.chunks) {
        EXPECT_LE(c.bytes.size(), 16u);
        EXPECT_LE(c.delayMs, 2);
    }

    FaultOptions slow;
    slow.slowMs = 3;
    FaultInjector slower(slow, 1);
    const Delivery s = slower.Shape(m, true);
    ASSERT_EQ(s.chunks.size(), m.size());
    EXPECT_EQ(Joined(s), m);
    for (const auto& c : s.chunks) {
        EXPECT_EQ(c.delayMs, 3);
    }
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
    const Delivery after = faults.Shape(m, true);
    EXPECT_TRUE(after.chunks.empty());
}
