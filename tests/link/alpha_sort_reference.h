#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "model/cp1252.h"

// The channel-name sort exactly as the download describes it: for every
// position i, every later position j whose upper-cased name is smaller is
// exchanged with i, upper-casing both names on every comparison. Slow on
// purpose; the fast sort must give the same order, ties included.
namespace lumeth::testing {

// Upper case of one Windows-1252 character, done on its Unicode value.
inline char32_t ReferenceUpper(char32_t c) {
    if ((c >= U'a' && c <= U'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) {
        return c - 0x20;
    }
    switch (c) {
    case 0x0161:
        return 0x0160; // s caron
    case 0x0153:
        return 0x0152; // oe
    case 0x017E:
        return 0x017D; // z caron
    case 0x00FF:
        return 0x0178; // y diaeresis
    default:
        return c;
    }
}

inline std::u32string ReferenceUpperCase(const std::string& name) {
    std::u32string out;
    for (unsigned char b : name) {
        out.push_back(ReferenceUpper(cp1252::ToUnicode(b)));
    }
    return out;
}

inline void LiteralExchangeSort(std::vector<std::string>& names, std::vector<int16_t>& numbers) {
    for (size_t i = 0; i < names.size(); ++i) {
        for (size_t j = i + 1; j < names.size(); ++j) {
            if (ReferenceUpperCase(names[i]) > ReferenceUpperCase(names[j])) {
                std::swap(names[i], names[j]);
                std::swap(numbers[i], numbers[j]);
            }
        }
    }
}

} // namespace lumeth::testing
