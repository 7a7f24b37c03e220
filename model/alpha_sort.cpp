#include "model/alpha_sort.h"

#include <algorithm>
#include <numeric>

#include "files/cp1252.h"

namespace lumeth {

namespace {
unsigned char UpperByte(unsigned char c) {
    if (c >= 'a' && c <= 'z') {
        return static_cast<unsigned char>(c - 32);
    }
    // Windows-1252: s-caron, oe, z-caron, y-diaeresis and the Latin-1 letters.
    switch (c) {
    case 0x9A: return 0x8A;
    case 0x9C: return 0x8C;
    case 0x9E: return 0x8E;
    case 0xFF: return 0x9F;
    default: break;
    }
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) {
        return static_cast<unsigned char>(c - 32);
    }
    return c;
}
} // namespace

std::string UpperCase(std::string_view name) {
    std::string out(name);
    for (auto& ch : out) {
        ch = static_cast<char>(UpperByte(static_cast<unsigned char>(ch)));
    }
    return out;
}

void ExchangeSortAlphas(std::vector<std::string>& names, std::vector<int16_t>& numbers) {
    const size_t n = names.size();
    if (n < 2) {
        return;
    }
    // Rank the upper-cased names once so the quadratic exchange compares
    // integers instead of building and comparing strings.
    // Names compare as Unicode text, as the code page maps them.
    std::vector<std::u32string> upper(n);
    for (size_t i = 0; i < n; ++i) {
        const std::string u = UpperCase(names[i]);
        upper[i].reserve(u.size());
        for (char c : u) {
            upper[i].push_back(cp1252::ToUnicode(static_cast<unsigned char>(c)));
        }
    }
    std::vector<uint32_t> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(),
              [&](uint32_t a, uint32_t b) { return upper[a] < upper[b]; });
    std::vector<uint32_t> rank(n);
    uint32_t r = 0;
    for (size_t k = 0; k < n; ++k) {
        if (k > 0 && upper[order[k]] != upper[order[k - 1]]) {
            ++r;
        }
        rank[order[k]] = r;
    }

    // Positions travel with their ranks; apply the permutation at the end.
    std::vector<uint32_t> slot(n);
    std::iota(slot.begin(), slot.end(), 0u);
    for (size_t i = 0; i < n; ++i) {
        uint32_t ri = rank[i];
        for (size_t j = i + 1; j < n; ++j) {
            if (ri > rank[j]) {
                std::swap(rank[i], rank[j]);
                std::swap(slot[i], slot[j]);
                ri = rank[i];
            }
        }
    }
    std::vector<std::string> sortedNames(n);
    std::vector<int16_t> sortedNumbers(n);
    for (size_t i = 0; i < n; ++i) {
        sortedNames[i] = std::move(names[slot[i]]);
        sortedNumbers[i] = numbers[slot[i]];
    }
    names = std::move(sortedNames);
    numbers = std::move(sortedNumbers);
}

void BuildAlphaTable(AlphaTable& table, std::vector<std::string> channelNames) {
    const size_t n = channelNames.size();
    std::vector<std::string> names = channelNames;
    std::vector<int16_t> numbers(n);
    std::iota(numbers.begin(), numbers.end(), int16_t{0});
    ExchangeSortAlphas(names, numbers);
    std::vector<int16_t> positionOf(n);
    for (size_t k = 0; k < n; ++k) {
        positionOf[static_cast<size_t>(numbers[k])] = static_cast<int16_t>(k);
    }
    table.count = static_cast<int16_t>(n);
    table.channelNames = std::move(channelNames);
    table.names = std::move(names);
    table.numbers = std::move(numbers);
    table.positionOf = std::move(positionOf);
}

} // namespace lumeth
