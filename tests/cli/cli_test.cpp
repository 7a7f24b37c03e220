// Runs the real lumeth-cli binary: exit codes, what show prints, the convert
// round trip, and that a failed convert leaves no output file.
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "files/json_document.h"
#include "files/panel_data_file.h"

namespace lumeth {
namespace {

namespace fs = std::filesystem;

struct CliRun {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class Cli : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "lumeth-cli-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_dir = pattern;
    }
    void TearDown() override { fs::remove_all(m_dir); }

    static std::string Quote(const std::string& arg) {
        std::string q = "'";
        for (char c : arg) {
            q += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        return q + "'";
    }
    static std::string ReadAll(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void WriteAll(const fs::path& p, const std::string& bytes) {
        std::ofstream(p, std::ios::binary) << bytes;
    }
    fs::path Path(const std::string& name) const { return m_dir / name; }

    CliRun Lumeth(const std::string& args) {
        const fs::path out = m_dir / ".stdout";
        const fs::path err = m_dir / ".stderr";
        const std::string command = Quote(LUMETH_CLI) + " " + args + " >" + Quote(out.string()) +
                                    " 2>" + Quote(err.string());
        const int status = std::system(command.c_str());
        CliRun r;
        r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        r.out = ReadAll(out);
        r.err = ReadAll(err);
        fs::remove(out);
        fs::remove(err);
        return r;
    }

    size_t FilesInDir() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(m_dir), {}));
    }

    const std::string m_demo = std::string(LUMETH_SOURCE_DIR) + "/demo/demo-panel.json";
    fs::path m_dir;
};

TEST_F(Cli, UsageErrorsExitWithOne) {
    for (const char* args : {"", "frobnicate", "show", "show a.dat b.dat", "show --colour a.dat",
                             "convert a.dat", "convert a.dat b.dat c.dat"}) {
        SCOPED_TRACE(args);
        const CliRun r = Lumeth(args);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find("usage: lumeth-cli"), std::string::npos);
        EXPECT_TRUE(r.out.empty());
    }
    const CliRun help = Lumeth("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("convert IN OUT"), std::string::npos);
}

TEST_F(Cli, BadInputExitsWithTwoAndOneLineNamingTheFile) {
    const std::string missing = Path("missing.dat").string();
    WriteAll(Path("short.dat"), std::string("\x8C\x00\xFF\x3F\x03\x00\x00\x00\x02", 9));
    WriteAll(Path("text.dat"), "hello");
    WriteAll(Path("bad.json"), R"({"format": "lumeth-panel-data", "version": 1, "templates": 5})");
    const std::pair<std::string, std::string> cases[] = {
        {missing, "no such file"},
        {Path("short.dat").string(), "truncated at byte 8 reading Input display list count"},
        {Path("text.dat").string(), "not a panel data file (first value 25960, expected 140)"},
        {Path("bad.json").string(), "templates: expected an array, found an integer"},
    };
    for (const auto& [file, what] : cases) {
        SCOPED_TRACE(file);
        const CliRun r = Lumeth("show " + Quote(file));
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.err, "lumeth-cli: " + file + ": " + what + "\n");
    }
}

TEST_F(Cli, ShowListsNamesFunctionsAndChannelNames) {
    const CliRun r = Lumeth("show " + Quote(m_demo));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    for (const char* expected :
         {"Input display lists: 7", "[0] \"Studio A Mics\" (6 channels)", "STA MIC 1 [0001]",
          "User groups: 5", "Newsroom", "        Relay [0] \"Studio Lights\"",
          "\"Studio A Desk\" Template # 1", "Relay Toggle - Opto Tally",
          "channel STA RED LT [0001], channel 2 STA ON AIR [0001], label \"ON AIR\" (custom)",
          "Output Select W/Listen"}) {
        EXPECT_NE(r.out.find(expected), std::string::npos) << expected;
    }
    EXPECT_EQ(r.out.find("studio\""), std::string::npos); // the password is never listed
}

TEST_F(Cli, ShowJsonPrintsADocumentThatReadsBack) {
    const CliRun r = Lumeth("show --json " + Quote(m_demo));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, ReadAll(m_demo)); // the demo is kept in the written form
    PanelStore store;
    const JsonReadResult back = ReadJsonDocument(r.out, store);
    ASSERT_TRUE(back.status.ok()) << back.status.failure().detail;
    EXPECT_TRUE(back.hasAlphas);
    EXPECT_EQ(back.password, "studio");
}

TEST_F(Cli, ConvertRoundTripIsByteIdenticalWhateverTheExtensions) {
    const std::string a = Path("a.dat").string();
    const std::string b = Path("b.JSON").string();
    const std::string c = Path("c.dat").string();
    ASSERT_EQ(Lumeth("convert " + Quote(m_demo) + " " + Quote(a)).exitCode, 0);
    ASSERT_EQ(Lumeth("convert " + Quote(a) + " " + Quote(b)).exitCode, 0);
    ASSERT_EQ(Lumeth("convert " + Quote(b) + " " + Quote(c)).exitCode, 0);
    const std::string bytes = ReadAll(a);
    EXPECT_EQ(ReadAll(c), bytes);
    EXPECT_EQ(bytes.substr(0, 6), std::string("\x8C\x00\xFF\x3F\x03\x00", 6));

    // Content decides the input form: a panel data file named .json still loads.
    fs::copy_file(a, Path("really-dat.json"));
    EXPECT_EQ(Lumeth("convert " + Quote(Path("really-dat.json").string()) + " " +
                     Quote(Path("d.dat").string()))
                  .exitCode,
              0);
    EXPECT_EQ(ReadAll(Path("d.dat")), bytes);
}

TEST_F(Cli, FailedConvertLeavesNoOutput) {
    WriteAll(Path("bad.json"), R"({"format": "lumeth-panel-data", "version": 1,)");
    const CliRun bad = Lumeth("convert " + Quote(Path("bad.json").string()) + " " +
                              Quote(Path("out.dat").string()));
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_NE(bad.err.find("bad.json: invalid JSON"), std::string::npos) << bad.err;
    EXPECT_FALSE(fs::exists(Path("out.dat")));

    const CliRun ext = Lumeth("convert " + Quote(m_demo) + " " + Quote(Path("out.txt").string()));
    EXPECT_EQ(ext.exitCode, 1);
    EXPECT_FALSE(fs::exists(Path("out.txt")));

    // A channel the JSON document cannot hold: no half-usable .json is left.
    PanelStore odd;
    odd.ResetToDefaults();
    odd.lists(SubType::Input)[0] = DisplayList{1, "Odd", {-4}};
    WriteAll(Path("odd.dat"), EncodePanelData(odd));
    const CliRun oddRun = Lumeth("convert " + Quote(Path("odd.dat").string()) + " " +
                                 Quote(Path("odd.json").string()));
    EXPECT_EQ(oddRun.exitCode, 2);
    EXPECT_NE(oddRun.err.find("display_lists.input[0].channels[0]: out of range"),
              std::string::npos)
        << oddRun.err;
    EXPECT_FALSE(fs::exists(Path("odd.json")));
    EXPECT_EQ(FilesInDir(), 2u); // bad.json and odd.dat only
}

} // namespace
} // namespace lumeth
