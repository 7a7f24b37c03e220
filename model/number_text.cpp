#include "model/number_text.h"

#include <climits>
#include <cstdio>

namespace lumeth {

int32_t LeadingNumber(std::string_view text) {
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n')) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    int64_t value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > int64_t{INT32_MAX} + 1) {
            value = int64_t{INT32_MAX} + 1; // keep saturating, never overflow
        }
    }
    if (negative) {
        value = -value;
    }
    if (value > INT32_MAX) {
        return INT32_MAX;
    }
    if (value < INT32_MIN) {
        return INT32_MIN;
    }
    return static_cast<int32_t>(value);
}

std::string ZeroPadded(int value, int width) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%0*d", width, value);
    return digits;
}

std::string Counted(int n, std::string_view noun) {
    return std::to_string(n) + " " + std::string(noun) + (n == 1 ? "" : "s");
}

} // namespace lumeth
