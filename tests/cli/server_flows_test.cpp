// lumeth-cli fetch, apply and set-password against a scripted server module
// on 127.0.0.1: the bytes the CLI sends, the spacing of the upload, and the
// exit codes for a wrong password, an unreachable server and missing data.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "link/codec.h"
#include "model/panel_store.h"

namespace lumeth {
namespace {

namespace fs = std::filesystem;

std::string Bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values) {
        out.push_back(static_cast<char>(v));
    }
    return out;
}

// Body bytes summed modulo 128, then the checksum and end marker appended.
std::string Framed(std::string message) {
    int sum = 0;
    for (size_t i = 1; i < message.size(); ++i) {
        sum = (sum + static_cast<unsigned char>(message[i])) % 128;
    }
    message.push_back(static_cast<char>(sum));
    message.push_back(static_cast<char>(0xFF));
    return message;
}

std::string Padded(const std::string& text, size_t width) {
    std::string out = text.substr(0, width);
    out.resize(width, ' ');
    return out;
}

const std::string kIdentityQuery = Bytes({0x81, 0x64, 0x64, 0xFF});
const std::string kIdentityAnswer = Bytes({0x81, 0x11, 0x01, 0x12, 0xFF});
const std::string kRequestEverything = Bytes({0xF2, 0x02, 0x06, 0x00, 0x18, 0x00, 0x00, 0x00, 0x00,
                                              0x7C, 0x01, 0x00, 0x00, 0x00, 0x00, 0x1D, 0xFF});

// The configuration the scripted server module holds.
PanelStore ServerConfiguration() {
    PanelStore store;
    store.listCount(SubType::Input) = 1;
    store.lists(SubType::Input)[0] = DisplayList{2, "Studio", {0, 2}};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output)[0] = DisplayList{1, "Programme", {1}};
    store.userGroupCount = 1;
    store.userGroupNames[0] = "News";
    store.userGroups[0] = UserGroup{1, {0}, {11}};
    store.templateCount = 1;
    store.templateNames[0] = "Desk";
    PanelButton button = PanelButton::Cleared();
    button.type = 40;
    button.channel = 2;
    store.buttonTemplates[0] = ButtonTemplate{1, 1, {button}};
    return store;
}

const std::vector<std::vector<std::string>> kServerAlphas = {
    {"Mic 1", "Mic 2", "CD 1"}, {"PGM", "AUX"}, {"Door"}, {"On Air"}};

// What the server module leaves out of its answers.
struct Omissions {
    bool identityQuery = false;
    bool inputAlphas = false;
    bool userGroups = false;
};

struct Frame {
    std::string bytes;
    qint64 atMs;
};

// A server module that sends the identity query on connect, serves the whole
// configuration on every data request, takes a new password from an 0x80
// message, and records every frame it receives with its arrival time.
class ScriptedServer {
public:
    explicit ScriptedServer(std::string password, Omissions omit = {})
        : m_password(std::move(password)), m_omit(omit) {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost, 0));
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] { Accept(); });
    }
    int port() const { return m_server.serverPort(); }
    const std::vector<Frame>& frames() const { return m_frames; }
    const std::string& password() const { return m_password; }
    bool clientClosed() const { return m_clientClosed; }

private:
    void Accept() {
        m_client = m_server.nextPendingConnection();
        m_clock.start();
        QObject::connect(m_client, &QTcpSocket::readyRead, [this] { Read(); });
        QObject::connect(m_client, &QTcpSocket::disconnected, [this] { m_clientClosed = true; });
        if (!m_omit.identityQuery) {
            Send(kIdentityQuery);
        }
    }

    void Read() {
        m_buffer += m_client->readAll().toStdString();
        for (size_t end = m_buffer.find('\xFF'); end != std::string::npos;
             end = m_buffer.find('\xFF')) {
            const std::string frame = m_buffer.substr(0, end + 1);
            m_buffer.erase(0, end + 1);
            m_frames.push_back({frame, m_clock.elapsed()});
            Handle(frame);
        }
    }

    void Handle(const std::string& frame) {
        const auto command = static_cast<unsigned char>(frame[0]);
        if (command == 0xF2 && frame.size() == 17) {
            ServeEverything();
        } else if (command == 0x80 && frame.size() >= 5) {
            const auto length = static_cast<size_t>(frame[2]);
            m_password = frame.substr(3, length);
        }
    }

    void ServeEverything() {
        std::string out = codec::PasswordMessage(m_password);
        for (SubType subType : kAllSubTypes) {
            if (!(subType == SubType::Input && m_omit.inputAlphas)) {
                out += codec::AlphaTableMessage(subType, kServerAlphas[size_t(subType)]);
            }
        }
        for (SubType subType : kAllSubTypes) {
            out += codec::DisplayListMessage(m_configuration, subType);
        }
        if (!m_omit.userGroups) {
            out += codec::GroupMessage(m_configuration);
        }
        out += codec::ButtonMessage(m_configuration);
        Send(out);
    }

    void Send(const std::string& bytes) {
        m_client->write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

    QTcpServer m_server;
    QTcpSocket* m_client = nullptr;
    QElapsedTimer m_clock;
    std::string m_buffer;
    std::vector<Frame> m_frames;
    std::string m_password;
    Omissions m_omit;
    PanelStore m_configuration = ServerConfiguration();
    bool m_clientClosed = false;
};

struct CliResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class ServerFlowsTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_folder = fs::temp_directory_path() /
                   ("lumeth-cli-flows-" + std::to_string(QCoreApplication::applicationPid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    // Run lumeth-cli while this process's event loop serves the scripted server.
    CliResult Run(const QStringList& args, const QProcessEnvironment& env) {
        QProcess process;
        process.setProcessEnvironment(env);
        process.setWorkingDirectory(QString::fromStdString(m_folder.string()));
        process.start(QStringLiteral(LUMETH_CLI_PATH), args);
        EXPECT_TRUE(process.waitForStarted(5000));
        const bool finished =
            QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 30000);
        EXPECT_TRUE(finished);
        if (!finished) {
            process.kill();
            process.waitForFinished(2000);
        }
        CliResult result;
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = process.readAllStandardOutput().toStdString();
        result.err = process.readAllStandardError().toStdString();
        return result;
    }

    static QProcessEnvironment Environment(const QString& password) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("LUMETH_PASSWORD", password);
        env.remove("LUMETH_NEW_PASSWORD");
        return env;
    }

    QString Path(const std::string& name) const {
        return QString::fromStdString((m_folder / name).string());
    }

    static QString Server(int port) { return QStringLiteral("127.0.0.1:%1").arg(port); }

    fs::path m_folder;
};

std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST_F(ServerFlowsTest, FetchLogsInDownloadsAndWritesTheJsonDocument) {
    ScriptedServer server("studio");
    const CliResult result =
        Run({"fetch", "--server", Server(server.port()), "-o", Path("out.json")},
            Environment("studio"));
    ASSERT_EQ(result.exitCode, 0) << result.err;

    // On the wire: the identity answer, then the request for everything.
    ASSERT_GE(server.frames().size(), 2u);
    EXPECT_EQ(server.frames()[0].bytes, kIdentityAnswer);
    EXPECT_EQ(server.frames()[1].bytes, kRequestEverything);
    EXPECT_EQ(server.frames().size(), 2u);

    PanelStore fetched;
    const JsonReadResult read = ReadJsonDocument(ReadFile(m_folder / "out.json"), fetched);
    ASSERT_TRUE(read.status.ok()) << read.status.failure().detail;
    EXPECT_TRUE(read.hasAlphas);
    EXPECT_FALSE(read.password.has_value()); // the password is never written out
    // The server sends each table's names at the width of its longest name,
    // and the names are kept as they came, padding included.
    for (SubType subType : kAllSubTypes) {
        const std::vector<std::string>& sent = kServerAlphas[size_t(subType)];
        size_t width = 0;
        for (const std::string& name : sent) {
            width = std::max(width, name.size());
        }
        std::vector<std::string> expected;
        for (const std::string& name : sent) {
            expected.push_back(Padded(name, width));
        }
        EXPECT_EQ(fetched.alpha(subType).channelNames, expected) << SubTypeName(subType);
    }
    ASSERT_EQ(fetched.listCount(SubType::Input), 1);
    EXPECT_EQ(fetched.lists(SubType::Input)[0].name.substr(0, 6), "Studio");
    ASSERT_EQ(fetched.lists(SubType::Input)[0].channelCount, 2);
    EXPECT_EQ(fetched.lists(SubType::Input)[0].channels[1], 2);
    EXPECT_EQ(fetched.listCount(SubType::Output), 1);
    ASSERT_EQ(fetched.userGroupCount, 1);
    EXPECT_EQ(fetched.userGroupNames[0].substr(0, 4), "News");
    ASSERT_EQ(fetched.templateCount, 1);
    EXPECT_EQ(fetched.buttonTemplates[0].buttons[0].type, 40);

    EXPECT_NE(result.out.find("out.json"), std::string::npos);
    EXPECT_EQ(result.out.find("studio"), std::string::npos);
    EXPECT_EQ(result.err.find("studio"), std::string::npos);
}

TEST_F(ServerFlowsTest, FetchWritesAPanelDataFileAndReadsThePasswordFromAFile) {
    ScriptedServer server("s3cret");
    std::ofstream(m_folder / "password.txt") << "s3cret\n";
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("LUMETH_PASSWORD");
    const CliResult result = Run({"fetch", "--server", Server(server.port()), "--password-file",
                                  Path("password.txt"), "-o", Path("out.dat")},
                                 env);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string bytes = ReadFile(m_folder / "out.dat");
    ASSERT_GE(bytes.size(), 2u);
    // A panel data file starts with its marker 140 as a little-endian 16-bit value.
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 140);
    EXPECT_EQ(bytes[1], 0);
}

TEST_F(ServerFlowsTest, WrongPasswordExits4AndWritesNothing) {
    ScriptedServer server("studio");
    const CliResult result =
        Run({"fetch", "--server", Server(server.port()), "-o", Path("out.json")},
            Environment("Studio"));
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_FALSE(fs::exists(m_folder / "out.json"));
    EXPECT_EQ(result.err.find("Studio"), std::string::npos);
}

TEST_F(ServerFlowsTest, UnreachableServerExits3) {
    quint16 port = 0;
    {
        QTcpServer probe;
        ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
        port = probe.serverPort();
    }
    const CliResult result =
        Run({"fetch", "--server", Server(port), "-o", Path("out.json")}, Environment("x"));
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_FALSE(fs::exists(m_folder / "out.json"));
    // The failed connect is in the error log of the current folder.
    EXPECT_NE(ReadFile(m_folder / "Errorlog.txt").find("Error Connecting to Switcher"),
              std::string::npos);
}

TEST_F(ServerFlowsTest, MissingPartsTimeOutWithExit5NamingThem) {
    ScriptedServer server("studio", Omissions{false, true, true});
    const CliResult result =
        Run({"fetch", "--server", Server(server.port()), "--timeout", "1", "-o", Path("out.json")},
            Environment("studio"));
    EXPECT_EQ(result.exitCode, 5) << result.err;
    EXPECT_NE(result.err.find("timed out waiting for: Input Alphas, User Groups\n"),
              std::string::npos)
        << result.err;
    EXPECT_FALSE(fs::exists(m_folder / "out.json"));
}

TEST_F(ServerFlowsTest, NoIdentityQueryTimesOutNamingIt) {
    ScriptedServer server("studio", Omissions{true, false, false});
    const CliResult result = Run(
        {"fetch", "--server", Server(server.port()), "--timeout", "0.5", "-o", Path("out.json")},
        Environment("studio"));
    EXPECT_EQ(result.exitCode, 5) << result.err;
    EXPECT_NE(result.err.find("timed out waiting for: identity query"), std::string::npos)
        << result.err;
}

TEST_F(ServerFlowsTest, ApplySendsTheFileAsSixMessagesHalfASecondApart) {
    std::ofstream(m_folder / "late.json") << R"({
  "format": "lumeth-panel-data",
  "version": 1,
  "display_lists": {
    "input": [{"name": "Mix", "channels": [1, 2]}],
    "output": [], "opto": [], "relay": []
  },
  "user_groups": [{"name": "Late Show", "lists": [{"type": 11, "index": 0}]}],
  "templates": [{"name": "Host", "number": 3, "buttons": [
    {"type": 40, "caption_option": 1, "label": "MIC", "channel": 1, "channel2": 16383}]}]
})";
    ScriptedServer server("studio");
    const CliResult result =
        Run({"apply", Path("late.json"), "--server", Server(server.port())}, Environment("studio"));
    ASSERT_EQ(result.exitCode, 0) << result.err;

    const std::vector<Frame>& frames = server.frames();
    ASSERT_EQ(frames.size(), 8u);
    EXPECT_EQ(frames[0].bytes, kIdentityAnswer);
    EXPECT_EQ(frames[1].bytes, kRequestEverything);

    // Display lists: code, count, 0, 0, name width 16, then the records.
    const std::string input =
        Framed(Bytes({0xDF, 11, 1, 0, 0, 0, 16, 2, 0, 1, 0, 2, 0}) + Padded("Mix", 16));
    const std::string output = Framed(Bytes({0xDF, 21, 0, 0, 0, 0, 16}));
    const std::string opto = Framed(Bytes({0xDF, 31, 0, 0, 0, 0, 16}));
    const std::string relay = Framed(Bytes({0xDF, 41, 0, 0, 0, 0, 16}));
    // Groups: 0, count, 0, 0, 16, then name, list count, (position, type) pairs.
    const std::string groups = Framed(Bytes({0xCC, 0, 1, 0, 0, 0, 16}) + Padded("Late Show", 16) +
                                      Bytes({1, 0, 0, 0, 11, 0}));
    // Buttons: 7F 52, X, M, F, L = 8, W = 16, the template, then its buttons.
    const std::string buttons =
        Framed(Bytes({0xFD, 0x7F, 0x52, 1, 0, 1, 0, 0, 0, 8, 16}) + Padded("Host", 16) +
               Bytes({3, 0, 1, 0, 40, 0, 1, 0, 1, 0, 0x7F, 0x7F}) + Padded("MIC", 8));
    const std::vector<std::string> expected{input, output, opto, relay, groups, buttons};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(frames[2 + i].bytes, expected[i]) << "upload message " << i;
    }
    for (size_t i = 3; i < frames.size(); ++i) {
        EXPECT_GE(frames[i].atMs - frames[i - 1].atMs, 450) << "before upload message " << i - 2;
    }
    // The link is closed once the upload is out.
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.clientClosed(); }, 3000));
    EXPECT_NE(result.out.find("applied"), std::string::npos);
}

TEST_F(ServerFlowsTest, ApplyOfABadFileExits2WithoutConnecting) {
    std::ofstream(m_folder / "bad.json") << R"({"format": "lumeth-panel-data", "version": 1,
        "display_lists": {"input": [{"name": "A name of twenty chr", "channels": []}]}})";
    ScriptedServer server("studio");
    const CliResult result =
        Run({"apply", Path("bad.json"), "--server", Server(server.port())}, Environment("studio"));
    EXPECT_EQ(result.exitCode, 2) << result.err;
    EXPECT_TRUE(server.frames().empty());
}

// A panel data file can hold values no upload field can carry (a negative
// channel); apply refuses it up front instead of leaving a message out.
TEST_F(ServerFlowsTest, ApplyOfAFileTheUploadCannotCarryExits2WithoutConnecting) {
    PanelStore store;
    store.ResetToDefaults();
    store.lists(SubType::Output)[0].channelCount = 1;
    store.lists(SubType::Output)[0].channels = {-4};
    std::ofstream(m_folder / "negative.dat", std::ios::binary) << EncodePanelData(store);
    ScriptedServer server("studio");
    const CliResult result = Run({"apply", Path("negative.dat"), "--server", Server(server.port())},
                                 Environment("studio"));
    EXPECT_EQ(result.exitCode, 2) << result.err;
    EXPECT_NE(result.err.find("negative.dat"), std::string::npos) << result.err;
    EXPECT_TRUE(server.frames().empty());
}

TEST_F(ServerFlowsTest, SetPasswordSendsTheNewPasswordThenTheRequest) {
    ScriptedServer server("studio");
    QProcessEnvironment env = Environment("studio");
    env.insert("LUMETH_NEW_PASSWORD", "on air");
    const CliResult result = Run({"set-password", "--server", Server(server.port())}, env);
    ASSERT_EQ(result.exitCode, 0) << result.err;

    ASSERT_EQ(server.frames().size(), 4u);
    EXPECT_EQ(server.frames()[2].bytes, Framed(Bytes({0x80, 0x05, 6}) + "on air"));
    EXPECT_EQ(server.frames()[3].bytes, kRequestEverything);
    EXPECT_EQ(server.password(), "on air");
    for (const std::string& text : {result.out, result.err}) {
        EXPECT_EQ(text.find("on air"), std::string::npos);
        EXPECT_EQ(text.find("studio"), std::string::npos);
    }
}

TEST_F(ServerFlowsTest, PasswordIsNotACommandLineArgument) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("LUMETH_PASSWORD");
    // No terminal, no variable, no file: a usage error before any connection.
    const CliResult missing = Run({"fetch", "-o", Path("out.json")}, env);
    EXPECT_EQ(missing.exitCode, 1);
    const CliResult asArgument =
        Run({"fetch", "--password", "studio", "-o", Path("out.json")}, Environment("x"));
    EXPECT_EQ(asArgument.exitCode, 1);
}

} // namespace
} // namespace lumeth

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
