#include "model/number_text.h"

#include <gtest/gtest.h>

#include <climits>

namespace lumeth {
namespace {

TEST(NumberText, LeadingNumberReadsTheNumberATextStartsWith) {
    const struct {
        const char* text;
        int32_t number;
    } cases[] = {
        {"21", 21},
        {"  \t\n42abc", 42},
        {"-7", -7},
        {"+8", 8},
        {"", 0},
        {"abc", 0},
        {"- 5", 0},
        {"12 34", 12},
        {"2147483647", INT32_MAX},
        {"2147483648", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"-99999999999999999999", INT32_MIN},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LeadingNumber(c.text), c.number) << '"' << c.text << '"';
}

TEST(NumberText, ZeroPaddedKeepsEveryDigitOfAWiderNumber) {
    const struct {
        int value, width;
        const char* text;
    } cases[] = {
        {7, 3, "007"}, {12, 2, "12"}, {12345, 4, "12345"}, {0, 4, "0000"}, {-5, 3, "-05"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ZeroPadded(c.value, c.width), c.text) << c.value << "/" << c.width;
}

} // namespace
} // namespace lumeth
