// lumeth-cli export-csv and import-csv: the round trip through a folder, and
// a bad row that writes nothing.
#include "tests/cli/cli_run.h"

namespace lumeth {
namespace {

using CsvCommands = testing::CliTest;

TEST_F(CsvCommands, ExportThenImportGivesTheSamePanelDataFile) {
    ASSERT_EQ(Run({"export-csv", kDemo, "-o", Path("csv")}).exitCode, 0);
    ASSERT_EQ(Run({"import-csv", Path("csv"), "-o", Path("back.dat")}).exitCode, 0);
    ASSERT_EQ(Run({"convert", kDemo, Path("demo.dat")}).exitCode, 0);
    EXPECT_EQ(m_dir.Read("back.dat"), m_dir.Read("demo.dat"));
    ASSERT_EQ(Run({"import-csv", Path("csv"), "-o", Path("back.json")}).exitCode, 0);
    EXPECT_EQ(Run({"diff", kDemo, Path("back.json")}).exitCode, 0);
}

TEST_F(CsvCommands, ABadRowIsNamedAndNothingIsWritten) {
    ASSERT_EQ(Run({"export-csv", kDemo, "-o", Path("csv")}).exitCode, 0);
    m_dir.Write("kept.json", "{}");
    std::string templates = m_dir.Read("csv/templates.csv");
    const size_t at = templates.find(",Source Select,");
    ASSERT_NE(at, std::string::npos);
    templates.replace(at, 15, ",Source Selekt,");
    m_dir.Write("csv/templates.csv", templates);
    for (const char* out : {"new.dat", "kept.json"}) {
        const testing::CliResult bad = Run({"import-csv", Path("csv"), "-o", Path(out)});
        EXPECT_EQ(bad.exitCode, 2);
        EXPECT_EQ(bad.err, "lumeth-cli: " + m_dir.file("csv/templates.csv") +
                               ":2: unknown function \"Source Selekt\"\n");
    }
    EXPECT_FALSE(m_dir.Exists("new.dat"));
    EXPECT_EQ(m_dir.Read("kept.json"), "{}");
    EXPECT_EQ(Run({"import-csv", Path("csv"), "-o", Path("out.txt")}).exitCode, 1);
}

} // namespace
} // namespace lumeth
