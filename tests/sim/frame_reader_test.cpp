#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/link/layout.h"
#include "tools/sim/frame_reader.h"

using lumeth::sim::FrameEvent;
using lumeth::sim::FrameReader;
using lumeth::testing::Raw;
using Kind = FrameEvent::Kind;

namespace {

std::vector<FrameEvent> Drain(FrameReader& reader) {
    std::vector<FrameEvent> events;
    while (auto e = reader.Next()) {
        events.push_back(*e);
    }
    return events;
}

} // namespace

TEST(FrameReader, SplitsFramesStandaloneBytesAndGarbage) {
    FrameReader reader;
    const std::string request =
        Raw({0xF2, 2, 6, 0, 0x18, 0, 0, 0, 0, 0x7C, 1, 0, 0, 0, 0, 0x1D, 0xFF});
    reader.Append(Raw({0x10, 0x20, 0xF4}) + request + Raw({0xF5, 0x01}));
    const auto events = Drain(reader);
    ASSERT_EQ(events.size(), 5u);
    EXPECT_EQ(events[0].kind, Kind::Garbage);
    EXPECT_EQ(events[0].dropped, 2u);
    EXPECT_EQ(events[1].kind, Kind::Frame);
    EXPECT_EQ(events[1].bytes, Raw({0xF4}));
    EXPECT_EQ(events[2].bytes, request);
    EXPECT_EQ(events[3].bytes, Raw({0xF5}));
    // Trailing bytes without a command byte are garbage too.
    EXPECT_EQ(events[4].kind, Kind::Garbage);
    EXPECT_EQ(events[4].dropped, 1u);
    EXPECT_EQ(reader.Buffered(), 0u);

    // Identity frames may carry top-bit bytes.
    reader.Append(Raw({0x81, 0x91, 0x01, 0x12, 0xFF}));
    const auto identity = reader.Next();
    ASSERT_TRUE(identity.has_value());
    EXPECT_EQ(identity->kind, Kind::Frame);
    EXPECT_EQ(identity->bytes.size(), 5u);
}

TEST(FrameReader, WaitsForTheEndMarkerAcrossAppends) {
    FrameReader reader;
    const std::string frame = Raw({0xDF, 0x0B, 0, 0, 0, 0, 16, 0x1B, 0xFF});
    for (size_t i = 0; i + 1 < frame.size(); ++i) {
        reader.Append(frame.substr(i, 1));
        EXPECT_FALSE(reader.Next().has_value()) << "after byte " << i;
    }
    reader.Append(frame.substr(frame.size() - 1));
    const auto event = reader.Next();
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->bytes, frame);
}

TEST(FrameReader, ACutFrameIsDroppedWhenTheNextCommandArrives) {
    FrameReader reader;
    reader.Append(Raw({0xDF, 0x0B, 0xFC, 0x11, 0x01, 0xFF}));
    auto events = Drain(reader);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, Kind::Cut);
    EXPECT_EQ(events[0].command, 0xDF);
    EXPECT_EQ(events[0].dropped, 2u);
    EXPECT_EQ(events[1].bytes, Raw({0xFC, 0x11, 0x01, 0xFF}));

    // Across appends: nothing until the next command byte shows the cut.
    reader.Append(Raw({0xCC, 1, 2, 3}));
    EXPECT_FALSE(reader.Next().has_value());
    reader.Append(Raw({0xF4}));
    events = Drain(reader);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, Kind::Cut);
    EXPECT_EQ(events[1].bytes, Raw({0xF4}));
}

TEST(FrameReader, AFrameBeyondTheLimitIsDroppedAndReadingRecovers) {
    FrameReader reader(1000);
    reader.Append(Raw({0xFD}));
    reader.Append(std::string(600, 'a'));
    EXPECT_FALSE(reader.Next().has_value());
    reader.Append(std::string(600, 'a'));
    auto event = reader.Next();
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->kind, Kind::Overlong);
    EXPECT_EQ(event->dropped, 1201u);
    // The rest of the oversized frame is garbage; the next request is read.
    reader.Append(std::string(50, 'b') + Raw({0xF4}));
    const auto events = Drain(reader);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, Kind::Garbage);
    EXPECT_EQ(events[1].bytes, Raw({0xF4}));
}

TEST(FrameReader, ManyFramesInOneAppendComeOutInOrder) {
    FrameReader reader;
    std::string stream;
    for (int i = 0; i < 20000; ++i) {
        stream += Raw({0x80, 0x05, 0x01, i % 100, (0x06 + i % 100) & 127, 0xFF});
    }
    reader.Append(stream);
    int count = 0;
    while (auto event = reader.Next()) {
        ASSERT_EQ(event->kind, Kind::Frame);
        ASSERT_EQ(static_cast<uint8_t>(event->bytes[3]), count % 100);
        ++count;
    }
    EXPECT_EQ(count, 20000);
}
