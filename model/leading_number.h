#pragma once

#include <cstdint>
#include <string_view>

namespace lumeth {

// Leading-number conversion: leading blanks skipped, an optional sign, digits
// up to the first non-digit; text without a number gives 0. Saturates at the
// 32-bit range.
int32_t LeadingNumber(std::string_view text);

} // namespace lumeth
