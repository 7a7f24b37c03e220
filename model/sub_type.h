#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace lumeth {

// The four kinds of channel. The enum value is the index into the store's
// per-sub-type arrays.
enum class SubType : int { Input = 0, Output = 1, Opto = 2, Relay = 3 };
inline constexpr size_t kSubTypeCount = 4;
inline constexpr std::array<SubType, kSubTypeCount> kAllSubTypes{SubType::Input, SubType::Output,
                                                                 SubType::Opto, SubType::Relay};

constexpr size_t Index(SubType s) {
    return static_cast<size_t>(s);
}

// Alpha tables and alpha downloads use 10/20/30/40; display lists inside user
// groups and the current selection use 11/21/31/41.
constexpr int16_t AlphaTypeCode(SubType s) {
    return static_cast<int16_t>(10 * (int(s) + 1));
}
constexpr int16_t ListTypeCode(SubType s) {
    return static_cast<int16_t>(10 * (int(s) + 1) + 1);
}
std::optional<SubType> SubTypeFromAlphaCode(int code);
std::optional<SubType> SubTypeFromListCode(int code);
const char* SubTypeName(SubType s); // "Input", "Output", "Opto", "Relay"

} // namespace lumeth
