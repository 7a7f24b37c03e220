// Cutting messages out of the receive buffer, one message per DecodeNext call.
#include <gtest/gtest.h>

#include "tests/link/layout.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

using testing::Harness;
using testing::Layout;
using testing::Raw;

const std::string kLoc = "|Receive Buffer";

TEST(Framing, OneDecodeCallHandlesOneMessageAndLogsWhatItSkips) {
    const std::string query = Raw({0x81, 0x64, 0x64, 0xFF});
    struct Case {
        const char* what;
        std::string input;
        std::string left; // still buffered after one call
        std::vector<std::string> log;
        size_t sent;
    };
    const Case cases[] = {
        {"leading garbage, then a command",
         Raw({0x10, 0x20, 0xF4}),
         "",
         {"Invalid Data 2 bytes" + kLoc},
         0},
        {"garbage only", Raw({0x05, 0x06}), "", {"Invalid Data 2 bytes" + kLoc}, 0},
        {"partial frame waits", Raw({0xDF, 0x0B, 0x01}), Raw({0xDF, 0x0B, 0x01}), {}, 0},
        // The broken DF frame is dropped and the FC frame handled in the same
        // call (it fails its checksum and is dropped silently).
        {"frame cut short by a new command",
         Raw({0xDF, 0x0B, 0xFC, 0x11, 0x01, 0xFF}),
         "",
         {"Incomplete Message DF" + kLoc},
         0},
        // The poll is answered; the bytes after it are garbage for the next call.
        {"frame cut short by a poll",
         Raw({0xCC, 0x01, 0xF5, 0x02, 0x03, 0xFF}),
         Raw({0x02, 0x03, 0xFF}),
         {"Incomplete Message CC" + kLoc},
         1},
        // An identity frame is taken whole although E4 has its top bit set; this
        // one even passes its checksum ((0x64 + 0xE4) mod 128 = 0x48) and is answered.
        {"identity frame with a top bit set", Raw({0x81, 0x64, 0xE4, 0x48, 0xFF}), "", {}, 2},
        {"any other frame with a top bit set",
         Raw({0xDF, 0x64, 0xE4, 0x48, 0xFF}),
         "",
         {"Incomplete Message DF" + kLoc},
         0},
        {"two queries", query + query, query, {}, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Harness h;
        h.session.Receive(c.input);
        h.session.DecodeNext();
        EXPECT_EQ(h.state.receiveBuffer, c.left);
        EXPECT_EQ(h.observer.logLines, c.log);
        EXPECT_TRUE(h.observer.reports.empty());
        EXPECT_EQ(h.Sent().size(), c.sent);
    }
}

TEST(Framing, PollsAndAcknowledgementsTakeOneByteEach) {
    Harness h;
    h.state.acknowledged = true;
    h.session.Receive(Raw({0xF5, 0xF5, 0xF1, 0xF3, 0xF4}));
    std::vector<size_t> sizes;
    while (!h.session.BufferEmpty()) {
        h.session.DecodeNext();
        sizes.push_back(h.state.receiveBuffer.size());
    }
    EXPECT_EQ(sizes, (std::vector<size_t>{4, 3, 2, 1, 0}));
    EXPECT_EQ(h.Sent(), (std::vector<std::string>{Raw({0xF4}), Raw({0xF4})}));
    EXPECT_FALSE(h.state.acknowledged);
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(Framing, UnknownCommandsAndServerRequestsAreDroppedQuietly) {
    Harness h;
    h.session.Receive(Layout(0xA5).Bytes({1, 2, 3}).Finish());
    h.session.Receive(Layout(0xF2).Bytes({1, 2, 3, 4, 5}).Finish());
    h.session.Receive(Raw({0xF2, 0x00, 0xFF})); // any length, bad checksum too
    h.session.Receive(Raw({0xFF, 0xFF}));
    EXPECT_EQ(h.Drain(), 5);
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_TRUE(h.observer.Quiet());
    EXPECT_TRUE(h.Sent().empty());
    EXPECT_TRUE(h.observer.changes.empty());
}

} // namespace
} // namespace lumeth
