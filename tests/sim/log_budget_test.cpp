#include <gtest/gtest.h>

#include <string>

#include "tools/sim/log_budget.h"

using lumeth::sim::LogBudget;

TEST(LogBudget, TheLogNeverOutgrowsTheAllowancePlusTheTraffic) {
    struct Case {
        size_t trafficPerLine, lineLength, overhead;
    };
    // Junk that costs one byte per log line, traffic that outweighs the log,
    // and lines with a prefix the writer adds.
    const Case cases[] = {{1, 40, 0}, {100, 40, 0}, {1, 40, 25}};
    for (const Case& c : cases) {
        LogBudget budget(c.overhead, 1000);
        size_t traffic = 0, written = 0, lines = 0, reported = 0;
        for (int i = 0; i < 5000; ++i) {
            budget.AddTraffic(c.trafficPerLine);
            traffic += c.trafficPerLine;
            for (const std::string& out : budget.Admit(std::string(c.lineLength, 'x'))) {
                written += out.size() + c.overhead;
                if (out[0] == 'x') {
                    ++lines;
                } else {
                    reported += std::stoul(out); // "N log lines left out ..."
                }
            }
            ASSERT_LE(written, 1000 + traffic) << i;
        }
        // Every line is either written or counted.
        EXPECT_EQ(lines + reported + budget.suppressed(), 5000u);
        EXPECT_EQ(c.trafficPerLine >= 100, budget.suppressed() + reported == 0);
    }
}
