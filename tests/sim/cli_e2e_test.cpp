// lumeth-cli fetch, apply and set-password against a real lumeth-sim over
// loopback, with and without injected faults.
#include <gtest/gtest.h>

#include <QDir>
#include <QProcessEnvironment>

#include <filesystem>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "model/merge_plan.h"
#include "tests/cli/cli_run.h"
#include "tests/sim/sim_process.h"
#include "tests/sim/store_dump.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/fault_injector.h"
#include "tools/sim/sim_state.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::testing;

namespace {

// The error log of a lumeth-cli run, in its per-user data folder.
const std::string kErrorLog = "KOV/Lumeth Admin/Errorlog.txt";

sim::SimState LoadState(const QString& path) {
    sim::SimState state;
    EXPECT_TRUE(sim::LoadStateFile(path.toStdString(), state)) << path.toStdString();
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

class CliAgainstSim : public CliTest {
protected:
    void SetUp() override {
        EnsureApp();
        statePath = Path("state.json");
        const sim::DemoResult demo = sim::MakeDemo("demo");
        demoState = sim::SimState(demo.store, demo.password);
        ASSERT_EQ(sim::SaveStateFile(statePath.toStdString(), demoState), "");
    }
    CliResult RunAs(const QStringList& args, const QString& password = "studio") {
        return Run(args, Environment(password));
    }
    CliResult Fetch(const SimProcess& sim, const std::string& out,
                    const QString& password = "studio", const QStringList& more = {}) {
        return RunAs(QStringList{"fetch", "--server", Server(sim), "-o", Path(out)} + more,
                     password);
    }
    static QString Server(const SimProcess& sim) { return QString("127.0.0.1:%1").arg(sim.port); }

    // Fetch into `out` and check it is exactly the emulator's configuration.
    void ExpectExactFetch(const SimProcess& sim, const sim::SimState& state,
                          const std::string& out) {
        const CliResult r = Fetch(sim, out);
        ASSERT_EQ(r.exitCode, 0) << r.err;
        PanelStore fetched;
        fetched.ResetToDefaults();
        const JsonReadResult doc = ReadJsonDocument(m_dir.Read(out), fetched);
        ASSERT_TRUE(doc.status.ok());
        EXPECT_TRUE(doc.hasAlphas);
        EXPECT_EQ(DumpStore(fetched), DumpStore(state.store()));
    }

    QString statePath;
    sim::SimState demoState;
};

} // namespace

// What apply sends is checked against the emulator's state by
// ApplyWithABaseKeepsOtherChangesAndBacksUpWhatItReplaces.
TEST_F(CliAgainstSim, FetchGivesTheStateAndSetPasswordChangesItForTheNextClient) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    ExpectExactFetch(sim, demoState, "first.json");
    QProcessEnvironment env = Environment("studio");
    env.insert("LUMETH_NEW_PASSWORD", "on-air");
    const CliResult set = Run({"set-password", "--server", Server(sim)}, env);
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(Fetch(sim, "a.json").exitCode, 4);
    EXPECT_EQ(Fetch(sim, "b.json", "on-air").exitCode, 0);
    EXPECT_EQ(LoadState(statePath).password(), "on-air"); // and it is kept
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
        std::filesystem::remove(m_data.file(kErrorLog));
        SimProcess sim;
        ASSERT_TRUE(sim.Start(QStringList{"--state", statePath} + FaultArgs(options)));
        EXPECT_NE(Fetch(sim, "lost.json", "studio", {"--timeout", "3"}).exitCode, 0);
        EXPECT_FALSE(m_dir.Exists("lost.json"));
        ExpectExactFetch(sim, demoState, "fetched.json");
        // The garbage did arrive and was dropped by the administrator's framing.
        const std::string log = m_data.Read(kErrorLog);
        EXPECT_NE(log.find("Invalid Data"), std::string::npos) << log;
    }
}

// apply --base against an emulator whose user groups changed since BASE: a
// FILE that changes them too is refused (exit 8, nothing sent, no backup);
// one that changes only its templates keeps the server module's groups;
// --force overwrites them. Each send keeps what the emulator held first.
TEST_F(CliAgainstSim, ApplyWithABaseKeepsOtherChangesAndBacksUpWhatItReplaces) {
    const PanelStore base = demoState.store();
    PanelStore server = base;
    server.groups.userGroupNames[0] = "Server Group";
    ASSERT_EQ(sim::SaveStateFile(statePath.toStdString(), sim::SimState(server, "studio")), "");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", statePath, "--poll-interval", "0"}));
    m_dir.Write("base.json", WriteJsonDocument(base));
    PanelStore groups = base;
    groups.groups.userGroupNames[0] = "My Group";
    m_dir.Write("groups.json", WriteJsonDocument(groups));
    PanelStore templates = base;
    templates.templates.templateNames[0] = "My Template";
    m_dir.Write("templates.json", WriteJsonDocument(templates));
    const std::string backups = m_data.file("KOV/Lumeth Admin/backups");
    const auto apply = [&](const std::string& file, const QStringList& more) {
        return RunAs(
            QStringList{"apply", Path(file), "--base", Path("base.json"), "--server", Server(sim)} +
            more);
    };
    const std::string changed =
        ServerChangedLine(Part::UserGroups, Path("base.json").toStdString());

    const CliResult conflict = apply("groups.json", {});
    EXPECT_EQ(conflict.exitCode, 8) << conflict.err;
    EXPECT_NE(conflict.err.find("lumeth-cli: " + changed + "\n"), std::string::npos);
    EXPECT_EQ(DumpStore(LoadState(statePath).store()), DumpStore(server));
    EXPECT_FALSE(std::filesystem::exists(backups));

    const CliResult kept = apply("templates.json", {});
    ASSERT_EQ(kept.exitCode, 0) << kept.err;
    EXPECT_NE(kept.err.find("kept: " + changed + "; not sent\n"), std::string::npos);
    PanelStore merged = server;
    merged.templates.templateNames[0] = "My Template";
    EXPECT_EQ(DumpStore(LoadState(statePath).store(), false), DumpStore(merged, false));

    const CliResult forced = apply("groups.json", {"--force"});
    ASSERT_EQ(forced.exitCode, 0) << forced.err;
    EXPECT_EQ(DumpStore(LoadState(statePath).store(), false), DumpStore(groups, false));

    // Two backups, newest first: what the emulator held before each send.
    const QDir folder(QString::fromStdString(backups));
    const QStringList names = folder.entryList(QDir::Files, QDir::Name | QDir::Reversed);
    ASSERT_EQ(names.size(), 2);
    for (int i = 0; i < 2; ++i) {
        PanelStore held;
        ASSERT_EQ(LoadPanelDataFile(folder.filePath(names[i]).toStdString(), held).outcome,
                  LoadOutcome::Loaded);
        EXPECT_EQ(DumpStore(held, false), DumpStore(i == 0 ? merged : server, false));
    }
}
