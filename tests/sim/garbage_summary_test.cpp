#include <gtest/gtest.h>

#include <regex>

#include "tools/sim/garbage_summary.h"

using lumeth::sim::GarbageSummary;

namespace {

struct Written {
    int64_t at;
    std::string line;
};

// Feeds bad input at `times` (ascending, each dropping `bytes`) the way the
// client does: every millisecond a due summary (its timer), then the line of
// that millisecond; a forced summary at `closeAt`.
std::vector<Written> Replay(const std::vector<int64_t>& times, size_t bytes, int64_t closeAt) {
    GarbageSummary summary;
    std::vector<Written> out;
    auto keep = [&](int64_t at, std::optional<std::string> line) {
        if (line) {
            out.push_back({at, *line});
        }
    };
    size_t next = 0;
    for (int64_t t = 0; t < closeAt; ++t) {
        keep(t, summary.Flush(t));
        for (; next < times.size() && times[next] == t; ++next) {
            keep(t, summary.Add(t, "Invalid Data",
                                "Invalid Data " + std::to_string(bytes) + " bytes", bytes));
        }
    }
    keep(closeAt, summary.Flush(closeAt, true));
    return out;
}

std::vector<int64_t> Every(int64_t step, int64_t until) {
    std::vector<int64_t> times;
    for (int64_t t = 0; t < until; t += step) {
        times.push_back(t);
    }
    return times;
}

// The garbage bytes the summaries account for.
size_t SummarisedBytes(const std::vector<Written>& lines) {
    static const std::regex kSummary(
        R"((\d+) garbage bytes in \d+ s \((\d+) log lines left out: \2 Invalid Data\))");
    size_t total = 0;
    for (const Written& w : lines) {
        std::smatch m;
        if (std::regex_match(w.line, m, kSummary)) {
            total += std::stoul(m[1]);
        }
    }
    return total;
}

} // namespace

TEST(GarbageSummary, AStreamCostsAboutALineASecondAndEveryByteIsCounted) {
    struct Case {
        const char* name;
        std::vector<int64_t> times;
        int64_t closeAt;
        size_t maxLines;    // lines written in all
        size_t writtenFull; // bad-input lines written as they are
    };
    const Case cases[] = {
        {"one line", {0}, 5000, 1, 1},
        {"apart by more than a second", {0, 1500, 3200}, 5000, 3, 3},
        {"three seconds of a line every 10 ms", Every(10, 3000), 3000, 4, 1},
        {"ten seconds of a line every ms", Every(1, 10000), 10000, 11, 1},
        {"a burst, quiet, a burst", {0, 1, 2, 5000, 5001}, 5002, 4, 2},
    };
    const size_t bytes = 7;
    for (const Case& c : cases) {
        const auto lines = Replay(c.times, bytes, c.closeAt);
        EXPECT_LE(lines.size(), c.maxLines) << c.name;
        size_t full = 0;
        for (const Written& w : lines) {
            full += w.line.starts_with("Invalid Data") ? 1 : 0;
        }
        EXPECT_EQ(full, c.writtenFull) << c.name;
        EXPECT_EQ(SummarisedBytes(lines) + full * bytes, c.times.size() * bytes) << c.name;
        for (size_t i = 2; i < lines.size(); ++i) { // never two lines within a second
            EXPECT_GE(lines[i].at - lines[i - 2].at, GarbageSummary::kWindowMs) << c.name;
        }
    }
}

TEST(GarbageSummary, TheSummaryWaitsForItsSecondUnlessTheConnectionCloses) {
    GarbageSummary summary;
    EXPECT_EQ(summary.Add(0, "Incomplete Message 90", "Incomplete Message 90 (1 bytes dropped)", 1),
              "Incomplete Message 90 (1 bytes dropped)");
    EXPECT_FALSE(summary.Add(100, "Invalid Data", "x", 50));
    EXPECT_FALSE(summary.Add(150, "upload DF rejected", "y", 30));
    EXPECT_FALSE(summary.Add(200, "Invalid Data", "z", 7));
    EXPECT_TRUE(summary.pending());
    EXPECT_FALSE(summary.Flush(999));
    EXPECT_EQ(summary.Flush(1000), "87 garbage bytes in 1 s (3 log lines left out: 2 Invalid "
                                   "Data, 1 upload DF rejected)");
    EXPECT_FALSE(summary.pending());
    for (int kind = 0; kind < 6; ++kind) { // 900 ms after the last: still one stream
        EXPECT_FALSE(summary.Add(1100, "kind " + std::to_string(kind), "line", 1));
    }
    EXPECT_EQ(summary.Flush(1300, true), "6 garbage bytes in 1 s (6 log lines left out: 1 kind "
                                         "0, 1 kind 1, 1 kind 2, 1 kind 3, 2 others)");
    EXPECT_FALSE(summary.Flush(9000, true));
    EXPECT_EQ(summary.Add(10000, "again", "again", 5), "again"); // after a quiet second
}
