#include "files/csv_table.h"

#include <gtest/gtest.h>

namespace lumeth {
namespace {

struct ReadRows {
    std::vector<std::pair<int, CsvRow>> rows;
    std::optional<CsvProblem> problem;
};

ReadRows Read(std::string_view text, const CsvLimits& limits = {}) {
    ReadRows read;
    read.problem = ReadCsv(
        text,
        [&](int line, const CsvRow& row) -> std::optional<std::string> {
            read.rows.emplace_back(line, row);
            if (!row.empty() && row[0] == "bad")
                return "refused here";
            return std::nullopt;
        },
        limits);
    return read;
}

TEST(CsvTable, ReadsQuotesCommasLineBreaksAndBothLineEnds) {
    const ReadRows read = Read("\xEF\xBB\xBF"
                               "a,\"b,c\",\"say \"\"hi\"\"\"\r\n"
                               "\r\n"
                               "\"two\nlines\",,\r\n"
                               "last,\"\"\n"
                               "\n"
                               "x");
    ASSERT_FALSE(read.problem) << read.problem->reason;
    const std::vector<std::pair<int, CsvRow>> expected{
        {1, {"a", "b,c", "say \"hi\""}},
        {3, {"two\nlines", "", ""}},
        {5, {"last", ""}},
        {7, {"x"}},
    };
    EXPECT_EQ(read.rows, expected);
}

TEST(CsvTable, WrittenRowsReadBackAsTheyWere) {
    const std::vector<std::string> fields{"plain",       "",        "com,ma",  "\"quoted\"",
                                          "line\r\nend", " blank ", "\xc3\xa9"};
    std::string csv;
    AppendCsvRow(csv, fields);
    AppendCsvRow(csv, fields);
    const ReadRows read = Read(csv);
    ASSERT_FALSE(read.problem);
    ASSERT_EQ(read.rows.size(), 2u);
    EXPECT_EQ(read.rows[0].second, fields);
    EXPECT_EQ(read.rows[1].first, 3); // the line break inside a field counts
}

TEST(CsvTable, EveryMalformedShapeIsRefusedWithItsLine) {
    const CsvLimits small{64, 4, 3};
    const struct {
        std::string text;
        int line;
        std::string reason;
    } cases[] = {
        {"a,b\nc,\"open\nstill open", 2, "a quoted field that is never closed"},
        {"a\n\"ab\"c,d", 2, "text after the closing quote of a field"},
        {"a\n\"ab\"\rx", 2, "a carriage return without its line feed"},
        {"ab\"c", 1, "a quote inside a field that does not start with one"},
        {"a\rb", 1, "a carriage return without its line feed"},
        {std::string("a,b\0c", 5), 1, "a NUL byte: this is not a text file"},
        {"abcd,abcde", 1, "a field longer than 4 bytes"},
        {"\"ab\"\"cd\"", 1, "a field longer than 4 bytes"},
        {"a\nb\n\"a\nb\nc\nd\ne\"", 3, "a field longer than 4 bytes"},
        {"a,b,c,d", 1, "more than 3 fields in a row"},
        {std::string(65, 'a'), 0, "larger than 64 bytes"},
        {"ok\nbad,x\nnever", 2, "refused here"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadRows read = Read(c.text, small);
        ASSERT_TRUE(read.problem);
        EXPECT_EQ(read.problem->line, c.line);
        EXPECT_EQ(read.problem->reason, c.reason);
        // Nothing after the problem reaches the handler.
        for (const auto& row : read.rows)
            EXPECT_NE(row.second, CsvRow{"never"});
    }
}

} // namespace
} // namespace lumeth
