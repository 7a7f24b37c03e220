// The pure rules of the connection: how a message is cut for writing and when
// a Wait deadline has passed, including at the wrap of the tick counter.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "link/connection.h"

namespace lumeth {
namespace {

std::vector<size_t> PieceSizes(const std::string& message) {
    std::vector<size_t> sizes;
    for (std::string_view piece : TransmitChunks(message)) {
        sizes.push_back(piece.size());
    }
    return sizes;
}

std::string Joined(const std::string& message) {
    std::string out;
    for (std::string_view piece : TransmitChunks(message)) {
        out += piece;
    }
    return out;
}

// A message whose every byte differs from its neighbours, so a piece taken
// from the wrong offset shows up in the joined result.
std::string Patterned(size_t size) {
    std::string message(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        message[i] = static_cast<char>(i * 7 % 251);
    }
    return message;
}

TEST(TransmitChunks, PiecesOf16384ThenTheRemainder) {
    EXPECT_EQ(PieceSizes(Patterned(40000)), (std::vector<size_t>{16384, 16384, 7232}));
    EXPECT_EQ(PieceSizes(Patterned(16385)), (std::vector<size_t>{16384, 1}));
    EXPECT_EQ(PieceSizes(Patterned(32768)), (std::vector<size_t>{16384, 16384}));
    EXPECT_EQ(PieceSizes(Patterned(32769)), (std::vector<size_t>{16384, 16384, 1}));
}

TEST(TransmitChunks, AMessageUpTo16384BytesIsOnePiece) {
    EXPECT_EQ(PieceSizes(Patterned(16384)), (std::vector<size_t>{16384}));
    EXPECT_EQ(PieceSizes(Patterned(5)), (std::vector<size_t>{5}));
    EXPECT_TRUE(PieceSizes(std::string()).empty());
}

TEST(TransmitChunks, PiecesRejoinToTheMessageInOrder) {
    for (size_t size : {1u, 16383u, 16384u, 16385u, 40000u, 65536u}) {
        const std::string message = Patterned(size);
        EXPECT_EQ(Joined(message), message) << size;
    }
}

// A deadline is passed strictly after start + ms.
TEST(DeadlinePassed, WithoutWrap) {
    EXPECT_FALSE(DeadlinePassed(1000, 500, 1000));
    EXPECT_FALSE(DeadlinePassed(1000, 500, 1499));
    EXPECT_FALSE(DeadlinePassed(1000, 500, 1500));
    EXPECT_TRUE(DeadlinePassed(1000, 500, 1501));
    EXPECT_TRUE(DeadlinePassed(1000, 0, 1001));
    // Negative ticks (the counter's second half) work the same way.
    EXPECT_FALSE(DeadlinePassed(-10, 20, 10));
    EXPECT_TRUE(DeadlinePassed(-10, 20, 11));
    // A deadline that ends exactly at the largest tick is not a wrap.
    EXPECT_FALSE(DeadlinePassed(2147483547, 100, 2147483647));
}

TEST(DeadlinePassed, AcrossTheWrapOfTheTickCounter) {
    const int32_t start = 2147483647 - 100; // 100 ms before the wrap
    // Before the counter wraps nothing has passed, however large `now` is.
    EXPECT_FALSE(DeadlinePassed(start, 500, start));
    EXPECT_FALSE(DeadlinePassed(start, 500, 2147483647));
    EXPECT_FALSE(DeadlinePassed(start, 500, 1));
    // After the wrap start is re-based to -2147483647 - 100, so the deadline
    // is the tick -2147483747 + 500 = -2147483247.
    EXPECT_FALSE(DeadlinePassed(start, 500, -2147483647 - 1));
    EXPECT_FALSE(DeadlinePassed(start, 500, -2147483247));
    EXPECT_TRUE(DeadlinePassed(start, 500, -2147483246));
    EXPECT_TRUE(DeadlinePassed(start, 500, 0));
}

TEST(DeadlinePassed, JustOverTheTopWrapsWithTheRebase) {
    // start + ms one past the largest tick: re-based to -2147483647 - 0,
    // deadline -2147483646.
    const int32_t start = 2147483647;
    EXPECT_FALSE(DeadlinePassed(start, 1, 5));
    EXPECT_FALSE(DeadlinePassed(start, 1, -2147483646));
    EXPECT_TRUE(DeadlinePassed(start, 1, -2147483645));
}

} // namespace
} // namespace lumeth
