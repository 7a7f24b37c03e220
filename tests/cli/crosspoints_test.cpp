// lumeth-cli crosspoints: the map of a document, as the editor's export writes it.
#include "tests/cli/cli_run.h"

#include "files/crosspoint_map.h"
#include "files/json_document.h"

namespace lumeth {
namespace {

using Crosspoints = testing::CliTest;

TEST_F(Crosspoints, WritesTheMapOfTheDocumentWithItsChannelNames) {
    ASSERT_EQ(Run({"crosspoints", kDemo, "-o", Path("map.csv")}).exitCode, 0);
    PanelStore store;
    ASSERT_TRUE(ReadJsonDocument(test::ReadFile(kDemo.toStdString()), store).status);
    std::string expected;
    ASSERT_TRUE(EncodeCrosspointMap(store, expected));
    EXPECT_EQ(m_dir.Read("map.csv"), expected);
    EXPECT_NE(expected.find(",Ch.0001,STA MIC 1\r\n"), std::string::npos);
}

TEST_F(Crosspoints, UsageAndInputErrors) {
    EXPECT_EQ(Run({"crosspoints", kDemo}).exitCode, 1);
    EXPECT_EQ(Run({"crosspoints", "-o", Path("map.csv")}).exitCode, 1);
    const testing::CliResult missing = Run({"crosspoints", Path("none.json"), "-o", Path("m.csv")});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err.find("none.json"), std::string::npos);
    EXPECT_FALSE(m_dir.Exists("m.csv"));
}

} // namespace
} // namespace lumeth
