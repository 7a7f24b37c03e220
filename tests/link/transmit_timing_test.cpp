// When a Wait deadline has passed, including at the wrap of the tick counter.
#include <gtest/gtest.h>

#include <cstdint>

#include "link/connection.h"

namespace lumeth {
namespace {

// A deadline is passed strictly after start + ms, also when the tick counter
// wraps in between: start is then re-based by 2^32.
TEST(DeadlinePassed, WithAndWithoutTheWrapOfTheTickCounter) {
    const int32_t top = 2147483647;
    struct Case {
        int32_t start, ms, now;
        bool passed;
    };
    const Case cases[] = {{1000, 500, 1000, false},
                          {1000, 500, 1500, false},
                          {1000, 500, 1501, true},
                          {1000, 0, 1001, true},
                          {-10, 20, 10, false},
                          {-10, 20, 11, true},
                          {top - 100, 100, top, false}, // ends exactly at the largest tick: no wrap
                          // 100 ms before the wrap: nothing passes until the counter wraps, then
                          // the deadline is -2147483747 + 500 = -2147483247.
                          {top - 100, 500, top, false},
                          {top - 100, 500, 1, false},
                          {top - 100, 500, -top - 1, false},
                          {top - 100, 500, -2147483247, false},
                          {top - 100, 500, -2147483246, true},
                          {top - 100, 500, 0, true},
                          // One past the largest tick: deadline -2147483646.
                          {top, 1, 5, false},
                          {top, 1, -2147483646, false},
                          {top, 1, -2147483645, true}};
    for (const Case& c : cases) {
        EXPECT_EQ(DeadlinePassed(c.start, c.ms, c.now), c.passed)
            << c.start << " + " << c.ms << " at " << c.now;
    }
}

} // namespace
} // namespace lumeth
