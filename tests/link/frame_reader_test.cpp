// The framing rules shared by the session and the emulator's reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/frame_reader.h"
#include "tests/link/layout.h"

namespace lumeth {
namespace {

using testing::Raw;

TEST(ReadFront, TheTwoCutRulesDifferOnlyBeforeTheEndMarkerArrives) {
    using Kind = FrontOfBuffer::Kind;
    struct Case {
        const char* what;
        std::string buffer;
        FrontOfBuffer early; // CutRule::AtNextCommand
        FrontOfBuffer late;  // CutRule::OnceEndArrives
    };
    const Case cases[] = {
        {"garbage", Raw({0x01, 0x02, 0xF4}), {Kind::Garbage, 2, 0}, {Kind::Garbage, 2, 0}},
        {"a poll", Raw({0xF5, 0x01}), {Kind::Frame, 1, 0xF5}, {Kind::Frame, 1, 0xF5}},
        {"a frame", Raw({0xCC, 0x01, 0xFF, 0x05}), {Kind::Frame, 3, 0xCC}, {Kind::Frame, 3, 0xCC}},
        {"a partial frame", Raw({0xDF, 0x0B}), {Kind::Partial, 2, 0xDF}, {Kind::Partial, 2, 0xDF}},
        {"cut, end not yet there",
         Raw({0xDF, 0x0B, 0xFC, 0x11}),
         {Kind::Cut, 2, 0xDF},
         {Kind::Partial, 2, 0xDF}},
        {"cut, end arrived",
         Raw({0xDF, 0x0B, 0xFC, 0xFF}),
         {Kind::Cut, 2, 0xDF},
         {Kind::Cut, 2, 0xDF}},
        {"identity body unchecked",
         Raw({0x81, 0xE4, 0xFF}),
         {Kind::Frame, 3, 0x81},
         {Kind::Frame, 3, 0x81}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        for (const auto& [rule, want] : {std::pair{CutRule::AtNextCommand, c.early},
                                         std::pair{CutRule::OnceEndArrives, c.late}}) {
            const FrontOfBuffer got = ReadFront(c.buffer, rule);
            EXPECT_EQ(got.kind, want.kind);
            EXPECT_EQ(got.length, want.length);
            EXPECT_EQ(got.command, want.command);
        }
    }
}

std::vector<FrameEvent> Drain(FrameReader& reader) {
    std::vector<FrameEvent> events;
    while (auto e = reader.Next()) {
        events.push_back(*e);
    }
    return events;
}

TEST(FrameReader, AFrameBeyondTheLimitIsDroppedAndReadingRecovers) {
    using Kind = FrameEvent::Kind;
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

// The limit counts the end marker: a frame of exactly the limit is read, one
// byte more is dropped as soon as the limit is reached without a marker.
TEST(FrameReader, TheLimitIsTheLongestFrame) {
    using Kind = FrameEvent::Kind;
    for (const size_t body : {size_t{997}, size_t{998}, size_t{999}}) {
        const size_t size = body + 2; // command, body, end marker
        SCOPED_TRACE(size);
        FrameReader reader(1000);
        reader.Append(Raw({0xFD}));
        reader.Append(std::string(body, 'a'));
        const auto first = reader.Next();
        reader.Append(Raw({0xFF}));
        const auto events = Drain(reader);
        if (size <= 1000) {
            EXPECT_FALSE(first.has_value());
            ASSERT_EQ(events.size(), 1u);
            EXPECT_EQ(events[0].kind, Kind::Frame);
            EXPECT_EQ(events[0].bytes.size(), size);
        } else {
            ASSERT_TRUE(first.has_value());
            EXPECT_EQ(first->kind, Kind::Overlong);
            EXPECT_EQ(first->dropped, 1000u);
        }
    }
}

} // namespace
} // namespace lumeth
