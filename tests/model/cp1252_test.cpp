#include "model/cp1252.h"

#include <gtest/gtest.h>

namespace lumeth {
namespace {

TEST(Cp1252, EveryByteRoundTripsThroughUtf8) {
    std::string all;
    for (int b = 0; b < 256; ++b) {
        all.push_back(static_cast<char>(b));
    }
    const std::string utf8 = cp1252::ToUtf8(all);
    EXPECT_EQ(cp1252::FromUtf8(utf8), all);
    EXPECT_EQ(cp1252::Utf8Length(utf8), 256u);
    for (int b = 0; b < 256; ++b) {
        const auto byte = static_cast<unsigned char>(b);
        EXPECT_EQ(cp1252::FromUnicode(cp1252::ToUnicode(byte)), byte) << b;
    }
}

TEST(Cp1252, InvalidUtf8BecomesQuestionMarks) {
    EXPECT_EQ(cp1252::FromUtf8("\x80"), "?");                // lone continuation byte
    EXPECT_EQ(cp1252::FromUtf8("\xC0\xAF"), "??");           // overlong '/'
    EXPECT_EQ(cp1252::FromUtf8("\xED\xA0\x80"), "???");      // surrogate
    EXPECT_EQ(cp1252::FromUtf8("x\xE2\x82"), "x??");         // truncated at the end
    EXPECT_EQ(cp1252::FromUtf8("\xF5\x80\x80\x80"), "????"); // beyond U+10FFFF
    for (const char* s : {"\x80", "\xC0\xAF", "x\xE2\x82", "ok\xC3\xA9"}) {
        EXPECT_EQ(cp1252::Utf8Length(s), cp1252::FromUtf8(s).size()) << s;
    }
}

} // namespace
} // namespace lumeth
