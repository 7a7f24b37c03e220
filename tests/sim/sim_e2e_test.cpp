// lumeth-sim as a process on loopback: bad input from a bare socket client
// never crashes it or changes its state.
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <memory>

#include "link/codec.h"
#include "link/protocol.h"
#include "tests/sim/sim_process.h"
#include "tests/support/temp_folder.h"
#include "tools/sim/demo_config.h"

using namespace lumeth;
using namespace lumeth::testing;

TEST(SimProcessTest, BadClientInputNeverCrashesItOrChangesTheState) {
    test::TempFolder dir;
    const std::string path = dir.file("state.json");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", QString::fromStdString(path)}));
    const std::string before = test::ReadFile(path);
    ASSERT_FALSE(before.empty());

    // A valid upload to spoil in several ways.
    PanelStore edited = sim::MakeDemo("demo").store;
    edited.groups.userGroupNames[0] = "Spoiled";

    RawClient client;
    ASSERT_TRUE(client.Connect(sim.port));
    ASSERT_EQ(client.Read(1), std::vector<std::string>{codec::IdentityQuery()});
    client.Send(std::string(1000, '\x05')); // garbage
    for (const codec::Upload& upload : codec::UploadMessages(edited)) {
        const std::string& m = upload.message;
        client.Send(m.substr(0, m.size() / 2)); // cut short...
        std::string wrong = m;                  // ...then a wrong checksum
        wrong[m.size() - 2] = static_cast<char>((m[m.size() - 2] + 3) & 127);
        client.Send(wrong);
    }
    // 1 MB without an end marker, then a short request.
    client.Send(Char(Command::DisplayLists) + std::string("\x0B") + std::string(1 << 20, 'z'));
    client.Send(Char(Command::DataRequest) + std::string("\x01") + char(kEndMarker));

    // Still serving on the same connection.
    client.Send(codec::DataRequest(Wire(Part::Password).bit, 0, 0));
    const auto answer = client.Read(1);
    ASSERT_EQ(answer.size(), 1u);
    EXPECT_EQ(answer[0], codec::PasswordMessage("studio"));
    EXPECT_TRUE(sim.Running());
    EXPECT_EQ(test::ReadFile(path), before);
    EXPECT_TRUE(sim.WaitForLog("Incomplete Message DF")) << sim.Log().toStdString();
    EXPECT_TRUE(sim.WaitForLog("rejected")) << sim.Log().toStdString();
}

TEST(SimProcessTest, AClientThatNeverReadsIsCutOff) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--demo", "large", "--poll-interval", "0"}));

    // Requests for everything (about 0.6 MB of answers each), never read.
    RawClient greedy;
    ASSERT_TRUE(greedy.Connect(sim.port));
    for (int i = 0; i < 100; ++i) {
        greedy.Send(codec::DataRequest(kRequestEverything.a, 0, kRequestEverything.c));
    }
    EXPECT_TRUE(sim.WaitForLog("connection cut off", 20000)) << sim.Log().right(500).toStdString();
    EXPECT_TRUE(sim.Running());
}

namespace {

// A line from /proc/PID/status in kB, such as "VmRSS"; -1 when missing.
long StatusKb(qint64 pid, const std::string& field) {
    const std::string status = test::ReadFile("/proc/" + std::to_string(pid) + "/status");
    const size_t at = status.find(field + ":");
    return at == std::string::npos ? -1 : std::stol(status.substr(at + field.size() + 1));
}

// Whether a client asking for the password gets it.
bool ServesAClient(int port) {
    RawClient client;
    if (!client.Connect(port) || client.Read(1) != std::vector{codec::IdentityQuery()}) {
        return false;
    }
    client.Send(codec::DataRequest(Wire(Part::Password).bit, 0, 0));
    return client.Read(1) == std::vector{codec::PasswordMessage("studio")};
}

} // namespace

TEST(SimProcessTest, IdleConnectionsPastTheDescriptorLimitDoNotStopItServing) {
    SimProcess sim;
    sim.LimitDescriptors(64);
    ASSERT_TRUE(sim.Start({"--poll-interval", "0"}));
    const auto bursts = [&sim] { return sim.Log().count("the most served at once"); };
    const auto burstEnds = [&sim] { return sim.Log().count("lumeth-sim: closed "); };
    for (int round = 0; round < 2; ++round) { // and again once the first burst is over
        std::vector<std::unique_ptr<RawClient>> idle;
        for (int i = 0; i < 70; ++i) {
            idle.push_back(std::make_unique<RawClient>());
            ASSERT_TRUE(idle.back()->Connect(sim.port)) << i;
        }
        sim.Drain(200);
        EXPECT_TRUE(ServesAClient(sim.port)) << round << sim.Log().right(500).toStdString();
        for (int wait = 0; wait < 50 && (bursts() == 0 || burstEnds() < bursts()); ++wait) {
            sim.Drain(100); // a burst ends a second after its last close
        }
    }
    // A line at the start and one at the end of each burst, not one per
    // close (some 60 closes; a loaded machine may split them in more bursts).
    EXPECT_EQ(burstEnds(), bursts());
    EXPECT_GE(bursts(), 1);
    EXPECT_LE(bursts(), 6) << sim.Log().toStdString();
    EXPECT_TRUE(sim.Running());
}

TEST(SimProcessTest, GarbageClientsCostTheLogAboutALineASecondEach) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--poll-interval", "0"}));
    constexpr int kClients = 5;
    std::vector<std::unique_ptr<RawClient>> junk;
    for (int i = 0; i < kClients; ++i) {
        junk.push_back(std::make_unique<RawClient>());
        ASSERT_TRUE(junk.back()->Connect(sim.port));
    }
    // Command bytes cut short by the next: a bad frame per byte, for 2.5 s.
    size_t sent = 0;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 2500) {
        for (auto& client : junk) {
            client->Send(std::string(4096, '\x90'));
            sent += 4096;
        }
        sim.Drain(10);
    }
    junk.clear();
    ASSERT_TRUE(sim.WaitForLog("client " + QString::number(kClients) + " closed"));
    sim.Drain(100);
    const QString log = sim.Log();
    EXPECT_TRUE(log.contains(" garbage bytes in 1 s (")) << log.left(1000).toStdString();
    // Per client: connected, closed, the first bad frame, a summary a second
    // (2.5 s, and one at closing), the budget's note: at most 8 lines.
    EXPECT_LE(log.count('\n'), 1 + kClients * 8) << log.toStdString();
    EXPECT_GT(sent, size_t(kClients) * 100000);
}

TEST(SimProcessTest, ClientsThatNeverReadAreCutOffAtTheTotalQueuedCap) {
    constexpr long kCapBytes = 4 << 20;
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--demo", "large", "--poll-interval", "0", "--max-queued-total",
                           QString::number(kCapBytes)}));
    ASSERT_TRUE(ServesAClient(sim.port));
    const long before = StatusKb(sim.pid(), "VmRSS");
    // Each asks for everything (about 0.6 MB of answers) twelve times, less
    // than the 8 MB one client may have waiting, and never reads.
    std::vector<std::unique_ptr<RawClient>> greedy;
    for (int i = 0; i < 8; ++i) {
        greedy.push_back(std::make_unique<RawClient>());
        ASSERT_TRUE(greedy.back()->Connect(sim.port));
        for (int r = 0; r < 12; ++r) {
            greedy.back()->Send(codec::DataRequest(kRequestEverything.a, 0, kRequestEverything.c));
        }
        sim.Drain(100);
    }
    sim.Drain(300);
    const long after = StatusKb(sim.pid(), "VmRSS");
    EXPECT_TRUE(sim.WaitForLog("over the cap of " + QString::number(kCapBytes)))
        << sim.Log().right(1000).toStdString();
    EXPECT_LT(after - before, 3 * kCapBytes / 1024) << "kB over the start";
    EXPECT_TRUE(ServesAClient(sim.port));
}
