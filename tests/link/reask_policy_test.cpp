// When a reader waiting for a download asks again for what is missing.
#include <gtest/gtest.h>

#include <vector>

#include "link/reask_policy.h"

namespace lumeth {
namespace {

using Step = ReaskPolicy::Step;

struct Look {
    int64_t nowMs;
    uint64_t bytes;
    bool asked;
    Step expected;
};

TEST(ReaskPolicy, AsksAgainAfterQuietThenGivesUp) {
    struct Case {
        const char* name;
        std::vector<Look> looks;
    } const cases[] = {
        {"quiet for less than the limit waits", {{999, 0, true, Step::Wait}}},
        {"quiet for the limit asks again", {{1000, 0, true, Step::AskAgain}}},
        {"nothing asked yet: nothing to ask again", {{5000, 0, false, Step::Wait}}},
        {"bytes arriving keep the link busy",
         {{900, 10, true, Step::Wait},
          {1800, 20, true, Step::Wait},
          {2799, 20, true, Step::Wait},
          {2800, 20, true, Step::AskAgain}}},
        {"a re-request starts the quiet time again",
         {{1000, 0, true, Step::AskAgain},
          {1999, 0, true, Step::Wait},
          {2000, 0, true, Step::AskAgain}}},
        {"two re-requests, then it gives up",
         {{1000, 0, true, Step::AskAgain},
          {2000, 0, true, Step::AskAgain},
          {3000, 0, true, Step::GiveUp},
          {9000, 0, true, Step::GiveUp}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ReaskPolicy policy(1000, 2);
        policy.Restart(0);
        for (const Look& look : c.looks)
            EXPECT_EQ(policy.Look(look.nowMs, look.bytes, look.asked), look.expected)
                << "at " << look.nowMs;
    }
    ReaskPolicy policy(1000, 1);
    policy.Restart(0);
    EXPECT_EQ(policy.Look(1000, 0, true), Step::AskAgain);
    policy.Restart(1000);
    EXPECT_EQ(policy.Look(2000, 0, true), Step::AskAgain) << "a new request counts afresh";
}

} // namespace
} // namespace lumeth
