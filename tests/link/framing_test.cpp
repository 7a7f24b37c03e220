// Cutting messages out of the receive buffer, one message per DecodeNext call.
#include <gtest/gtest.h>

#include <algorithm>

#include "link/frame_reader.h"

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

// The receive buffer holds at most kMaxMessageBytes after its last end
// marker, wherever the bytes are split and however much is decoded between.
TEST(Framing, ReceiveBufferIsBoundedByTheLargestMessage) {
    using Received = LinkSession::Received;
    constexpr size_t kMax = kMaxMessageBytes;
    // A frame of `size` bytes: command, zero bytes, end marker.
    const auto frame = [](size_t size) {
        std::string bytes(size, '\0');
        bytes.front() = static_cast<char>(0xDF);
        bytes.back() = static_cast<char>(0xFF);
        return bytes;
    };
    const std::string largest = frame(kMax);
    const std::string tooLong = frame(kMax + 1);
    // A short frame first: the tail is counted after its end marker only.
    const std::string query = Raw({0x81, 0x64, 0x64, 0xFF});
    std::string afterQuery = query + tooLong.substr(0, kMax - 1);
    // A frame cut short by the next command byte waits for an end marker too.
    std::string cut = Raw({0xCC, 0x01}) + tooLong.substr(0, kMax - 2);
    constexpr size_t kNever = std::string::npos;
    struct Case {
        const char* what;
        const std::string* bytes;
        size_t refusedAt; // bytes received when MessageTooLong comes
    };
    const Case cases[] = {
        {"the largest message", &largest, kNever},
        {"one byte more", &tooLong, kMax},
        {"a bound's worth of tail after a message", &afterQuery, kNever},
        {"a cut frame then a bound's worth of bytes", &cut, kMax},
    };
    for (const Case& c : cases) {
        const std::string_view bytes(*c.bytes);
        for (const size_t split : {size_t{1}, kMax / 2, kMax - 2, kMax - 1, kMax}) {
            SCOPED_TRACE(std::string(c.what) + ", split at " + std::to_string(split));
            Harness h;
            std::vector<Received> results;
            for (const std::string_view piece : {bytes.substr(0, split), bytes.substr(split)}) {
                results.push_back(h.session.Receive(piece));
                h.Drain();
                if (results.back() == Received::MessageTooLong) {
                    break;
                }
            }
            const bool refused = c.refusedAt != kNever;
            const size_t refusingPiece = refused && split >= c.refusedAt ? 0 : 1;
            for (size_t i = 0; i < results.size(); ++i) {
                EXPECT_EQ(results[i], refused && i == refusingPiece ? Received::MessageTooLong
                                                                    : Received::Buffered)
                    << "piece " << i;
            }
            const auto tooLongLines =
                std::count_if(h.observer.logLines.begin(), h.observer.logLines.end(),
                              [](const std::string& line) {
                                  return line.rfind("Message Too Long ", 0) == 0 &&
                                         line.find(" bytes" + kLoc) != std::string::npos;
                              });
            EXPECT_EQ(tooLongLines, refused ? 1 : 0);
            // Refused or ending in a marker, nothing is left; otherwise the
            // tail waits whole.
            if (refused || bytes.back() == '\xFF') {
                EXPECT_TRUE(h.session.BufferEmpty());
            } else {
                EXPECT_EQ(h.state.receiveBuffer.size(), kMax - 1);
            }
        }
    }
}

// Bytes that keep arriving without an end marker are refused once they pass
// the bound, however small the pieces; decoding between them does not reset
// the count, and the next message after the drop is read as usual.
TEST(Framing, EndlessMessageIsRefusedOnceItPassesTheBound) {
    using Received = LinkSession::Received;
    Harness h;
    h.session.Receive(Raw({0xDF}));
    const std::string piece(64 * 1024, '\x01');
    size_t fed = 1;
    Received result = Received::Buffered;
    while (result == Received::Buffered && fed < 2 * kMaxMessageBytes) {
        result = h.session.Receive(piece);
        fed += piece.size();
        h.session.DecodeNext();
    }
    EXPECT_EQ(result, Received::MessageTooLong);
    EXPECT_GE(fed, kMaxMessageBytes);
    EXPECT_LT(fed, kMaxMessageBytes + piece.size());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Message Too Long " +
                                                            std::to_string(fed) + " bytes" + kLoc});
    EXPECT_EQ(h.session.Receive(Raw({0x81, 0x64, 0x64, 0xFF})), Received::Buffered);
    h.Drain();
    EXPECT_EQ(h.Sent().size(), 2u); // the identity answer and the request
}

} // namespace
} // namespace lumeth
