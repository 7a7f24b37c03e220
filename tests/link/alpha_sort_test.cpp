// The channel-name sort against the literal exchange sort.
#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "model/alpha_sort.h"
#include "tests/link/alpha_sort_reference.h"

namespace lumeth {
namespace {

using testing::LiteralExchangeSort;

std::vector<int16_t> Iota(size_t n) {
    std::vector<int16_t> v(n);
    std::iota(v.begin(), v.end(), int16_t{0});
    return v;
}

// Names drawn from a small pool so that ties (equal once upper-cased) are
// common, with blanks, padding and Windows-1252 letters whose byte order and
// Unicode order differ.
std::vector<std::string> RandomNames(std::mt19937& rng, size_t n) {
    static const std::vector<std::string> pool = {
        "",       " ",     "   ",     "Mic",     "MIC",      "mic",      "Mic 1", "mic 1 ",
        "Mic 10", "Mic 2", "Line",    "line",    "\xC9tude", "\xE9tude", "Etude", "\x8Aum",
        "\x9Aum", "Zum",   "\xFFves", "\x9Fves", "Yves",     "\xDF",     "ss",    "SS",
        "a\x7F",  "a~",    "A_",      "a[",      "\xF7",     "\xD7",     "out-1", "OUT-1",
    };
    std::uniform_int_distribution<size_t> pick(0, pool.size() - 1);
    std::vector<std::string> names(n);
    for (auto& name : names) {
        name = pool[pick(rng)];
    }
    return names;
}

// Sorts a copy of `names` both ways and compares names and channel numbers.
void ExpectSameOrder(const std::vector<std::string>& input, const std::vector<int16_t>& numbers) {
    std::vector<std::string> expectedNames = input, names = input;
    std::vector<int16_t> expectedNumbers = numbers, actualNumbers = numbers;
    LiteralExchangeSort(expectedNames, expectedNumbers);
    ExchangeSortAlphas(names, actualNumbers);
    ASSERT_EQ(names, expectedNames);
    ASSERT_EQ(actualNumbers, expectedNumbers);
}

TEST(AlphaSort, MatchesTheLiteralExchangeSort) {
    std::mt19937 rng(20240611);
    // Random tables with ties, blanks and shuffled channel numbers.
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const size_t n = std::uniform_int_distribution<size_t>(0, 120)(rng);
        std::vector<int16_t> numbers = Iota(n);
        std::shuffle(numbers.begin(), numbers.end(), rng);
        SCOPED_TRACE(round);
        ExpectSameOrder(RandomNames(rng, n), numbers);
    }
}

TEST(AlphaSort, WorkedExampleIsNotStable) {
    // Worked through by hand: the equal "air" names swap places.
    std::vector<std::string> names = {"Studio", "air", "AIR", "", "Booth"};
    std::vector<int16_t> numbers = {0, 1, 2, 3, 4};
    ExchangeSortAlphas(names, numbers);
    EXPECT_EQ(names, (std::vector<std::string>{"", "AIR", "air", "Booth", "Studio"}));
    EXPECT_EQ(numbers, (std::vector<int16_t>{3, 2, 1, 4, 0}));
}

TEST(AlphaSort, UpperCaseFollowsTheCodePage) {
    EXPECT_EQ(UpperCase("abc xyz"), "ABC XYZ");
    EXPECT_EQ(UpperCase("\xE9\x9A\x9C\x9E\xFF"), "\xC9\x8A\x8C\x8E\x9F");
    // No upper-case form in the code page: division sign, sharp s, micro.
    EXPECT_EQ(UpperCase("\xF7\xDF\xB5"), "\xF7\xDF\xB5");
}

} // namespace
} // namespace lumeth
