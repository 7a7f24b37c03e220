#include "model/list_records.h"

#include <gtest/gtest.h>

#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

using Entries = std::vector<std::pair<int16_t, int16_t>>; // (position, list type)

Entries Read(const UserGroup& g) {
    Entries entries;
    for (int k = 0; k < g.listCount; ++k)
        entries.emplace_back(g.listIndexes[size_t(k)], g.listTypes[size_t(k)]);
    return entries;
}

// Writing back the shown sub type's entries keeps the others in place.
TEST(ReplaceGroupEntries, TakesTheOldSlotsAndKeepsTheOtherTypes) {
    struct Case {
        const char* what;
        Entries before;
        std::vector<int16_t> positions;
        Entries after;
    };
    const Case cases[] = {
        {"unchanged", {{0, 11}, {3, 21}, {1, 11}}, {0, 1}, {{0, 11}, {3, 21}, {1, 11}}},
        {"more: after the last slot",
         {{0, 11}, {3, 21}, {1, 11}, {2, 41}},
         {5, 6, 7},
         {{5, 11}, {3, 21}, {6, 11}, {7, 11}, {2, 41}}},
        {"fewer: slots dropped", {{0, 11}, {3, 21}, {1, 11}}, {1}, {{1, 11}, {3, 21}}},
        {"none before: at the end", {{3, 21}}, {4, 2}, {{3, 21}, {4, 11}, {2, 11}}},
        {"all removed", {{0, 11}}, {}, {}},
    };
    for (const Case& c : cases) {
        UserGroup g = test::Group(c.before);
        ASSERT_TRUE(ReplaceGroupEntries(g, ListTypeCode(SubType::Input), c.positions).ok())
            << c.what;
        EXPECT_EQ(Read(g), c.after) << c.what;
        EXPECT_GE(g.listIndexes.size(), 1u) << c.what;
        EXPECT_EQ(g.listIndexes.size(), g.listTypes.size()) << c.what;
    }
}

} // namespace
} // namespace lumeth
