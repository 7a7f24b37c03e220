// lumeth-sim as a process on loopback, driven by a bare socket client that
// decodes with the administrator's own session.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "link/codec.h"
#include "link/link_state.h"
#include "link/session.h"
#include "tests/sim/sim_loop.h"
#include "tests/sim/sim_process.h"
#include "tests/sim/store_dump.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::testing;

namespace {

const std::string kIdentityQuery("\x81\x64\x64\xFF", 4);

std::string RequestEverything() {
    return codec::DataRequest(request::kEverythingA, 0, request::kEverythingC);
}

// Fetch everything over a raw connection and decode it like the
// administrator does. Returns the decoded store.
struct Fetched {
    PanelStore store;
    LinkState link;
    ClientRecorder log;
    size_t answers = 0;
};

void FetchRaw(int port, Fetched& out) {
    RawClient client;
    ASSERT_TRUE(client.Connect(port));
    ASSERT_EQ(client.Read(1), std::vector<std::string>{kIdentityQuery});
    client.Send(codec::IdentityAnswer() + RequestEverything());
    const auto frames = client.Read(11);
    out.answers = frames.size();
    LinkSession session(out.store, out.link, out.log);
    out.link.pendingA = request::kEverythingA;
    out.link.pendingC = request::kEverythingC;
    for (const auto& f : frames) {
        session.Receive(f);
        session.DecodeNext();
    }
}

std::string ReadFile(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return {};
    }
    return f.readAll().toStdString();
}

} // namespace

TEST(SimProcessTest, ServesTheBuiltInDemoToARawClient) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({})) << sim.Log().toStdString();
    EXPECT_TRUE(sim.firstLine.contains("password: studio")) << sim.firstLine.toStdString();

    Fetched fetched;
    FetchRaw(sim.port, fetched);
    EXPECT_EQ(fetched.answers, 11u);
    EXPECT_FALSE(fetched.link.AnyPending());
    EXPECT_EQ(fetched.link.serverPassword, "studio");
    EXPECT_EQ(DumpStore(fetched.store), DumpStore(sim::MakeDemo("demo").store));
}

TEST(SimProcessTest, CreatesAMissingStateFileAndRefusesABadOne) {
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    {
        SimProcess sim;
        ASSERT_TRUE(sim.Start({"--state", path})) << sim.Log().toStdString();
        EXPECT_TRUE(sim.firstLine.contains(path)) << sim.firstLine.toStdString();
    }
    sim::SimState loaded;
    ASSERT_TRUE(sim::LoadStateFile(path.toStdString(), loaded));
    EXPECT_EQ(loaded.password(), "studio");
    EXPECT_EQ(DumpStore(loaded.store()), DumpStore(sim::MakeDemo("demo").store));

    const QString bad = dir.filePath("bad.json");
    QFile f(bad);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("{\"format\": \"lumeth-panel-data\", \"version\": 1, \"password\": 5}");
    f.close();
    SimProcess refused;
    EXPECT_FALSE(refused.Start({"--state", bad}));
    EXPECT_EQ(refused.WaitForExit(), 2);
    const QString log = refused.Log().trimmed();
    EXPECT_TRUE(log.contains(bad)) << log.toStdString();
    EXPECT_TRUE(log.contains("password")) << log.toStdString();
    EXPECT_FALSE(log.contains('\n')) << "one line: " << log.toStdString();
}

TEST(SimProcessTest, APortInUseExitsWithThree) {
    SimProcess first;
    ASSERT_TRUE(first.Start({}));
    SimProcess second;
    EXPECT_FALSE(second.Start({"--listen", QString("127.0.0.1:%1").arg(first.port)}));
    EXPECT_EQ(second.WaitForExit(), 3);
    EXPECT_TRUE(second.Log().contains("already in use")) << second.Log().toStdString();
    EXPECT_TRUE(first.Running());
}

TEST(SimProcessTest, UploadsChangeTheStateFileAndReachTheNextClient) {
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", path}));

    Fetched first;
    FetchRaw(sim.port, first);
    first.store.lists(SubType::Output)[0].name = "Control Room";
    first.store.templateNames[0] = "Breakfast";
    LinkSession session(first.store, first.link, first.log);

    RawClient uploader;
    ASSERT_TRUE(uploader.Connect(sim.port));
    ASSERT_EQ(uploader.Read(1).size(), 1u);
    std::string apply;
    for (const auto& m : session.BuildApplyMessages()) {
        apply += m;
    }
    first.link.serverPassword = "changed";
    session.SendPassword();
    for (const auto& m : session.TakeOutgoing()) {
        apply += m;
    }
    uploader.Send(apply);
    EXPECT_EQ(uploader.Read(7), std::vector<std::string>(7, std::string("\xF1")));

    sim::SimState saved;
    ASSERT_TRUE(sim::LoadStateFile(path.toStdString(), saved));
    EXPECT_EQ(saved.password(), "changed");
    EXPECT_EQ(DumpStore(saved.store(), false), DumpStore(first.store, false));

    Fetched second;
    FetchRaw(sim.port, second);
    EXPECT_EQ(second.link.serverPassword, "changed");
    EXPECT_EQ(DumpStore(second.store, false), DumpStore(first.store, false));
}

TEST(SimProcessTest, BadClientInputNeverCrashesItOrChangesTheState) {
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", path}));
    const std::string before = ReadFile(path);
    ASSERT_FALSE(before.empty());

    // A valid upload to spoil in several ways.
    PanelStore edited = sim::MakeDemo("demo").store;
    edited.userGroupNames[0] = "Spoiled";
    LinkState link;
    ClientRecorder recorder;
    LinkSession session(edited, link, recorder);
    const auto apply = session.BuildApplyMessages();

    RawClient client;
    ASSERT_TRUE(client.Connect(sim.port));
    ASSERT_EQ(client.Read(1).size(), 1u);
    client.Send(std::string(1000, '\x05')); // garbage
    for (const auto& m : apply) {
        client.Send(m.substr(0, m.size() / 2)); // cut short...
        std::string wrong = m;                  // ...then a wrong checksum
        wrong[m.size() - 2] = static_cast<char>((m[m.size() - 2] + 3) & 127);
        client.Send(wrong);
    }
    client.Send(std::string("\xDF\x0B", 2) + std::string(1 << 20, 'z')); // 1 MB, no end marker
    client.Send(std::string("\xF2\x01\xFF", 3));                         // a short request

    // Still serving on the same connection.
    client.Send(codec::DataRequest(request::kPassword, 0, 0));
    const auto answer = client.Read(1);
    ASSERT_EQ(answer.size(), 1u);
    EXPECT_EQ(answer[0], codec::PasswordMessage("studio"));
    EXPECT_TRUE(sim.Running());
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_TRUE(sim.WaitForLog("Incomplete Message DF")) << sim.Log().toStdString();
    EXPECT_TRUE(sim.WaitForLog("rejected")) << sim.Log().toStdString();
}

TEST(SimProcessTest, TracesFramesAndLogsUnansweredPolls) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--trace", "--poll-interval", "40"}));
    RawClient client;
    ASSERT_TRUE(client.Connect(sim.port));
    ASSERT_EQ(client.Read(1).size(), 1u);
    client.Send(codec::IdentityAnswer());
    EXPECT_TRUE(sim.WaitForLog("> 81 64 64 FF"));
    EXPECT_TRUE(sim.WaitForLog("< 81 11 01 12 FF"));
    EXPECT_TRUE(sim.WaitForLog("> F5"));
    EXPECT_TRUE(sim.WaitForLog("no poll answer")) << sim.Log().toStdString();
}
