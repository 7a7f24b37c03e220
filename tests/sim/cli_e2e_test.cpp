// lumeth-cli fetch, apply and set-password against a real lumeth-sim over
// loopback, with and without injected faults.
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QThread>

#include <functional>

#include <signal.h>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "model/merge_plan.h"
#include "tests/sim/sim_process.h"
#include "tests/sim/store_dump.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/fault_injector.h"
#include "tools/sim/sim_state.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::testing;

namespace {

struct CliResult {
    int exitCode = -1;
    QString err;
};

// The error log of a lumeth-cli run with $XDG_DATA_HOME at its folder.
const QString kErrorLog = QStringLiteral("KOV/Lumeth Admin/Errorlog.txt");

// Runs lumeth-cli in `home`, which is also its per-user data folder.
CliResult RunCli(const QString& home, const QStringList& args, const QString& password = "studio",
                 const QString& newPassword = {}) {
    EnsureApp();
    QProcess cli;
    cli.setWorkingDirectory(home);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_DATA_HOME", home);
    env.insert("LUMETH_PASSWORD", password);
    if (!newPassword.isEmpty()) {
        env.insert("LUMETH_NEW_PASSWORD", newPassword);
    }
    cli.setProcessEnvironment(env);
    cli.start(CliBinary(), args);
    CliResult r;
    if (!cli.waitForFinished(60000)) {
        cli.kill();
        cli.waitForFinished();
        r.err = "lumeth-cli did not finish";
        return r;
    }
    r.exitCode = cli.exitStatus() == QProcess::NormalExit ? cli.exitCode() : -1;
    r.err = QString::fromUtf8(cli.readAllStandardError());
    return r;
}

sim::SimState LoadState(const QString& path) {
    sim::SimState state;
    EXPECT_TRUE(sim::LoadStateFile(path.toStdString(), state)) << path.toStdString();
    return state;
}

// Polls the state file until `done` holds (uploads are spaced out in time).
sim::SimState WaitForState(const QString& path,
                           const std::function<bool(const sim::SimState&)>& done) {
    QElapsedTimer timer;
    timer.start();
    sim::SimState state = LoadState(path);
    while (!done(state) && timer.elapsed() < 10000) {
        QThread::msleep(50);
        state = LoadState(path);
    }
    return state;
}

QStringList FaultArgs(const sim::FaultOptions& o) {
    QStringList args{"--poll-interval", "0", "--seed", QString::number(o.seed)};
    if (o.split) {
        args << "--fault-split";
    }
    const std::pair<const char*, double> values[] = {
        {"--fault-garbage", o.garbage},
        {"--fault-checksum", o.checksum},
        {"--fault-cut", o.cut},
        {"--fault-drop", double(o.dropAfter)},
        {"--fault-slow", double(o.slowMs)},
    };
    for (const auto& [name, value] : values) {
        if (value > 0) {
            args << name << QString::number(value);
        }
    }
    return args;
}

class CliAgainstSim : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        statePath = File("state.json");
        const sim::DemoResult demo = sim::MakeDemo("demo");
        demoState = sim::SimState(demo.store, demo.password);
        ASSERT_EQ(sim::SaveStateFile(statePath.toStdString(), demoState), "");
    }
    QString File(const QString& name) const { return m_dir.filePath(name); }
    void Write(const QString& name, const std::string& bytes) {
        QFile file(File(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(bytes));
    }
    // What the administrator wrote to its error log.
    QString ErrorLog() const {
        QFile f(File(kErrorLog));
        return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
    }
    CliResult Run(const QStringList& args, const QString& password = "studio",
                  const QString& newPassword = {}) {
        return RunCli(m_dir.path(), args, password, newPassword);
    }
    CliResult Fetch(const SimProcess& sim, const QString& out, const QString& password = "studio",
                    const QStringList& more = {}) {
        return Run(QStringList{"fetch", "--server", Server(sim), "-o", File(out)} + more, password);
    }
    static QString Server(const SimProcess& sim) { return QString("127.0.0.1:%1").arg(sim.port); }

    // Fetch into `out` and check it is exactly the emulator's configuration.
    void ExpectExactFetch(const SimProcess& sim, const sim::SimState& state, const QString& out) {
        const CliResult r = Fetch(sim, out);
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        QFile f(File(out));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        PanelStore fetched;
        fetched.ResetToDefaults();
        const JsonReadResult doc = ReadJsonDocument(f.readAll().toStdString(), fetched);
        ASSERT_TRUE(doc.status.ok());
        EXPECT_TRUE(doc.hasAlphas);
        EXPECT_EQ(DumpStore(fetched), DumpStore(state.store()));
    }

    QTemporaryDir m_dir;
    QString statePath;
    sim::SimState demoState;
};

} // namespace

TEST_F(CliAgainstSim, FetchGivesExactlyTheEmulatorsState) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    ExpectExactFetch(sim, demoState, "fetched.json");

    const CliResult wrong = Fetch(sim, "no.json", "not-the-password");
    EXPECT_EQ(wrong.exitCode, 4) << wrong.err.toStdString();
    EXPECT_FALSE(QFile::exists(File("no.json")));
}

TEST_F(CliAgainstSim, ApplyAndSetPasswordChangeTheStateAndTheNextClientSeesThem) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    PanelStore edited = demoState.store();
    edited.lists(SubType::Input)[0].name = "Edited List";
    edited.groups.userGroupNames[0] = "Edited Group";
    edited.templates.templateNames[0] = "Edited Tpl";
    edited.templates.buttonTemplates[0].number = 42;
    Write("edited.json", WriteJsonDocument(edited));

    const CliResult r = Run({"apply", File("edited.json"), "--server", Server(sim)});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const std::string want = DumpStore(edited, false);
    sim::SimState saved = WaitForState(
        statePath, [&](const sim::SimState& s) { return DumpStore(s.store(), false) == want; });
    EXPECT_EQ(DumpStore(saved.store(), false), want);
    EXPECT_EQ(saved.password(), "studio");
    ExpectExactFetch(sim, saved, "second.json");

    const CliResult set = Run({"set-password", "--server", Server(sim)}, "studio", "on-air");
    ASSERT_EQ(set.exitCode, 0) << set.err.toStdString();
    saved =
        WaitForState(statePath, [](const sim::SimState& s) { return s.password() == "on-air"; });
    EXPECT_EQ(saved.password(), "on-air");
    EXPECT_EQ(Fetch(sim, "a.json").exitCode, 4);
    EXPECT_EQ(Fetch(sim, "b.json", "on-air").exitCode, 0);
}

// The read-back compares with FILE as the emulator holds it (a panel data
// file's names and labels cut and blank-padded to their width); a file past a
// 14-bit count never leaves.
TEST_F(CliAgainstSim, ApplyReadsBackFileAsHeldAndNeverSendsWhatTheCountsCannotCarry) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    PanelStore many = demoState.store();
    many.listCount(SubType::Input) = 20000;
    many.lists(SubType::Input).resize(20000, many.lists(SubType::Input)[0]);
    Write("many.json", WriteJsonDocument(many));
    const CliResult refused = Run({"apply", File("many.json"), "--force", "--server", Server(sim)});
    EXPECT_EQ(refused.exitCode, 2) << refused.err.toStdString();
    EXPECT_TRUE(refused.err.contains("20000 display lists; a message carries at most 16383"))
        << refused.err.toStdString();
    EXPECT_EQ(DumpStore(LoadState(statePath).store()), DumpStore(demoState.store()));

    PanelStore cut = demoState.store();
    cut.lists(SubType::Input)[0].name = "A list name of 26 letters";
    cut.templates.buttonTemplates[0].buttons[0].label = "TEN CHARS!";
    Write("cut.dat", EncodePanelData(cut));
    const CliResult applied = Run({"apply", File("cut.dat"), "--server", Server(sim)});
    ASSERT_EQ(applied.exitCode, 0) << applied.err.toStdString();
    const sim::SimState saved = WaitForState(statePath, [](const sim::SimState& s) {
        return s.store().lists(SubType::Input)[0].name.starts_with("A list name of 2");
    });
    EXPECT_EQ(TrimTrailingBlanks(saved.store().lists(SubType::Input)[0].name), "A list name of 2");
    EXPECT_EQ(TrimTrailingBlanks(saved.store().templates.buttonTemplates[0].buttons[0].label),
              "TEN CHAR");
}

TEST_F(CliAgainstSim, SlowDeliveryStillGivesTheExactState) {
    // A small configuration, as the slow fault sends byte by byte.
    PanelStore store;
    store.ResetToDefaults();
    sim::SetChannelNames(store.alpha(SubType::Input), {"MIC 1", "MIC 2"});
    sim::SetChannelNames(store.alpha(SubType::Output), {"SPK"});
    store.lists(SubType::Input)[0].channelCount = 2;
    store.lists(SubType::Input)[0].channels = {1, 0};
    const sim::SimState small(std::move(store), "studio");
    ASSERT_EQ(sim::SaveStateFile(File("small.json").toStdString(), small), "");
    SimProcess slow;
    ASSERT_TRUE(
        slow.Start({"--state", File("small.json"), "--poll-interval", "0", "--fault-slow", "1"}));
    ExpectExactFetch(slow, small, "slow.json");
}

// The emulator is stopped (SIGSTOP) once the first upload has been stored:
// apply must not claim success, and says the server's state is unknown.
TEST_F(CliAgainstSim, ApplyToAServerThatStopsAnsweringSaysItsStateIsUnknown) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    PanelStore edited = demoState.store();
    edited.templates.templateNames[0] = "Edited Tpl";
    Write("edited.json", WriteJsonDocument(edited));

    QProcess cli;
    cli.setWorkingDirectory(m_dir.path());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_DATA_HOME", m_dir.path());
    env.insert("LUMETH_PASSWORD", "studio");
    cli.setProcessEnvironment(env);
    cli.start(CliBinary(),
              {"apply", File("edited.json"), "--server", Server(sim), "--timeout", "3"});
    ASSERT_TRUE(sim.WaitForLog("upload DF accepted"));
    ASSERT_EQ(::kill(pid_t(sim.pid()), SIGSTOP), 0);
    const bool finished = cli.waitForFinished(30000);
    ::kill(pid_t(sim.pid()), SIGCONT);
    ASSERT_TRUE(finished);
    const QString err = QString::fromUtf8(cli.readAllStandardError());
    EXPECT_EQ(cli.exitCode(), 5) << err.toStdString();
    EXPECT_TRUE(err.contains("the server module's state is unknown")) << err.toStdString();
    EXPECT_FALSE(QString::fromUtf8(cli.readAllStandardOutput()).contains("applied"));
}

// Every answer may be split, preceded by garbage, spoiled or cut, and the
// first connection is dropped: the second fetch asks again for whatever was
// lost and gets the exact state, whatever the seed.
TEST_F(CliAgainstSim, AllFaultsTogether) {
    sim::FaultOptions options;
    options.split = true;
    options.garbage = 0.3;
    options.checksum = 0.2;
    options.cut = 0.1;
    options.dropAfter = 4;
    for (options.seed = 1; options.seed <= 3; ++options.seed) {
        SCOPED_TRACE(options.seed);
        QFile::remove(File(kErrorLog));
        SimProcess sim;
        ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
        EXPECT_NE(Fetch(sim, "lost.json", "studio", {"--timeout", "3"}).exitCode, 0);
        EXPECT_FALSE(QFile::exists(File("lost.json")));
        ExpectExactFetch(sim, demoState, "fetched.json");
        // The garbage did arrive and was dropped by the administrator's framing.
        EXPECT_TRUE(ErrorLog().contains("Invalid Data")) << ErrorLog().toStdString();
    }
}

// apply --base against an emulator whose user groups changed since BASE: a
// FILE that changes them too is refused (exit 8, nothing sent, no backup);
// one that changes only its templates keeps the server module's groups;
// --force overwrites them. Each send keeps what the emulator held first, and
// --only sends the parts named and nothing else.
TEST_F(CliAgainstSim, ApplyWithABaseKeepsOtherChangesAndBacksUpWhatItReplaces) {
    const PanelStore base = demoState.store();
    PanelStore server = base;
    server.groups.userGroupNames[0] = "Server Group";
    ASSERT_EQ(sim::SaveStateFile(statePath.toStdString(), sim::SimState(server, "studio")), "");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    Write("base.json", WriteJsonDocument(base));
    PanelStore groups = base;
    groups.groups.userGroupNames[0] = "My Group";
    Write("groups.json", WriteJsonDocument(groups));
    PanelStore templates = base;
    templates.templates.templateNames[0] = "My Template";
    Write("templates.json", WriteJsonDocument(templates));
    const QString backups = File("KOV/Lumeth Admin/backups");
    const auto apply = [&](const QString& file, const QStringList& more) {
        return Run(
            QStringList{"apply", File(file), "--base", File("base.json"), "--server", Server(sim)} +
            more);
    };
    const std::string changed =
        ServerChangedLine(Part::UserGroups, File("base.json").toStdString());

    const CliResult conflict = apply("groups.json", {});
    EXPECT_EQ(conflict.exitCode, 8) << conflict.err.toStdString();
    EXPECT_TRUE(conflict.err.contains(QString::fromStdString("lumeth-cli: " + changed + "\n")));
    EXPECT_EQ(DumpStore(LoadState(statePath).store()), DumpStore(server));
    EXPECT_FALSE(QFile::exists(backups));

    const CliResult kept = apply("templates.json", {});
    ASSERT_EQ(kept.exitCode, 0) << kept.err.toStdString();
    EXPECT_TRUE(kept.err.contains(QString::fromStdString("kept: " + changed + "; not sent\n")));
    PanelStore merged = server;
    merged.templates.templateNames[0] = "My Template";
    EXPECT_EQ(DumpStore(LoadState(statePath).store(), false), DumpStore(merged, false));

    const CliResult forced = apply("groups.json", {"--force"});
    ASSERT_EQ(forced.exitCode, 0) << forced.err.toStdString();
    EXPECT_EQ(DumpStore(LoadState(statePath).store(), false), DumpStore(groups, false));

    // --only: the templates FILE would change back are not sent.
    PanelStore input = templates;
    input.lists(SubType::Input)[0].name = "Only Input";
    Write("input.json", WriteJsonDocument(input));
    const CliResult only = Run(
        {"apply", File("input.json"), "--only", "input", "--no-backup", "--server", Server(sim)});
    ASSERT_EQ(only.exitCode, 0) << only.err.toStdString();
    PanelStore onlyInput = groups;
    onlyInput.lists(SubType::Input)[0].name = "Only Input";
    EXPECT_EQ(DumpStore(LoadState(statePath).store(), false), DumpStore(onlyInput, false));

    // Two backups, newest first: what the emulator held before each send.
    const QStringList names = QDir(backups).entryList(QDir::Files, QDir::Name | QDir::Reversed);
    ASSERT_EQ(names.size(), 2);
    for (int i = 0; i < 2; ++i) {
        PanelStore held;
        ASSERT_EQ(LoadPanelDataFile(QDir(backups).filePath(names[i]).toStdString(), held).outcome,
                  LoadOutcome::Loaded);
        EXPECT_EQ(DumpStore(held, false), DumpStore(i == 0 ? merged : server, false));
    }
}
