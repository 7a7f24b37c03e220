// lumeth-cli fetch, apply and set-password against a real lumeth-sim over
// loopback, with and without injected faults.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <functional>
#include <optional>

#include "files/json_document.h"
#include "link/codec.h"
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
    QString out, err;
};

// The folder the command runs in; it keeps its Errorlog.txt there.
QString& CliHome() {
    static QString home;
    return home;
}

CliResult RunCli(const QStringList& args, const QString& password = "studio",
                 const QString& newPassword = {}) {
    EnsureApp();
    QProcess cli;
    cli.setWorkingDirectory(CliHome());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
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
    r.out = QString::fromUtf8(cli.readAllStandardOutput());
    r.err = QString::fromUtf8(cli.readAllStandardError());
    return r;
}

QString Server(const SimProcess& sim) {
    return QString("127.0.0.1:%1").arg(sim.port);
}

// A fetched or edited JSON document.
struct Doc {
    PanelStore store;
    std::optional<std::string> password;
    bool hasAlphas = false;
};

bool ReadDoc(const QString& path, Doc& doc) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return false;
    }
    const std::string text = f.readAll().toStdString();
    doc.store.ResetToDefaults();
    const JsonReadResult r = ReadJsonDocument(text, doc.store);
    doc.password = r.password;
    doc.hasAlphas = r.hasAlphas;
    return r.status.ok();
}

void WriteDoc(const QString& path, const PanelStore& store) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray::fromStdString(WriteJsonDocument(store)));
}

sim::SimState LoadState(const QString& path) {
    sim::SimState state;
    EXPECT_TRUE(sim::LoadStateFile(path.toStdString(), state)) << path.toStdString();
    return state;
}

// Fetch into `out` and check it is exactly the emulator's configuration.
void ExpectExactFetch(const SimProcess& sim, const sim::SimState& state, const QString& out,
                      const char* what) {
    const CliResult r = RunCli({"fetch", "--server", Server(sim), "-o", out});
    ASSERT_EQ(r.exitCode, 0) << what << ": " << r.err.toStdString();
    Doc doc;
    ASSERT_TRUE(ReadDoc(out, doc)) << what;
    EXPECT_TRUE(doc.hasAlphas) << what;
    EXPECT_EQ(DumpStore(doc.store), DumpStore(state.store())) << what;
}

// A small configuration, for the byte-by-byte slow fault.
void WriteSmallState(const QString& path) {
    PanelStore store;
    store.ResetToDefaults();
    sim::SetChannelNames(store.alpha(SubType::Input), {"MIC 1", "MIC 2"});
    sim::SetChannelNames(store.alpha(SubType::Output), {"SPK"});
    store.lists(SubType::Input)[0].channelCount = 2;
    store.lists(SubType::Input)[0].channels = {1, 0};
    sim::SimState state(std::move(store), "studio");
    ASSERT_EQ(sim::SaveStateFile(path.toStdString(), state), "");
}

// Which answers of a connection's first fetch the injector corrupts (wrong
// checksum or cut), replaying its draws for the identity query and the
// eleven answers; index 0 is the password answer.
struct Planned {
    std::vector<bool> corrupted;
    std::vector<bool> cut;
};
Planned Plan(const sim::FaultOptions& options, uint64_t connection, sim::SimState& state,
             std::vector<std::string>* after = nullptr) {
    sim::FaultInjector faults(options, connection);
    faults.Shape(codec::IdentityQuery(), false);
    Planned plan;
    for (int k = 0; k < sim::kAnswerKinds; ++k) {
        const std::string& m = state.Answer(static_cast<sim::AnswerKind>(k));
        std::string sent;
        for (const auto& c : faults.Shape(m, true).chunks) {
            sent += c.bytes;
        }
        // Garbage comes before the message; what follows it is the message as sent.
        const size_t start = sent.find(m[0]);
        const std::string body = sent.substr(start);
        plan.cut.push_back(body.size() < m.size());
        plan.corrupted.push_back(body != m);
    }
    if (after != nullptr) {
        // The next message drawn, e.g. a re-requested answer.
        for (const auto& c : faults.Shape(state.Answer(sim::AnswerKind::InputLists), true).chunks) {
            after->push_back(c.bytes);
        }
    }
    return plan;
}

// The first seed from 1 whose plan for `connection` satisfies `accept`.
uint64_t FindSeed(sim::FaultOptions options, uint64_t connection, sim::SimState& state,
                  const std::function<bool(const Planned&, bool nextClean)>& accept) {
    for (uint64_t seed = 1; seed < 5000; ++seed) {
        options.seed = seed;
        std::vector<std::string> next;
        const Planned plan = Plan(options, connection, state, &next);
        std::string joined;
        for (const auto& b : next) {
            joined += b;
        }
        const std::string& clean = state.Answer(sim::AnswerKind::InputLists);
        const bool nextClean =
            joined.size() >= clean.size() && joined.substr(joined.size() - clean.size()) == clean;
        if (accept(plan, nextClean)) {
            return seed;
        }
    }
    ADD_FAILURE() << "no seed found";
    return 1;
}

int Count(const std::vector<bool>& v) {
    return static_cast<int>(std::count(v.begin(), v.end(), true));
}

// Answers the administrator asks for again after a bad checksum: password,
// display lists and user groups.
bool ReRequested(int k) {
    return k == 0 || (k >= 5 && k <= 9);
}

QStringList FaultArgs(const sim::FaultOptions& o) {
    QStringList args{"--poll-interval", "0", "--seed", QString::number(o.seed)};
    if (o.split) {
        args << "--fault-split";
    }
    if (o.garbage > 0) {
        args << "--fault-garbage" << QString::number(o.garbage);
    }
    if (o.checksum > 0) {
        args << "--fault-checksum" << QString::number(o.checksum);
    }
    if (o.cut > 0) {
        args << "--fault-cut" << QString::number(o.cut);
    }
    if (o.dropAfter > 0) {
        args << "--fault-drop" << QString::number(o.dropAfter);
    }
    if (o.slowMs > 0) {
        args << "--fault-slow" << QString::number(o.slowMs);
    }
    return args;
}

class CliAgainstSim : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        statePath = m_dir.filePath("state.json");
        CliHome() = m_dir.path();
    }
    // What the administrator wrote to its error log.
    QString ErrorLog() const {
        QFile f(m_dir.filePath("Errorlog.txt"));
        return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
    }
    QString File(const QString& name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
    QString statePath;
};

} // namespace

TEST_F(CliAgainstSim, FetchGivesExactlyTheEmulatorsState) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    sim::SimState state = LoadState(statePath);
    ExpectExactFetch(sim, state, File("fetched.json"), "plain fetch");

    const CliResult wrong =
        RunCli({"fetch", "--server", Server(sim), "-o", File("no.json")}, "not-the-password");
    EXPECT_EQ(wrong.exitCode, 4) << wrong.err.toStdString();
    EXPECT_FALSE(QFile::exists(File("no.json")));
}

TEST_F(CliAgainstSim, ApplyChangesTheStateFileAndASecondClientSeesIt) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    ASSERT_EQ(RunCli({"fetch", "--server", Server(sim), "-o", File("fetched.json")}).exitCode, 0);
    Doc doc;
    ASSERT_TRUE(ReadDoc(File("fetched.json"), doc));

    PanelStore& edited = doc.store;
    edited.lists(SubType::Input)[0].name = "Edited List";
    edited.userGroupNames[0] = "Edited Group";
    edited.templateNames[0] = "Edited Tpl";
    edited.buttonTemplates[0].number = 42;
    WriteDoc(File("edited.json"), edited);

    const CliResult r = RunCli({"apply", File("edited.json"), "--server", Server(sim)});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();

    // The six uploads are spaced out; wait until the last one is in.
    QElapsedTimer timer;
    timer.start();
    sim::SimState saved = LoadState(statePath);
    while (DumpStore(saved.store(), false) != DumpStore(edited, false) && timer.elapsed() < 10000) {
        QThread::msleep(50);
        saved = LoadState(statePath);
    }
    EXPECT_EQ(DumpStore(saved.store(), false), DumpStore(edited, false));
    EXPECT_EQ(saved.password(), "studio");

    ExpectExactFetch(sim, saved, File("second.json"), "fetch after apply");
}

TEST_F(CliAgainstSim, SetPasswordChangesThePassword) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    const CliResult r = RunCli({"set-password", "--server", Server(sim)}, "studio", "on-air");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();

    QElapsedTimer timer;
    timer.start();
    while (LoadState(statePath).password() != "on-air" && timer.elapsed() < 5000) {
        QThread::msleep(50);
    }
    EXPECT_EQ(LoadState(statePath).password(), "on-air");
    EXPECT_EQ(RunCli({"fetch", "--server", Server(sim), "-o", File("a.json")}).exitCode, 4);
    EXPECT_EQ(RunCli({"fetch", "--server", Server(sim), "-o", File("b.json")}, "on-air").exitCode,
              0);
}

TEST_F(CliAgainstSim, SplitGarbageAndSlowDeliveryStillGiveTheExactState) {
    {
        SimProcess sim;
        ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0", "--fault-split",
                               "--fault-garbage", "0.5", "--seed", "3"}));
        ExpectExactFetch(sim, LoadState(statePath), File("split.json"), "split + garbage");
        EXPECT_TRUE(sim.WaitForLog("fault injection on"));
        // The garbage did arrive and was dropped by the administrator's framing.
        EXPECT_TRUE(ErrorLog().contains("Invalid Data")) << ErrorLog().toStdString();
    }
    const QString small = File("small.json");
    WriteSmallState(small);
    SimProcess slow;
    ASSERT_TRUE(slow.Start({"--state", small, "--poll-interval", "0", "--fault-slow", "1"}));
    ExpectExactFetch(slow, LoadState(small), File("slow.json"), "slow");
}

TEST_F(CliAgainstSim, ABadChecksumOnAReRequestedAnswerIsRecovered) {
    SimProcess probe; // creates the state file from the demo
    ASSERT_TRUE(probe.Start({"--state", statePath}));
    probe.Stop();
    sim::SimState state = LoadState(statePath);

    sim::FaultOptions options;
    options.checksum = 0.15;
    // Exactly one answer spoiled, one that is asked for again, and the
    // answer to that request arrives intact.
    options.seed = FindSeed(options, 1, state, [](const Planned& p, bool nextClean) {
        if (Count(p.corrupted) != 1 || !nextClean) {
            return false;
        }
        for (int k = 0; k < sim::kAnswerKinds; ++k) {
            if (p.corrupted[size_t(k)] && ReRequested(k) && k >= 5) {
                return true;
            }
        }
        return false;
    });
    SimProcess sim;
    ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
    ExpectExactFetch(sim, state, File("fetched.json"), "checksum fault on a display list");
}

TEST_F(CliAgainstSim, ABadChecksumOnTheButtonsIsNotAskedForAgain) {
    SimProcess probe;
    ASSERT_TRUE(probe.Start({"--state", statePath}));
    probe.Stop();
    sim::SimState state = LoadState(statePath);

    sim::FaultOptions options;
    options.checksum = 0.15;
    options.seed = FindSeed(options, 1, state, [](const Planned& p, bool) {
        return Count(p.corrupted) == 1 && p.corrupted[size_t(sim::AnswerKind::Templates)];
    });
    SimProcess sim;
    ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
    // The administrator logs the checksum error and waits for templates that
    // never come: fetch times out and writes nothing.
    const CliResult r =
        RunCli({"fetch", "--server", Server(sim), "-o", File("f.json"), "--timeout", "2"});
    EXPECT_EQ(r.exitCode, 5) << r.err.toStdString();
    EXPECT_FALSE(QFile::exists(File("f.json")));
    EXPECT_TRUE(ErrorLog().contains("48QX Check Sum Error")) << ErrorLog().toStdString();
}

TEST_F(CliAgainstSim, ACutAnswerIsLostAndFetchTimesOut) {
    SimProcess probe;
    ASSERT_TRUE(probe.Start({"--state", statePath}));
    probe.Stop();
    sim::SimState state = LoadState(statePath);
    const std::string before = DumpStore(state.store());

    sim::FaultOptions options;
    options.cut = 0.1;
    options.seed =
        FindSeed(options, 1, state, [](const Planned& p, bool) { return Count(p.cut) == 1; });
    SimProcess sim;
    ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
    // A cut frame is dropped by the framing ("Incomplete Message") and nobody
    // asks for it again.
    const CliResult r =
        RunCli({"fetch", "--server", Server(sim), "-o", File("f.json"), "--timeout", "2"});
    EXPECT_EQ(r.exitCode, 5) << r.err.toStdString();
    EXPECT_TRUE(ErrorLog().contains("Incomplete Message")) << ErrorLog().toStdString();
    EXPECT_EQ(DumpStore(LoadState(statePath).store()), before);
}

TEST_F(CliAgainstSim, ADroppedConnectionFailsOneFetchAndTheNextSucceeds) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0", "--fault-drop", "5"}));
    const CliResult lost =
        RunCli({"fetch", "--server", Server(sim), "-o", File("lost.json"), "--timeout", "3"});
    EXPECT_NE(lost.exitCode, 0);
    EXPECT_FALSE(QFile::exists(File("lost.json")));
    EXPECT_TRUE(sim.WaitForLog("drop fault"));
    ExpectExactFetch(sim, LoadState(statePath), File("fetched.json"), "after the drop");
}

TEST_F(CliAgainstSim, AllFaultsTogether) {
    SimProcess probe;
    ASSERT_TRUE(probe.Start({"--state", statePath}));
    probe.Stop();
    sim::SimState state = LoadState(statePath);

    sim::FaultOptions options;
    options.split = true;
    options.garbage = 0.3;
    options.checksum = 0.1;
    options.cut = 0.05;
    options.dropAfter = 4;
    options.slowMs = 0;
    // The first connection is dropped; on the second every spoiled answer
    // must be one the administrator asks for again.
    sim::FaultOptions second = options;
    second.dropAfter = 0;
    options.seed = FindSeed(second, 2, state, [](const Planned& p, bool nextClean) {
        if (Count(p.cut) != 0 || Count(p.corrupted) != 1 || !nextClean) {
            return false;
        }
        for (int k = 5; k <= 9; ++k) {
            if (p.corrupted[size_t(k)]) {
                return true;
            }
        }
        return false;
    });
    SimProcess sim;
    ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
    const CliResult lost =
        RunCli({"fetch", "--server", Server(sim), "-o", File("lost.json"), "--timeout", "3"});
    EXPECT_NE(lost.exitCode, 0);
    ExpectExactFetch(sim, state, File("fetched.json"), "all faults, second connection");
}
