// What lumeth-cli prints while it talks to the emulator, and where: one
// progress line rewritten in place on a terminal, only errors and the result
// off one, every step with --verbose; OUT "-" is standard output.
#include <sstream>

#include "files/json_document.h"
#include "tests/cli/cli_run.h"
#include "tests/sim/sim_process.h"

namespace lumeth {
namespace {

std::vector<std::string> Split(const std::string& text, char end) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, end);) {
        parts.push_back(part);
    }
    return parts;
}

const std::string kClear = "\x1b[K";

class OutputModes : public testing::CliTest {
protected:
    void SetUp() override { ASSERT_TRUE(m_sim.Start({"--poll-interval", "0"})); }
    // `args` against the emulator, stderr told it is a terminal ("1") of 30
    // columns or not ("0").
    testing::CliResult Serve(QStringList args, const char* tty,
                             const QString& password = "studio") {
        QProcessEnvironment env = Environment(password);
        env.insert("LUMETH_CLI_TTY", tty);
        env.insert("COLUMNS", "30");
        return Run(args << "--server" << Server(), env);
    }
    QString Server() const { return QStringLiteral("127.0.0.1:%1").arg(m_sim.port); }

    testing::SimProcess m_sim;
};

TEST_F(OutputModes, ProgressIsOneLineOnATerminalNothingOffItAndEveryStepWithVerbose) {
    const std::string login =
        "connecting to " + Server().toStdString() +
        "\nconnected, waiting for the password\nlogged in\ndownload complete\n";
    const std::string apply = login + "sending display lists, user groups and button templates\n"
                                      "sending Input display lists\nsending Output display lists\n"
                                      "sending Opto display lists\nsending Relay display lists\n"
                                      "sending user groups\nsending button templates\n"
                                      "reading the configuration back\n";
    const std::string out = Path("out.json").toStdString();
    const struct {
        QStringList args;
        std::string result;
        std::string steps;
    } commands[] = {
        {{"fetch", "-o", Path("out.json")}, "wrote " + out + ": ", login},
        {{"apply", Path("out.json"), "--no-backup"}, "applied " + out + " to ", apply},
        {{"diff", Path("out.json"), "server"}, "No changes.\n", login},
    };
    for (const auto& c : commands) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult quiet = Serve(c.args, "0");
        EXPECT_EQ(quiet.err, "");
        EXPECT_EQ(quiet.out.rfind(c.result, 0), 0u) << quiet.out;
        EXPECT_EQ(Split(quiet.out, '\n').size(), 1u) << quiet.out;

        // Each rewrite goes back to the start, fits 29 columns and clears the
        // rest; the line is cleared before the result.
        const testing::CliResult terminal = Serve(c.args, "1");
        EXPECT_EQ(terminal.out, quiet.out);
        const std::vector<std::string> shown = Split(terminal.err, '\r');
        ASSERT_GE(shown.size(), 3u) << terminal.err;
        EXPECT_EQ(shown[1], c.steps.substr(0, std::min<size_t>(c.steps.find('\n'), 29)) + kClear);
        EXPECT_EQ(shown.back(), kClear);
        for (const std::string& text : shown) {
            EXPECT_LE(text.size(), 29 + kClear.size()) << text;
            EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        }

        const testing::CliResult verbose = Serve(c.args + QStringList{"--verbose"}, "1");
        EXPECT_EQ(verbose.out, quiet.out);
        std::string steps;
        for (const std::string& line : Split(verbose.err, '\n')) {
            steps += line.find(" parts in, waiting for: ") == std::string::npos ? line + "\n" : "";
        }
        EXPECT_EQ(steps, c.steps);
    }
}

TEST_F(OutputModes, AnErrorClearsTheProgressLineFirst) {
    const std::string error =
        "lumeth-cli: wrong password for the server module at " + Server().toStdString() + "\n";
    const testing::CliResult quiet = Serve({"fetch", "-o", "out.json"}, "0", "wrong");
    EXPECT_EQ(quiet.exitCode, 4);
    EXPECT_EQ(quiet.err, error);
    const testing::CliResult terminal = Serve({"fetch", "-o", "out.json"}, "1", "wrong");
    EXPECT_TRUE(terminal.err.ends_with("\r" + kClear + error)) << terminal.err;
}

// apply prints the check errors that stop it and counts the rest; with
// --verbose every line, as check prints them.
TEST_F(OutputModes, ApplyPrintsOnlyTheCheckLinesThatStopIt) {
    PanelStore store;
    ASSERT_TRUE(ReadJsonDocument(test::ReadFile(kDemo.toStdString()), store).status.ok());
    store.groups.userGroups[0].listCount = 0; // empty: a warning
    m_dir.Write("warned.json", WriteJsonDocument(store));
    store.groups.userGroups[1].listIndexes[0] = 99; // past the lists: an error
    m_dir.Write("failed.json", WriteJsonDocument(store));
    const std::string f = Path("failed.json").toStdString();
    const std::string w = Path("warned.json").toStdString();
    const std::vector<std::string> lines = Split(Run({"check", Path("failed.json")}).out, '\n');
    ASSERT_EQ(lines.size(), 3u); // the error, the warning, the count
    const std::string error = lines[0].starts_with("error:") ? lines[0] : lines[1];
    const std::string refused = "lumeth-cli: " + f +
                                ": not applied: check found errors (--force "
                                "sends it anyway)\n";
    const struct {
        QStringList args;
        int exitCode;
        std::string err;
    } cases[] = {
        {{"apply", Path("failed.json")},
         2,
         error + "\n" + f + ": 1 error, 1 warning (lumeth-cli check " + f + " lists them)\n" +
             refused},
        {{"apply", Path("failed.json"), "--verbose"},
         2,
         lines[0] + "\n" + lines[1] + "\n" + f + ": 1 error, 1 warning\n" + refused},
        {{"apply", Path("warned.json")},
         0,
         w + ": 0 errors, 1 warning (lumeth-cli check " + w + " lists them)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r = Serve(c.args, "0");
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.err, c.err);
    }
}

// OUT "-": byte for byte the file fetch or convert writes, alone on stdout
// (a failed write: Cli.OutputKeepsItsPermissionsAndAFailedWriteExitsWithSeven).
TEST_F(OutputModes, DashWritesTheJsonDocumentToStandardOutput) {
    const testing::CliResult file = Serve({"fetch", "-o", Path("out.json")}, "0");
    const testing::CliResult piped = Serve({"fetch", "-o", "-"}, "0");
    EXPECT_EQ(piped.out, m_dir.Read("out.json"));
    const std::string wrote = "wrote " + Path("out.json").toStdString();
    ASSERT_EQ(file.out.rfind(wrote, 0), 0u) << file.out;
    EXPECT_EQ(piped.err, "wrote standard output" + file.out.substr(wrote.size()));
    ASSERT_EQ(Run({"convert", Path("out.json"), Path("copy.json")}).exitCode, 0);
    EXPECT_EQ(Run({"convert", Path("out.json"), "-"}).out, m_dir.Read("copy.json"));
}

} // namespace
} // namespace lumeth
