// lumeth-sim as a process on loopback: bad input from a bare socket client
// never crashes it or changes its state.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "link/codec.h"
#include "link/protocol.h"
#include "tests/sim/sim_process.h"
#include "tools/sim/demo_config.h"

using namespace lumeth;
using namespace lumeth::testing;

namespace {

std::string ReadFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll().toStdString() : std::string();
}

} // namespace

TEST(SimProcessTest, BadClientInputNeverCrashesItOrChangesTheState) {
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--state", path}));
    const std::string before = ReadFile(path);
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
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_TRUE(sim.WaitForLog("Incomplete Message DF")) << sim.Log().toStdString();
    EXPECT_TRUE(sim.WaitForLog("rejected")) << sim.Log().toStdString();
}

TEST(SimProcessTest, AFloodingClientKeepsTheLogWithinItsTrafficAndIsCutOffWhenNotReading) {
    SimProcess sim;
    ASSERT_TRUE(sim.Start({"--demo", "large", "--poll-interval", "0"}));

    // A megabyte of command bytes, each one a frame cut short by the next.
    RawClient junk;
    ASSERT_TRUE(junk.Connect(sim.port));
    ASSERT_EQ(junk.Read(1).size(), 1u);
    const size_t junkBytes = 1 << 20;
    junk.Send(std::string(junkBytes, '\x90'));
    junk.Send(codec::DataRequest(Wire(Part::Password).bit, 0, 0));
    std::vector<std::string> answer;
    for (int i = 0; i < 200 && answer.empty(); ++i) {
        sim.Drain(20);
        answer = junk.Read(1, 30);
    }
    ASSERT_EQ(answer.size(), 1u);
    EXPECT_LT(size_t(sim.Log().size()), junkBytes + 20 * 1024);
    EXPECT_TRUE(sim.Log().contains("Incomplete Message 90")) << sim.Log().left(500).toStdString();

    // Requests for everything (about 0.6 MB of answers each), never read.
    RawClient greedy;
    ASSERT_TRUE(greedy.Connect(sim.port));
    for (int i = 0; i < 100; ++i) {
        greedy.Send(codec::DataRequest(kRequestEverything.a, 0, kRequestEverything.c));
    }
    EXPECT_TRUE(sim.WaitForLog("connection cut off", 20000)) << sim.Log().right(500).toStdString();
    EXPECT_TRUE(sim.Running());
}
