// The offline commands of lumeth-cli: exit codes, what show prints, the
// convert round trip, and that a failed convert leaves no output file.
#include "tests/cli/cli_run.h"

#include <csignal>
#include <filesystem>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QStandardPaths>

#include "files/backup_files.h"
#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "files/user_data_folder.h"

namespace lumeth {
namespace {

using Cli = testing::CliTest;

// Usage errors exit with 1 and print the usage; a bad server option names
// itself on the first line, before any password is asked.
TEST_F(Cli, UsageErrorsExitWithOne) {
    const QStringList fetch{"fetch", "-o", "out.json"};
    const struct {
        QStringList args;
        std::string line; // the first line, where checked
    } cases[] = {
        {{}, ""},
        {{"frobnicate"}, ""},
        {{"show"}, ""},
        {{"show", "a.dat", "b.dat"}, ""},
        {{"show", "--colour", "a.dat"}, ""},
        {{"convert", "a.dat"}, ""},
        {{"convert", "a.dat", "b.dat", "c.dat"}, ""},
        // a password is never a command-line argument
        {fetch + QStringList{"--password", "studio"}, ""},
        {fetch + QStringList{"--server", "host:12x"},
         "invalid port in --server host:12x (1 to 65535)"},
        {fetch + QStringList{"--server", ":1250"}, "no host in --server :1250"},
        {fetch + QStringList{"--timeout", "86401"},
         "--timeout needs a number of seconds greater than 0"},
        {fetch + QStringList{"--timeout"}, "--timeout needs a value"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r = Run(c.args);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find("usage: lumeth-cli"), std::string::npos);
        EXPECT_TRUE(r.out.empty());
        if (!c.line.empty()) {
            EXPECT_EQ(r.err.substr(0, r.err.find('\n') + 2), "lumeth-cli: " + c.line + "\n\n");
        }
    }
    const testing::CliResult help = Run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("convert IN OUT"), std::string::npos);
}

TEST_F(Cli, BadInputExitsWithTwoAndOneLineNamingTheFile) {
    m_dir.Write("short.dat", std::string("\x8C\x00\xFF\x3F\x03\x00\x00\x00\x02", 9));
    m_dir.Write("text.dat", "hello");
    m_dir.Write("bad.json", R"({"format": "lumeth-panel-data", "version": 1, "templates": 5})");
    const std::pair<std::string, std::string> cases[] = {
        {"missing.dat", "no such file"},
        {"short.dat", "truncated at byte 8 reading Input display list count"},
        {"text.dat", "not a panel data file (first value 25960, expected 140)"},
        {"bad.json", "templates: expected an array, found an integer"},
    };
    for (const auto& [name, what] : cases) {
        const testing::CliResult r = Run({"show", Path(name)});
        EXPECT_EQ(r.exitCode, 2) << name;
        EXPECT_EQ(r.err, "lumeth-cli: " + m_dir.file(name) + ": " + what + "\n");
    }
}

TEST_F(Cli, ShowListsNamesFunctionsAndChannelNames) {
    const testing::CliResult r = Run({"show", kDemo});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    for (const char* expected :
         {"Input display lists: 7", "Lst.000 \"Studio A Mics\" (6 channels)", "STA MIC 1 [0001]",
          "User groups: 5", "\n  Gr.001 \"", "\n        Btn 1: ",
          "        Relay Lst.000 \"Studio Lights\"", "template 01 \"Studio A Desk\" Template # 1",
          "channel STA RED LT [0001], channel 2 STA ON AIR [0001], label \"ON AIR\" (custom)",
          "Relay Toggle - Opto Tally", "Output Select W/Listen"}) {
        EXPECT_NE(r.out.find(expected), std::string::npos) << expected;
    }
    EXPECT_EQ(r.out.find("studio\""), std::string::npos); // the password is never listed

    // --json prints the document, password included.
    const testing::CliResult json = Run({"show", "--json", kDemo});
    ASSERT_EQ(json.exitCode, 0) << json.err;
    PanelStore store;
    const JsonReadResult back = ReadJsonDocument(json.out, store);
    ASSERT_TRUE(back.status.ok()) << back.status.failure().detail;
    EXPECT_TRUE(back.hasAlphas);
    EXPECT_EQ(back.password, "studio");
    EXPECT_EQ(json.out, test::ReadFile(kDemo.toStdString())); // the demo is in the written form
}

TEST_F(Cli, ConvertRoundTripIsByteIdenticalWhateverTheExtensions) {
    ASSERT_EQ(Run({"convert", kDemo, Path("a.dat")}).exitCode, 0);
    ASSERT_EQ(Run({"convert", Path("a.dat"), Path("b.JSON")}).exitCode, 0);
    ASSERT_EQ(Run({"convert", Path("b.JSON"), Path("c.dat")}).exitCode, 0);
    const std::string bytes = m_dir.Read("a.dat");
    EXPECT_EQ(m_dir.Read("c.dat"), bytes);
    EXPECT_EQ(bytes.substr(0, 6), std::string("\x8C\x00\xFF\x3F\x03\x00", 6));

    // Content decides the input form: a panel data file named .json still loads.
    m_dir.Write("really-dat.json", bytes);
    EXPECT_EQ(Run({"convert", Path("really-dat.json"), Path("d.dat")}).exitCode, 0);
    EXPECT_EQ(m_dir.Read("d.dat"), bytes);
}

TEST_F(Cli, FailedConvertLeavesNoOutput) {
    m_dir.Write("bad.json", R"({"format": "lumeth-panel-data", "version": 1,)");
    const testing::CliResult bad = Run({"convert", Path("bad.json"), Path("out.dat")});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_NE(bad.err.find("bad.json: invalid JSON"), std::string::npos) << bad.err;
    EXPECT_EQ(Run({"convert", kDemo, Path("out.txt")}).exitCode, 1);

    // A channel the JSON document cannot hold: no half-usable .json is left.
    PanelStore odd;
    odd.ResetToDefaults();
    odd.lists(SubType::Input)[0] = DisplayList{1, "Odd", {-4}};
    m_dir.Write("odd.dat", EncodePanelData(odd));
    const testing::CliResult oddRun = Run({"convert", Path("odd.dat"), Path("odd.json")});
    EXPECT_EQ(oddRun.exitCode, 2);
    EXPECT_NE(oddRun.err.find("display_lists.input[0].channels[0]: out of range"),
              std::string::npos)
        << oddRun.err;
    EXPECT_EQ(m_dir.EntryCount(), 2u); // bad.json and odd.dat only
}

// An operator's chmod survives a replace, a new document holding the password
// is the owner's alone, and a file that cannot be written exits with 7.
TEST_F(Cli, OutputKeepsItsPermissionsAndAFailedWriteExitsWithSeven) {
    namespace fs = std::filesystem;
    ASSERT_EQ(Run({"convert", kDemo, Path("kept.json")}).exitCode, 0);
    EXPECT_EQ(fs::status(m_dir.file("kept.json")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(m_dir.file("kept.json"), fs::perms::group_read, fs::perm_options::add);
    ASSERT_EQ(Run({"convert", kDemo, Path("kept.json")}).exitCode, 0);
    EXPECT_EQ(fs::status(m_dir.file("kept.json")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    // Failed writes: a missing folder, a file size limit (a failed write, not
    // a kill that leaves the temporary file), standard output on a full disk,
    // and targets that are no regular file (kept in a folder of their own).
    const test::TempFolder special;
    ASSERT_EQ(::mkfifo(special.file("fifo.dat").c_str(), 0600), 0);
    fs::create_symlink(special.file("fifo.dat"), special.file("to-fifo.json"));
    fs::create_symlink(special.file("absent.dat"), special.file("dangling.dat"));
    const auto limitSize = [] {
        const rlimit limit{1024, 1024};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, SIG_DFL);
    };
    const auto fullOutput = [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    const struct {
        QStringList args;
        std::function<void()> setup;
        std::string err;
    } failedWrites[] = {
        {{"convert", kDemo, Path("no-folder/out.dat")},
         nullptr,
         "cannot write " + m_dir.file("no-folder/out.dat") + ": No such file or directory\n"},
        {{"convert", kDemo, Path("big.json")},
         limitSize,
         "cannot write " + m_dir.file("big.json") + ": File too large\n"},
        {{"check", kDemo}, fullOutput, "cannot write standard output"},
        {{"convert", kDemo, "-"},
         fullOutput,
         "cannot write standard output: No space left on device\n"},
    };
    std::vector<std::remove_cvref_t<decltype(failedWrites[0])>> cases(std::begin(failedWrites),
                                                                      std::end(failedWrites));
    for (const char* name : {"fifo.dat", "to-fifo.json", "dangling.dat"}) {
        cases.push_back({{"convert", kDemo, QString::fromStdString(special.file(name))},
                         nullptr,
                         "cannot write " + special.file(name) + ": not a regular file\n"});
    }
    for (const auto& c : cases) {
        m_childSetup = c.setup;
        const testing::CliResult r = Run(c.args);
        EXPECT_EQ(r.exitCode, 7) << c.args.join(' ').toStdString();
        EXPECT_TRUE(r.err.starts_with("lumeth-cli: " + c.err)) << r.err;
    }
    m_childSetup = nullptr;
    EXPECT_EQ(m_dir.EntryCount(), 1u); // kept.json alone
}

// The error log goes to --home DIR, else to the per-user data folder the
// installed window uses (Qt's rule, followed without Qt), never to the
// current folder.
TEST_F(Cli, ErrorLogGoesToHomeElseTheWindowsDataFolder) {
    std::filesystem::create_directory(m_dir.file("logs"));
    const std::string dataLog = m_data.file("KOV/Lumeth Admin/Errorlog.txt");
    const struct {
        QStringList home;
        std::string log;
    } cases[] = {{{}, dataLog}, {{"--home", Path("logs")}, m_dir.file("logs/Errorlog.txt")}};
    for (const auto& c : cases) {
        const testing::CliResult r =
            Run(QStringList{"fetch", "--server", "127.0.0.1:1", "-o", Path("out.json")} + c.home,
                Environment("studio"));
        EXPECT_EQ(r.exitCode, 3) << r.err;
        EXPECT_NE(test::ReadFile(c.log).find("Error Connecting to Switcher"), std::string::npos)
            << c.log;
        std::filesystem::remove(c.log);
    }
    EXPECT_FALSE(m_dir.Exists("Errorlog.txt"));
    EXPECT_FALSE(std::filesystem::exists(dataLog)); // --home kept it out of the data folder

    QCoreApplication::setOrganizationName(QString::fromUtf8(kDataOrganisation));
    QCoreApplication::setApplicationName(QString::fromUtf8(kDataApplication));
    const std::string data = m_data.file("share");
    for (const char* xdg : {data.c_str(), static_cast<const char*>(nullptr)}) {
        const std::string saved = std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME") : "";
        xdg ? ::setenv("XDG_DATA_HOME", xdg, 1) : ::unsetenv("XDG_DATA_HOME");
        EXPECT_EQ(UserDataFolder(),
                  QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString() +
                      "/");
        saved.empty() ? ::unsetenv("XDG_DATA_HOME") : ::setenv("XDG_DATA_HOME", saved.c_str(), 1);
    }
}

// apply's own arguments are checked before anything connects: a bad part
// name is a usage error, a BASE that is no configuration bad input.
TEST_F(Cli, ApplyRefusesBadPartsAndABadBaseBeforeConnecting) {
    m_dir.Write("text.json", "hello");
    const std::pair<QStringList, int> cases[] = {
        {{"--only", "relay,input", "--base", kDemo}, 3}, // good: it gets as far as the link
        {{"--only", "input,mixer"}, 1},
        {{"--only", ""}, 1},
        {{"--only", "input", "--only", "relay"}, 1},
        {{"--backup-dir", "x", "--no-backup"}, 1},
        {{"--base", Path("text.json")}, 2},
        {{"--base", Path("missing.json")}, 2},
    };
    for (const auto& [options, code] : cases) {
        SCOPED_TRACE(options.join(' ').toStdString());
        const testing::CliResult r =
            Run(QStringList{"apply", kDemo, "--server", "127.0.0.1:1"} + options,
                Environment("studio"));
        EXPECT_EQ(r.exitCode, code) << r.err;
        EXPECT_EQ(r.err.find("cannot reach") != std::string::npos, code == 3) << r.err;
    }
}

// backups lists newest first what each backup holds; a damaged one says so
// and the rest are still listed; a folder that is not there exits 2.
TEST_F(Cli, BackupsListsEachBackupNewestFirst) {
    PanelStore older;
    older.ResetToDefaults();
    PanelStore newer = older;
    newer.listCount(SubType::Input) = 3;
    newer.lists(SubType::Input).resize(3);
    newer.groups.userGroupCount = 0;
    const std::string dir = m_dir.file("kept");
    ASSERT_TRUE(WriteBackupInto(dir, "20261124-093000", older));
    ASSERT_TRUE(WriteBackupInto(dir, "20261124-101500", newer));
    m_dir.Write("kept/LumethEX-20261124-120000.dat", "not a backup");
    m_dir.Write("kept/notes.txt", "not listed");

    const testing::CliResult r = Run({"backups", QString::fromStdString(dir)});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const size_t damaged = r.out.find("2026-11-24 12:00:00  LumethEX-20261124-120000.dat  12 "
                                      "bytes  damaged: ");
    const size_t second = r.out.find("2026-11-24 10:15:00  LumethEX-20261124-101500.dat  ");
    const size_t first = r.out.find("2026-11-24 09:30:00  LumethEX-20261124-093000.dat  ");
    EXPECT_LT(damaged, second) << r.out;
    EXPECT_LT(second, first) << r.out;
    EXPECT_NE(r.out.find("3 Input, 1 Output, 1 Opto, 1 Relay display lists, 0 user groups, 1 "
                         "button templates\n",
                         second),
              std::string::npos)
        << r.out;
    EXPECT_EQ(r.out.find("notes.txt"), std::string::npos);

    EXPECT_EQ(Run({"backups", Path("missing")}).exitCode, 2);
}

// diff keeps 2 for it, as for its other usage errors: 1 says the sides differ.
TEST_F(Cli, MissingPasswordIsOneLineSayingHowToGiveOne) {
    const std::string current = "lumeth-cli: no password: give one with --password-file FILE, "
                                "LUMETH_PASSWORD, or a terminal\n";
    const struct {
        QStringList args;
        QString password;
        int exitCode;
        std::string err;
    } cases[] = {
        {{"fetch", "-o", "out.json"}, {}, 1, current},
        {{"set-password"}, {}, 1, current},
        {{"set-password"},
         "studio",
         1,
         "lumeth-cli: no password: give one with --new-password-file FILE, "
         "LUMETH_NEW_PASSWORD, or a terminal\n"},
        {{"diff", kDemo, "server"}, {}, 2, current},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult result = Run(c.args, Environment(c.password));
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_EQ(result.err, c.err);
    }
}

} // namespace
} // namespace lumeth
