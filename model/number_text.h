#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Numbers read from and written as text: keys, names and settings values.
namespace lumeth {

// Leading-number conversion: leading blanks skipped, an optional sign, digits
// up to the first non-digit; text without a number gives 0. Saturates at the
// 32-bit range.
int32_t LeadingNumber(std::string_view text);

// `value` in decimal with leading zeros to `width` digits, as printf's "%0*d"
// writes it (ZeroPadded(7, 3) is "007"); a wider number keeps all its digits.
std::string ZeroPadded(int value, int width);

// "1 channel", "3 channels": `n` and `noun`, with an "s" unless n is 1.
std::string Counted(int n, std::string_view noun);

} // namespace lumeth
