// lumeth-cli fetch, apply and set-password against a scripted server module
// on 127.0.0.1: the bytes the CLI sends, the spacing of the upload, and the
// exit codes for a wrong password, an unreachable server and missing data.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "link/codec.h"
#include "link/wire.h"
#include "model/panel_store.h"
#include "tests/cli/cli_run.h"
#include "tests/link/messages.h"

namespace lumeth {
namespace {

using namespace lumeth::testing;

const std::string kIdentityAnswer = Raw({0x81, 0x11, 0x01, 0x12, 0xFF});
const std::string kRequestEverything = Request(0x03000302, 0, 0xFC);

// The configuration the scripted server module holds.
PanelStore ServerConfiguration() {
    PanelStore store;
    store.listCount(SubType::Input) = 1;
    store.lists(SubType::Input)[0] = DisplayList{2, "Studio", {0, 2}};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output)[0] = DisplayList{1, "Programme", {1}};
    store.groups.userGroupCount = 1;
    store.groups.userGroupNames[0] = "News";
    store.groups.userGroups[0] = UserGroup{1, {0}, {11}};
    store.templates.templateCount = 1;
    store.templates.templateNames[0] = "Desk";
    PanelButton button = PanelButton::Cleared();
    button.type = 40;
    button.channel = 2;
    store.templates.buttonTemplates[0] = ButtonTemplate{1, 1, {button}};
    return store;
}

const std::vector<std::vector<std::string>> kServerAlphas = {
    {"Mic 1", "Mic 2", "CD 1"}, {"PGM", "AUX"}, {"Door"}, {"On Air"}};

// The eleven answers in the order of the request for everything, with their
// request bits.
enum Part { kPassword, kInputAlphas, kInputLists = 5, kRelayLists = 8, kGroups, kTemplates };
constexpr std::pair<uint32_t, uint32_t> kPartBits[] = {
    {0x00000002, 0}, {0x00000100, 0}, {0x00000200, 0}, {0x01000000, 0}, {0x02000000, 0}, {0, 0x10},
    {0, 0x20},       {0, 0x40},       {0, 0x80},       {0, 0x04},       {0, 0x08},
};

// What the server module does to one part's answers.
enum class Spoil {
    None,
    BadChecksum, // the first answer has a wrong checksum
    Cut,         // the first answer loses its last bytes (the end marker among them)
    Never,       // never answered
    Late,        // the first answer is held back until 300 ms after the next request
    // the first answer is followed by the user groups of another
    // configuration with a byte too many: the checksum passes, the length
    // check fails after the groups were written into the store
    DamagedRepeat,
    // the first answer never ends: its bytes before the checksum, then zero
    // bytes for as long as the client stays connected
    Endless,
};

struct Script {
    bool identityQuery = true;
    std::map<int, Spoil> spoil{};
    std::set<int> ignoredUploads{}; // parts whose uploads are not stored
    bool silentAfterUploads = false;
    int closeAfterUploads = 0; // 0: never
};

struct Frame {
    std::string bytes;
    qint64 atMs;
};

// A server module that sends the identity query on connect, answers every
// data request with the parts its bits ask for (spoiled as scripted), stores
// uploads as its answers, takes a new password from an 0x80 message, and
// records every frame it receives with its arrival time.
class ScriptedServer {
public:
    explicit ScriptedServer(std::string password, Script script = {})
        : m_password(std::move(password)), m_script(std::move(script)) {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost, 0));
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] { Accept(); });
        const PanelStore configuration = ServerConfiguration();
        for (SubType subType : kAllSubTypes) {
            m_answers[kInputAlphas + size_t(subType)] =
                codec::AlphaTableMessage(subType, kServerAlphas[size_t(subType)]);
            m_answers[kInputLists + size_t(subType)] =
                codec::DisplayListMessage(configuration, subType);
        }
        m_answers[kGroups] = codec::GroupMessage(configuration);
        m_answers[kTemplates] = codec::ButtonMessage(configuration);
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
        if (m_script.identityQuery) {
            Send(codec::IdentityQuery());
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
            if (!(m_script.silentAfterUploads && m_uploads > 0)) {
                Serve(Mask(frame, 1, 4), Mask(frame, 9, 2));
            }
        } else if (command == 0x80 && frame.size() >= 5) {
            const auto length = static_cast<size_t>(frame[2]);
            m_password = frame.substr(3, length);
        } else if (command == 0xDF || command == 0xCC || command == 0xFD) {
            const int part = command == 0xCC   ? kGroups
                             : command == 0xFD ? kTemplates
                                               : kInputLists + frame[1] / 10 - 1;
            if (!m_script.ignoredUploads.contains(part)) {
                m_answers[size_t(part)] = frame;
            }
            if (++m_uploads == m_script.closeAfterUploads) {
                m_client->disconnectFromHost();
            }
        }
    }

    static uint32_t Mask(const std::string& frame, size_t at, size_t groups) {
        uint32_t mask = 0;
        for (size_t k = 0; k < groups; ++k) {
            mask |= uint32_t(static_cast<unsigned char>(frame[at + k])) << (7 * k);
        }
        return mask;
    }

    void Serve(uint32_t maskA, uint32_t maskC) {
        m_answers[kPassword] = codec::PasswordMessage(m_password);
        std::string out;
        std::string late = std::exchange(m_late, {});
        for (int part = 0; part < 11; ++part) {
            if ((kPartBits[part].first & maskA) == 0 && (kPartBits[part].second & maskC) == 0) {
                continue;
            }
            std::string answer = m_answers[size_t(part)];
            const auto found = m_script.spoil.find(part);
            const Spoil spoil = found == m_script.spoil.end() || !m_spoiled.insert(part).second
                                    ? Spoil::None
                                    : found->second;
            if (spoil == Spoil::Never) {
                m_spoiled.erase(part); // every time
                continue;
            }
            if (spoil == Spoil::Late) {
                m_late += answer;
                continue;
            }
            if (spoil == Spoil::DamagedRepeat) {
                PanelStore other = ServerConfiguration();
                for (std::string& name : other.groups.userGroupNames) {
                    name = "Wrong";
                }
                std::string damaged = codec::GroupMessage(other);
                damaged.resize(damaged.size() - 2);
                damaged += '\x01';
                wire::Finish(damaged);
                answer += damaged;
            } else if (spoil == Spoil::BadChecksum) {
                answer[answer.size() - 2] ^= 1;
            } else if (spoil == Spoil::Cut) {
                answer.resize(answer.size() - 3);
            } else if (spoil == Spoil::Endless) {
                answer.resize(answer.size() - 2);
                StartStreaming();
            }
            out += answer;
        }
        Send(out);
        if (!late.empty()) {
            QTimer::singleShot(300, m_client, [this, late] { Send(late); });
        }
    }

    void Send(const std::string& bytes) {
        m_client->write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

    // Keep about a megabyte queued for the client until it goes.
    void StartStreaming() {
        QObject::connect(&m_stream, &QTimer::timeout, [this] {
            if (m_clientClosed) {
                m_stream.stop();
            } else if (m_client->bytesToWrite() < (1 << 20)) {
                Send(std::string(1 << 18, '\0'));
            }
        });
        m_stream.start(1);
    }

    QTcpServer m_server;
    QTcpSocket* m_client = nullptr;
    QTimer m_stream;
    QElapsedTimer m_clock;
    std::string m_buffer;
    std::vector<Frame> m_frames;
    std::string m_password;
    Script m_script;
    std::array<std::string, 11> m_answers;
    std::set<int> m_spoiled; // parts whose first answer has gone out
    std::string m_late;
    int m_uploads = 0;
    bool m_clientClosed = false;
};

using ServerFlowsTest = CliTest;

QString Server(int port) {
    return QStringLiteral("127.0.0.1:%1").arg(port);
}

TEST_F(ServerFlowsTest, FetchLogsInDownloadsAndWritesTheJsonDocument) {
    ScriptedServer server("studio");
    const CliResult result =
        Run({"fetch", "--server", Server(server.port()), "-o", Path("out.json")},
            Environment("studio"));
    ASSERT_EQ(result.exitCode, 0) << result.err;

    // On the wire: the identity answer, then the request for everything.
    ASSERT_EQ(server.frames().size(), 2u);
    EXPECT_EQ(server.frames()[0].bytes, kIdentityAnswer);
    EXPECT_EQ(server.frames()[1].bytes, kRequestEverything);

    PanelStore fetched;
    const JsonReadResult read = ReadJsonDocument(m_dir.Read("out.json"), fetched);
    ASSERT_TRUE(read.status.ok()) << read.status.failure().detail;
    EXPECT_TRUE(read.hasAlphas);
    EXPECT_FALSE(read.password.has_value()); // the password is never written out
    // Names come at the width of the table's longest and are kept as they came.
    EXPECT_EQ(fetched.alpha(SubType::Input).channelNames,
              (std::vector<std::string>{"Mic 1", "Mic 2", "CD 1 "}));
    EXPECT_EQ(fetched.alpha(SubType::Relay).channelNames, std::vector<std::string>{"On Air"});
    // The lists, groups and templates: FetchSucceedsOnlyWithAllElevenParts.

    EXPECT_NE(result.out.find("out.json"), std::string::npos);
    EXPECT_EQ(result.out.find("studio"), std::string::npos);
    EXPECT_EQ(result.err.find("studio"), std::string::npos);
}

TEST_F(ServerFlowsTest, FetchWritesAPanelDataFileAndReadsThePasswordFromAFile) {
    ScriptedServer server("s3cret");
    m_dir.Write("password.txt", "s3cret\n");
    const CliResult result = Run({"fetch", "--server", Server(server.port()), "--password-file",
                                  Path("password.txt"), "-o", Path("out.dat")});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string bytes = m_dir.Read("out.dat");
    ASSERT_GE(bytes.size(), 2u);
    // A panel data file starts with its marker 140 as a little-endian 16-bit value.
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 140);
    EXPECT_EQ(bytes[1], 0);
}

// A failed fetch writes nothing, never echoes the password and exits by its
// cause: a wrong password, a server module that cannot be reached (logged in
// the per-user data folder), or one streaming a message without end, dropped
// once it passes the largest the protocol carries, long before the timeout.
TEST_F(ServerFlowsTest, FailedFetchExitsByItsCauseAndWritesNothing) {
    quint16 closedPort = 0;
    {
        QTcpServer probe;
        ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
        closedPort = probe.serverPort();
    }
    const struct {
        const char* name;
        std::optional<Script> script; // none: nothing listens
        QString password;
        int exitCode;
        std::string err;
        std::string log;
    } cases[] = {
        {"wrong password", Script{}, "Studio", 4, "", ""},
        {"unreachable", std::nullopt, "studio", 3, "", "Error Connecting to Switcher"},
        {"endless message", Script{.spoil = {{kTemplates, Spoil::Endless}}}, "studio", 3,
         "lumeth-cli: the server module sent a message larger than any the protocol carries\n",
         "Message Too Long"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::optional<ScriptedServer> server;
        if (c.script) {
            server.emplace("studio", *c.script);
        }
        const int port = server ? server->port() : closedPort;
        const CliResult result =
            Run({"fetch", "--server", Server(port), "--timeout", "60", "-o", Path("out.json")},
                Environment(c.password));
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
        EXPECT_EQ(result.err.find(c.password.toStdString()), std::string::npos);
        EXPECT_EQ(result.err.find("lost the link"), std::string::npos) << result.err;
        EXPECT_FALSE(m_dir.Exists("out.json"));
        EXPECT_NE(m_data.Read("KOV/Lumeth Admin/Errorlog.txt").find(c.log), std::string::npos);
        EXPECT_TRUE(!server || QTest::qWaitFor([&] { return server->clientClosed(); }, 3000));
    }
}

// fetch keeps its own record of the eleven parts: a re-request by the
// session replaces its pending masks, and answers lost to a bad checksum or a
// cut frame are asked for again by fetch itself after a quiet second, for
// exactly the parts still missing.
TEST_F(ServerFlowsTest, FetchSucceedsOnlyWithAllElevenParts) {
    struct Case {
        const char* name;
        Script script;
        int exitCode;
        std::vector<std::string> requestsAfterTheFirst;
        std::string message;
        QString timeout = "10";
    };
    const std::string missing = "timed out waiting for: Input channel names, user groups\n";
    const Case cases[] = {
        {"re-requested list answered before the groups and templates still to come",
         {.spoil = {{kInputLists, Spoil::BadChecksum},
                    {kGroups, Spoil::Late},
                    {kTemplates, Spoil::Late}}},
         0,
         {Request(0, 0, 0x10)},
         "download complete"},
        {"corrupted password, cut alpha table and corrupted templates",
         {.spoil = {{kPassword, Spoil::BadChecksum},
                    {kInputAlphas, Spoil::Cut},
                    {kTemplates, Spoil::BadChecksum}}},
         0,
         {Request(2, 0, 0), Request(0x100, 0, 0x08)},
         "download complete"},
        {"a damaged repeat of the groups after they arrived",
         {.spoil = {{kGroups, Spoil::DamagedRepeat}}},
         0,
         {},
         "download complete"},
        {"parts never sent",
         {.spoil = {{kInputAlphas, Spoil::Never}, {kGroups, Spoil::Never}}},
         5,
         std::vector<std::string>(4, Request(0x100, 0, 0x04)),
         missing},
        {"no identity query",
         {.identityQuery = false},
         5,
         {},
         "waiting for: identity query",
         "0.5"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove(m_dir.file("out.json"));
        ScriptedServer server("studio", c.script);
        const CliResult result = Run({"fetch", "--server", Server(server.port()), "--timeout",
                                      c.timeout, "-o", Path("out.json"), "--verbose"},
                                     Environment("studio"));
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
        std::vector<std::string> requests;
        for (size_t i = 2; i < server.frames().size(); ++i) {
            requests.push_back(server.frames()[i].bytes);
        }
        EXPECT_EQ(requests, c.requestsAfterTheFirst);
        if (c.exitCode != 0) {
            EXPECT_FALSE(m_dir.Exists("out.json"));
            continue;
        }
        PanelStore fetched;
        ASSERT_TRUE(ReadJsonDocument(m_dir.Read("out.json"), fetched).status.ok());
        const PanelStore held = ServerConfiguration();
        for (SubType subType : kAllSubTypes) {
            EXPECT_EQ(fetched.alpha(subType).count, int(kServerAlphas[size_t(subType)].size()));
            EXPECT_EQ(codec::DisplayListMessage(fetched, subType),
                      codec::DisplayListMessage(held, subType));
        }
        EXPECT_EQ(codec::GroupMessage(fetched), codec::GroupMessage(held));
        EXPECT_EQ(codec::ButtonMessage(fetched), codec::ButtonMessage(held));
    }
}

const char* const kLateShow = R"({
  "format": "lumeth-panel-data",
  "version": 1,
  "display_lists": {
    "input": [{"name": "Mix", "channels": [1, 2]}],
    "output": [], "opto": [], "relay": [{"name": "Cue", "channels": [0]}]
  },
  "user_groups": [{"name": "Late Show", "lists": [{"type": 11, "index": 0}]}],
  "templates": [{"name": "Host", "number": 3, "buttons": [
    {"type": 40, "caption_option": 1, "label": "MIC", "channel": 1, "channel2": 16383}]}]
})";

TEST_F(ServerFlowsTest, ApplySendsTheFileAsSixMessagesHalfASecondApartAndReadsItBack) {
    m_dir.Write("late.json", kLateShow);
    ScriptedServer server("studio");
    const CliResult result =
        Run({"apply", Path("late.json"), "--server", Server(server.port())}, Environment("studio"));
    ASSERT_EQ(result.exitCode, 0) << result.err;

    const std::vector<Frame>& frames = server.frames();
    ASSERT_EQ(frames.size(), 9u); // after the log-in that fetch starts with

    const std::string input = ListBody(11, 16, {{"Mix", {1, 2}}}).Finish();
    const std::string output = ListBody(21, 16, {}).Finish();
    const std::string opto = ListBody(31, 16, {}).Finish();
    const std::string relay = ListBody(41, 16, {{"Cue", {0}}}).Finish();
    const std::string groups = GroupBody(16, {{"Late Show", {{0, 11}}}}).Finish();
    const std::string buttons =
        ButtonBody(1, 0, 8, 16, {{"Host", 3, {{40, 1, 1, 16383, "MIC"}}}}).Finish();
    const std::vector<std::string> expected{input, output, opto, relay, groups, buttons};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(frames[2 + i].bytes, expected[i]) << "upload message " << i;
    }
    for (size_t i = 3; i < 8; ++i) {
        EXPECT_GE(frames[i].atMs - frames[i - 1].atMs, 450) << "before upload message " << i - 2;
    }
    // Then one request for everything reads the configuration back.
    EXPECT_EQ(frames[8].bytes, kRequestEverything);
    // The link is closed once that has arrived.
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.clientClosed(); }, 3000));
    EXPECT_NE(result.out.find("read back and identical"), std::string::npos) << result.out;
}

// apply exits 0 only when the server module holds what it sent. The
// read-back compares with FILE as the server module holds it: a panel data
// file's names and labels, cut and blank-padded to their width, are what FILE
// holds; a part the server module did not take is not.
TEST_F(ServerFlowsTest, ApplySaysWhatTheServerModuleHolds) {
    m_dir.Write("late.json", kLateShow);
    PanelStore cut = ServerConfiguration();
    cut.lists(SubType::Input)[0].name = "A name of twenty chr";
    cut.templates.buttonTemplates[0].buttons[0].label = "TEN CHARS!";
    m_dir.Write("long.dat", EncodePanelData(cut));
    const std::string late = Path("late.json").toStdString();
    struct Case {
        const char* name;
        std::string file;
        Script script;
        QStringList options;
        int exitCode;
        std::string message;
    };
    const Script ignoring{.ignoredUploads = {kRelayLists, kGroups, kTemplates}};
    const Case cases[] = {
        {"uploads not stored",
         "late.json",
         ignoring,
         {},
         6,
         "lumeth-cli: the server module now holds a configuration that differs from " + late +
             " in: Relay display lists, user groups, button templates\n"},
        {"not read back", "late.json", ignoring, {"--no-verify"}, 0, "(not read back)"},
        {"server stops answering",
         "late.json",
         {.silentAfterUploads = true},
         {"--timeout", "2"},
         5,
         "the server module's state is unknown"},
        {"link lost during the upload",
         "late.json",
         {.closeAfterUploads = 2},
         {},
         3,
         "sent before it was lost: Input display lists, Output display lists\n"},
        {"names cut to their width stored", "long.dat", {}, {}, 0, "read back and identical"},
        {"names cut to their width, templates not stored",
         "long.dat",
         {.ignoredUploads = {kTemplates}},
         {},
         6,
         "differs from " + Path("long.dat").toStdString() + " in: button templates\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedServer server("studio", c.script);
        const CliResult result =
            Run(QStringList{"apply", Path(c.file), "--server", Server(server.port())} + c.options,
                Environment("studio"));
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_NE((result.err + result.out).find(c.message), std::string::npos) << result.err;
    }
}

// --only sends the parts named in Apply's order (not the order given), with
// the half-second wait between them, and reads back only those: FILE's other
// parts differ from the server module's and do not count. A backup that
// cannot be written stops apply before anything is sent.
TEST_F(ServerFlowsTest, ApplyOnlySendsTheNamedPartsAndNothingWithoutItsBackup) {
    m_dir.Write("late.json", kLateShow);
    m_dir.Write("not-a-folder", "x");
    struct Case {
        QStringList options;
        int exitCode;
        std::vector<std::string> uploads;
    };
    const Case cases[] = {
        {{"--only", "relay,input"},
         0,
         {ListBody(11, 16, {{"Mix", {1, 2}}}).Finish(), ListBody(41, 16, {{"Cue", {0}}}).Finish()}},
        {{"--only", "templates", "--backup-dir", Path("not-a-folder")}, 7, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options.join(' ').toStdString());
        ScriptedServer server("studio");
        const CliResult result = Run(
            QStringList{"apply", Path("late.json"), "--server", Server(server.port())} + c.options,
            Environment("studio"));
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        std::vector<Frame> uploads;
        std::copy_if(server.frames().begin(), server.frames().end(), std::back_inserter(uploads),
                     [](const Frame& f) { return f.bytes[0] != '\x81' && f.bytes[0] != '\xF2'; });
        ASSERT_EQ(uploads.size(), c.uploads.size());
        for (size_t i = 0; i < uploads.size(); ++i) {
            EXPECT_EQ(uploads[i].bytes, c.uploads[i]) << "upload " << i;
            EXPECT_TRUE(i == 0 || uploads[i].atMs - uploads[i - 1].atMs >= 450) << i;
        }
    }
}

// A file that does not read or lacks a section (a version 2 panel data file
// has no Opto or Relay lists), values the messages cannot carry (a negative
// channel, counts past 14 bits) and a damaged file never reach the server
// module, --force or not.
TEST_F(ServerFlowsTest, ApplyRefusesBadDamagedAndUnsendableFilesWhateverForceSays) {
    m_dir.Write("partial.json", R"({"format": "lumeth-panel-data", "version": 1,
        "display_lists": {"input": [], "output": [], "opto": [], "relay": []}, "user_groups": []})");
    m_dir.Write("old.dat", std::string("\x8C\x00\xFF\x3F\x02\x00", 6) + std::string(10, '\0'));
    m_dir.Write("bad.json", R"({"format": "lumeth-panel-data", "version": 1,
        "display_lists": {"input": [{"name": "A name of twenty chr", "channels": []}]}})");
    PanelStore negative;
    negative.ResetToDefaults();
    negative.lists(SubType::Output)[0].channelCount = 1;
    negative.lists(SubType::Output)[0].channels = {-4};
    m_dir.Write("negative.dat", EncodePanelData(negative));
    PanelStore many = ServerConfiguration();
    many.listCount(SubType::Input) = 20000;
    many.lists(SubType::Input).assign(20000, DisplayList{1, "Mic", {0}});
    PanelStore wide = ServerConfiguration();
    wide.groups.userGroups[0] =
        UserGroup{20000, std::vector<int16_t>(20000, 0), std::vector<int16_t>(20000, 11)};
    m_dir.Write("many.json", WriteJsonDocument(many));
    m_dir.Write("wide.json", WriteJsonDocument(wide));
    // The template count is the last two bytes of a file without templates.
    PanelStore none = ServerConfiguration();
    none.templates.templateCount = 0;
    std::string flipped = EncodePanelData(ServerConfiguration());
    flipped[EncodePanelData(none).size() - 1] |= static_cast<char>(0x80);
    m_dir.Write("flipped.dat", flipped);
    m_dir.Write("trailing.dat", EncodePanelData(ServerConfiguration()) + "  ");
    const std::string damaged = ": not applied: the file is damaged or holds more than the "
                                "messages carry (--force does not send it)";
    const std::pair<const char*, std::string> cases[] = {
        {"bad.json", ": display_lists.input[0].name: longer than 16 characters"},
        {"partial.json",
         ": missing templates (every section is sent; write [] to send an empty one)\n"},
        {"old.dat", ": missing display_lists.opto, display_lists.relay (a version 2"},
        {"negative.dat", ": cannot be sent: display list 0 channel -4 does not fit 14 bits"},
        {"many.json", damaged},
        {"wide.json", damaged},
        {"flipped.dat", damaged},
        {"trailing.dat", damaged},
    };
    for (const auto& [file, message] : cases) {
        SCOPED_TRACE(file);
        ScriptedServer server("studio");
        const CliResult result =
            Run({"apply", Path(file), "--force", "--server", Server(server.port())},
                Environment("studio"));
        EXPECT_EQ(result.exitCode, 2) << result.err;
        EXPECT_NE(result.err.find("lumeth-cli: " + m_dir.file(file) + message), std::string::npos)
            << result.err;
        QTest::qWait(50);
        EXPECT_TRUE(server.frames().empty());
    }
}

TEST_F(ServerFlowsTest, SetPasswordSendsTheNewPasswordThenTheRequest) {
    ScriptedServer server("studio");
    QProcessEnvironment env = Environment("studio");
    env.insert("LUMETH_NEW_PASSWORD", "on air");
    const CliResult result = Run({"set-password", "--server", Server(server.port())}, env);
    ASSERT_EQ(result.exitCode, 0) << result.err;

    ASSERT_EQ(server.frames().size(), 4u);
    EXPECT_EQ(server.frames()[2].bytes, PasswordAnswer("on air"));
    EXPECT_EQ(server.frames()[3].bytes, kRequestEverything);
    EXPECT_EQ(server.password(), "on air");
    for (const std::string& text : {result.out, result.err}) {
        EXPECT_EQ(text.find("on air"), std::string::npos);
        EXPECT_EQ(text.find("studio"), std::string::npos);
    }
    // A character the link cannot carry, or one the window's password boxes
    // cannot take: one line, exit 2, nothing sent.
    for (const char* refused : {"caf\u00e9", "\u0142ad", "on\tair"}) {
        env.insert("LUMETH_NEW_PASSWORD", QString::fromUtf8(refused));
        const CliResult bad = Run({"set-password", "--server", Server(server.port())}, env);
        EXPECT_EQ(bad.exitCode, 2) << refused;
        EXPECT_EQ(std::count(bad.err.begin(), bad.err.end(), '\n'), 1) << bad.err;
        EXPECT_EQ(server.frames().size(), 4u);
    }
}

} // namespace
} // namespace lumeth

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
