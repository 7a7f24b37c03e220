// What lumeth-cli fetch, apply, diff and convert print, and where: one progress
// line rewritten in place on a terminal, nothing but the result and errors
// off one, every step with --verbose, and the JSON document on stdout for
// OUT "-". Against the real emulator.
#include <fcntl.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "files/json_document.h"
#include "tests/cli/cli_run.h"
#include "tests/sim/sim_process.h"

namespace lumeth {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

constexpr const char* kClear = "\x1b[K";
constexpr const char* kWaiting = " parts in, waiting for: ";

class OutputModes : public testing::CliTest {
protected:
    void SetUp() override { ASSERT_TRUE(m_sim.Start({"--poll-interval", "0"})); }

    QString Server() const { return QStringLiteral("127.0.0.1:%1").arg(m_sim.port); }
    // stderr as a terminal ("1"), as a pipe ("0"), with the terminal's width.
    static QProcessEnvironment Terminal(const char* tty) {
        QProcessEnvironment env = Environment("studio");
        env.insert("LUMETH_CLI_TTY", tty);
        env.insert("COLUMNS", "30");
        return env;
    }
    // The demo as fetched, changed by `edit`, as `name`.
    QString Edited(const std::string& name, const std::function<void(PanelStore&)>& edit) {
        EXPECT_EQ(
            Run({"fetch", "--server", Server(), "-o", Path("demo.json")}, Terminal("0")).exitCode,
            0);
        PanelStore store;
        EXPECT_TRUE(ReadJsonDocument(m_dir.Read("demo.json"), store).status.ok());
        edit(store);
        m_dir.Write(name, WriteJsonDocument(store));
        return Path(name);
    }

    testing::SimProcess m_sim;
};

TEST_F(OutputModes, FetchAndApplyTellTheirStepsByWhereStderrGoes) {
    const std::string connecting = "connecting to " + Server().toStdString();
    const std::vector<std::string> fetchSteps{connecting, "connected, waiting for the password",
                                              "logged in", "download complete"};
    std::vector<std::string> applySteps = fetchSteps;
    for (const char* step :
         {"sending display lists, user groups and button templates", "sending Input display lists",
          "sending Output display lists", "sending Opto display lists",
          "sending Relay display lists", "sending user groups", "sending button templates",
          "reading the configuration back"}) {
        applySteps.push_back(step);
    }
    const struct {
        QStringList args;
        std::string result;
        std::vector<std::string> steps;
    } commands[] = {
        {{"fetch", "-o", Path("out.json")},
         "wrote " + Path("out.json").toStdString() + ": ",
         fetchSteps},
        {{"apply", Path("out.json")},
         "applied " + Path("out.json").toStdString() + " to ",
         applySteps},
        {{"diff", Path("out.json"), "server"}, "No changes.", fetchSteps},
    };
    for (const auto& command : commands) {
        SCOPED_TRACE(command.args.join(' ').toStdString());
        const QStringList args = command.args + QStringList{"--server", Server()};
        const testing::CliResult quiet = Run(args, Terminal("0"));
        ASSERT_EQ(quiet.exitCode, 0) << quiet.err;
        EXPECT_EQ(quiet.err, "");
        EXPECT_EQ(quiet.out.rfind(command.result, 0), 0u) << quiet.out;
        EXPECT_EQ(Split(quiet.out, '\n').size(), 1u) << quiet.out;

        // Each rewrite returns to the start, fits the 30 columns and clears
        // the rest; the line is cleared before the result.
        const testing::CliResult terminal = Run(args, Terminal("1"));
        ASSERT_EQ(terminal.exitCode, 0) << terminal.err;
        EXPECT_EQ(terminal.out, quiet.out);
        const std::vector<std::string> shown = Split(terminal.err, '\r');
        ASSERT_GE(shown.size(), command.steps.size() + 2) << terminal.err;
        EXPECT_EQ(shown.front(), "");
        EXPECT_EQ(shown[1], connecting.substr(0, 29) + kClear);
        EXPECT_EQ(shown.back(), kClear);
        for (const std::string& text : shown) {
            EXPECT_LE(text.size(), 29 + std::string(kClear).size()) << text;
            EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        }
        EXPECT_EQ(std::count(shown.begin(), shown.end(), "download complete" + std::string(kClear)),
                  1);

        const testing::CliResult verbose = Run(args + QStringList{"--verbose"}, Terminal("1"));
        ASSERT_EQ(verbose.exitCode, 0) << verbose.err;
        EXPECT_EQ(verbose.out, quiet.out);
        std::vector<std::string> steps;
        size_t waiting = 0;
        for (const std::string& line : Split(verbose.err, '\n')) {
            if (line.find(kWaiting) != std::string::npos) {
                ++waiting;
            } else {
                steps.push_back(line);
            }
        }
        EXPECT_EQ(steps, command.steps) << verbose.err;
        EXPECT_GT(waiting, 0u) << verbose.err;
    }
}

TEST_F(OutputModes, AnErrorTakesTheProgressLineOffFirst) {
    const std::string error =
        "lumeth-cli: wrong password for the server module at " + Server().toStdString() + "\n";
    for (const char* tty : {"0", "1"}) {
        SCOPED_TRACE(tty);
        QProcessEnvironment env = Terminal(tty);
        env.insert("LUMETH_PASSWORD", "wrong");
        const testing::CliResult r =
            Run({"fetch", "--server", Server(), "-o", Path("out.json")}, env);
        EXPECT_EQ(r.exitCode, 4);
        const std::string before = *tty == '1' ? std::string("\r") + kClear : "";
        ASSERT_GE(r.err.size(), error.size() + before.size()) << r.err;
        EXPECT_EQ(r.err.substr(r.err.size() - error.size() - before.size()), before + error);
        EXPECT_EQ(*tty == '0', r.err == error) << r.err;
    }
}

// apply tells the errors that stop it and counts the rest; --verbose
// lists them all as check does.
TEST_F(OutputModes, ApplyShowsOnlyTheCheckLinesThatStopIt) {
    const QString warned = Edited("warned.json", [](PanelStore& s) {
        s.groups.userGroups[0].listCount = 0; // an empty group: a warning
    });
    const QString failed = Edited("failed.json", [](PanelStore& s) {
        s.groups.userGroups[0].listCount = 0;
        s.groups.userGroups[1].listIndexes[0] = 99; // past the lists: an error
    });
    const auto checkLines = [&](const QString& file) {
        std::vector<std::string> lines = Split(Run({"check", file}).out, '\n');
        lines.pop_back(); // the count
        return lines;
    };
    const std::vector<std::string> all = checkLines(failed);
    ASSERT_EQ(all.size(), 2u);
    const std::string& error = all[0].starts_with("error:") ? all[0] : all[1];
    const std::string f = failed.toStdString();
    const std::string w = warned.toStdString();
    const std::string refused = "lumeth-cli: " + f +
                                ": not applied: check found errors "
                                "(--force sends it anyway)\n";
    const struct {
        QStringList args;
        int exitCode;
        std::string err;
    } cases[] = {
        {{"apply", failed},
         2,
         error + "\n" + f + ": 1 error, 1 warning (lumeth-cli check " + f + " lists them)\n" +
             refused},
        {{"apply", failed, "--verbose"},
         2,
         all[0] + "\n" + all[1] + "\n" + f + ": 1 error, 1 warning\n" + refused},
        {{"apply", warned},
         0,
         w + ": 0 errors, 1 warning (lumeth-cli check " + w + " lists them)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r = Run(c.args + QStringList{"--server", Server()}, Terminal("0"));
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.err, c.err);
    }
}

// OUT "-": the JSON document, byte for byte the file fetch or convert
// writes, and nothing else on stdout; a failed write is exit 7.
TEST_F(OutputModes, DashWritesTheJsonDocumentToStandardOutput) {
    const QStringList fetch{"fetch", "--server", Server(), "-o"};
    const testing::CliResult file = Run(fetch + QStringList{Path("out.json")}, Terminal("0"));
    ASSERT_EQ(file.exitCode, 0) << file.err;
    const testing::CliResult piped = Run(fetch + QStringList{"-"}, Terminal("0"));
    ASSERT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.out, m_dir.Read("out.json"));
    const std::string prefix = "wrote " + Path("out.json").toStdString();
    ASSERT_EQ(file.out.rfind(prefix, 0), 0u);
    EXPECT_EQ(piped.err, "wrote standard output" + file.out.substr(prefix.size()));

    ASSERT_EQ(Run({"convert", Path("out.json"), Path("copy.json")}).exitCode, 0);
    const testing::CliResult converted = Run({"convert", Path("out.json"), "-"});
    EXPECT_EQ(converted.exitCode, 0) << converted.err;
    EXPECT_EQ(converted.out, m_dir.Read("copy.json"));

    m_childSetup = [] {
        const int full = ::open("/dev/full", O_WRONLY);
        ::dup2(full, STDOUT_FILENO);
    };
    for (const QStringList& args :
         {fetch + QStringList{"-"}, QStringList{"convert", Path("out.json"), "-"}}) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const testing::CliResult r = Run(args, Terminal("0"));
        EXPECT_EQ(r.exitCode, 7);
        EXPECT_EQ(r.err, "lumeth-cli: cannot write standard output: No space left on device\n");
    }
}

} // namespace
} // namespace lumeth
