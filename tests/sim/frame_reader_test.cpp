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
