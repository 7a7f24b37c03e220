// Cutting messages out of the receive buffer.
#include <gtest/gtest.h>

#include "tests/link/layout.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

using testing::Harness;
using testing::Hex;
using testing::Layout;
using testing::Raw;

const std::string kLoc = "|Receive Buffer";

TEST(Framing, LeadingGarbageIsLoggedAndTheCommandStillHandled) {
    Harness h;
    h.session.Receive(Raw({0x10, 0x20, 0xF4}));
    h.session.DecodeNext();
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Invalid Data 2 bytes" + kLoc});
}

TEST(Framing, GarbageOnlyEmptiesTheBuffer) {
    Harness h;
    h.session.Receive(Raw({0x05, 0x06}));
    h.session.DecodeNext();
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Invalid Data 2 bytes" + kLoc});
}

TEST(Framing, PartialFrameWaitsForTheRest) {
    Harness h;
    h.session.Receive(Raw({0xDF, 0x0B, 0x01}));
    h.session.DecodeNext();
    EXPECT_EQ(h.state.receiveBuffer, Raw({0xDF, 0x0B, 0x01}));
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(Framing, FrameCutShortByANewCommand) {
    Harness h;
    h.session.Receive(Raw({0xDF, 0x0B, 0xFC, 0x11, 0x01, 0xFF}));
    h.session.DecodeNext();
    // One call: the broken DF frame is dropped and the FC frame handled (it
    // fails its checksum and is dropped silently).
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Incomplete Message DF" + kLoc});
    EXPECT_TRUE(h.observer.reports.empty());
}

TEST(Framing, CutFrameFollowedByAOneByteCommand) {
    Harness h;
    h.session.Receive(Raw({0xCC, 0x01, 0xF5, 0x02, 0x03, 0xFF}));
    h.session.DecodeNext();
    EXPECT_EQ(h.observer.logLines, std::vector<std::string>{"Incomplete Message CC" + kLoc});
    EXPECT_EQ(h.Sent(), std::vector<std::string>{Raw({0xF4})});
    // The bytes after the F5 are garbage now.
    EXPECT_EQ(h.state.receiveBuffer, Raw({0x02, 0x03, 0xFF}));
    h.session.DecodeNext();
    EXPECT_EQ(h.observer.logLines.back(), "Invalid Data 2 bytes" + kLoc);
    EXPECT_TRUE(h.session.BufferEmpty()); // the lone FF is a frame of its own, dropped
}

TEST(Framing, IdentityFrameIsNotCheckedForTopBits) {
    // The E4 byte would cut any other frame short. A 0x81 frame is taken
    // whole; this one even passes its checksum ((0x64 + 0xE4) mod 128 = 0x48)
    // and is answered.
    Harness h;
    h.session.Receive(Raw({0x81, 0x64, 0xE4, 0x48, 0xFF}));
    h.session.DecodeNext();
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_TRUE(h.observer.Quiet());
    EXPECT_EQ(h.Sent().size(), 2u);

    Harness other;
    other.session.Receive(Raw({0xDF, 0x64, 0xE4, 0x48, 0xFF}));
    other.session.DecodeNext();
    EXPECT_EQ(other.observer.logLines, std::vector<std::string>{"Incomplete Message DF" + kLoc});
}

TEST(Framing, PollsAndAcknowledgements) {
    Harness h;
    h.state.acknowledged = true;
    h.session.Receive(Raw({0xF5, 0xF5, 0xF1, 0xF3, 0xF4}));
    std::vector<size_t> sizes;
    while (!h.session.BufferEmpty()) {
        h.session.DecodeNext();
        sizes.push_back(h.state.receiveBuffer.size());
    }
    // One byte per call.
    EXPECT_EQ(sizes, (std::vector<size_t>{4, 3, 2, 1, 0}));
    EXPECT_EQ(h.Sent(), (std::vector<std::string>{Raw({0xF4}), Raw({0xF4})}));
    EXPECT_FALSE(h.state.acknowledged);
    EXPECT_TRUE(h.observer.Quiet());
}

TEST(Framing, OneMessagePerCall) {
    Harness h;
    const std::string query = Raw({0x81, 0x64, 0x64, 0xFF});
    h.session.Receive(query + query);
    h.session.DecodeNext();
    EXPECT_EQ(h.state.receiveBuffer, query);
    EXPECT_EQ(h.Sent().size(), 2u); // answer and request
    h.session.DecodeNext();
    EXPECT_TRUE(h.session.BufferEmpty());
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

TEST(Framing, TrimBuffer) {
    Harness h;
    h.session.Receive("abcdef");
    EXPECT_EQ(h.session.TrimBuffer(2), "ab");
    EXPECT_EQ(h.state.receiveBuffer, "cdef");
    EXPECT_EQ(h.session.TrimBuffer(4), "cdef");
    EXPECT_TRUE(h.session.BufferEmpty());
    h.session.Receive("xy");
    EXPECT_EQ(h.session.TrimBuffer(99), "xy");
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_EQ(h.session.TrimBuffer(1), "");
}

TEST(Framing, ConnectAndDisconnectResetTheLink) {
    Harness h;
    h.state.enteredPassword = "pw";
    h.state.passwordReceived = true;
    h.session.Receive(Raw({0xDF, 0x01}));
    h.session.Connected();
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_EQ(h.state.enteredPassword, "pw");
    h.session.Receive(Raw({0xDF, 0x01}));
    h.session.Disconnected();
    EXPECT_TRUE(h.session.BufferEmpty());
    EXPECT_TRUE(h.state.enteredPassword.empty());
    EXPECT_FALSE(h.state.passwordReceived);
}

} // namespace
} // namespace lumeth
