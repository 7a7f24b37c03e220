#include "model/alpha_sort.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "model/cp1252.h"

namespace lumeth {

namespace {
unsigned char UpperByte(unsigned char c) {
    if (c >= 'a' && c <= 'z') {
        return static_cast<unsigned char>(c - 32);
    }
    // Windows-1252: s-caron, oe, z-caron, y-diaeresis and the Latin-1 letters.
    switch (c) {
    case 0x9A:
        return 0x8A;
    case 0x9C:
        return 0x8C;
    case 0x9E:
        return 0x8E;
    case 0xFF:
        return 0x9F;
    default:
        break;
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

namespace {

// Prefix sums over ranks: Add(r, d) adds d to every rank from r up; Total(r)
// is what rank r has been given.
class RankCounter {
public:
    explicit RankCounter(size_t ranks) : m_tree(ranks + 1, 0) {}
    void Add(size_t rank, uint32_t delta) {
        for (size_t i = rank + 1; i < m_tree.size(); i += i & (~i + 1)) {
            m_tree[i] += delta;
        }
    }
    uint32_t Total(size_t rank) const {
        uint32_t sum = 0;
        for (size_t i = rank + 1; i > 0; i -= i & (~i + 1)) {
            sum += m_tree[i];
        }
        return sum;
    }

private:
    std::vector<uint32_t> m_tree;
};

// The order the exchange sort leaves entries in, given the rank of each.
//
// The exchange sort of the first j+1 entries equals the sort of the first j
// followed by one more pass of entry j through that sorted run: at each later
// position the smaller value is passed on and the larger kept, equal values
// passing the incoming one on. Worked through, entry j lands after every entry
// not greater than it, and in every group of equal entries above it the first
// entry moves to the end of its group. So each group of equal ranks is kept as
// a list, with a count of the pending one-step rotations (one for every later
// entry of a smaller rank) applied only when the group is next touched.
std::vector<uint32_t> ExchangeOrder(const std::vector<uint32_t>& rank, size_t rankCount) {
    std::vector<std::vector<uint32_t>> groups(rankCount);
    std::vector<uint32_t> applied(rankCount, 0);
    RankCounter rotations(rankCount);

    auto settle = [&](size_t r) {
        std::vector<uint32_t>& g = groups[r];
        const uint32_t total = rotations.Total(r);
        if (!g.empty()) {
            const size_t k = (total - applied[r]) % g.size();
            std::rotate(g.begin(), g.begin() + static_cast<std::ptrdiff_t>(k), g.end());
        }
        applied[r] = total;
    };

    for (size_t j = 0; j < rank.size(); ++j) {
        const size_t r = rank[j];
        settle(r);
        groups[r].push_back(static_cast<uint32_t>(j));
        if (r + 1 < rankCount) {
            rotations.Add(r + 1, 1);
        }
    }

    std::vector<uint32_t> order;
    order.reserve(rank.size());
    for (size_t r = 0; r < rankCount; ++r) {
        settle(r);
        order.insert(order.end(), groups[r].begin(), groups[r].end());
    }
    return order;
}

} // namespace

void ExchangeSortAlphas(std::vector<std::string>& names, std::vector<int16_t>& numbers) {
    const size_t n = names.size();
    // The two arrays travel together; a short number array is padded rather
    // than read past.
    numbers.resize(n, 0);
    if (n < 2) {
        return;
    }
    // Rank the upper-cased names once; equal names share a rank. Names
    // compare as Unicode text, as the code page maps them.
    std::vector<std::u32string> upper(n);
    for (size_t i = 0; i < n; ++i) {
        const std::string u = UpperCase(names[i]);
        upper[i].reserve(u.size());
        for (char c : u) {
            upper[i].push_back(cp1252::ToUnicode(static_cast<unsigned char>(c)));
        }
    }
    std::vector<uint32_t> byName(n);
    std::iota(byName.begin(), byName.end(), 0u);
    std::sort(byName.begin(), byName.end(),
              [&](uint32_t a, uint32_t b) { return upper[a] < upper[b]; });
    std::vector<uint32_t> rank(n);
    uint32_t r = 0;
    for (size_t k = 0; k < n; ++k) {
        if (k > 0 && upper[byName[k]] != upper[byName[k - 1]]) {
            ++r;
        }
        rank[byName[k]] = r;
    }

    const std::vector<uint32_t> order = ExchangeOrder(rank, static_cast<size_t>(r) + 1);
    std::vector<std::string> sortedNames(n);
    std::vector<int16_t> sortedNumbers(n);
    for (size_t i = 0; i < n; ++i) {
        sortedNames[i] = std::move(names[order[i]]);
        sortedNumbers[i] = numbers[order[i]];
    }
    names = std::move(sortedNames);
    numbers = std::move(sortedNumbers);
}

void BuildAlphaTable(AlphaTable& table, std::vector<std::string> channelNames) {
    // Channel numbers are 16-bit: a longer table keeps the channels they can name.
    if (channelNames.size() > static_cast<size_t>(INT16_MAX)) {
        channelNames.resize(static_cast<size_t>(INT16_MAX));
    }
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
