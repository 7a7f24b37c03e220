#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/error_log.h"
#include "link/codec.h"
#include "link/connection.h"
#include "link/link_state.h"
#include "link/reask_policy.h"
#include "model/failure.h"
#include "model/panel_store.h"
#include "model/server_mirror.h"

namespace lumeth::cli {

inline constexpr int kDefaultServerPort = 1250;
inline constexpr double kDefaultTimeoutSeconds = 10.0;

// Options shared by the commands that talk to the server module.
struct ServerOptions {
    std::string host = "127.0.0.1";
    int port = kDefaultServerPort;
    double timeoutSeconds = kDefaultTimeoutSeconds;
    std::string home = "."; // the folder that receives Errorlog.txt
    std::optional<std::string> passwordFile;
    bool verbose = false; // --verbose: every step on a line of its own
};

// A --server value, HOST or HOST:PORT; the port defaults to 1250 and must
// be 1..65535. `status` says why when the text is not usable.
struct ServerAddress {
    std::string host;
    int port = kDefaultServerPort;
    Status status;
};
ServerAddress ParseServer(std::string_view text);

// The shared options (--server, --timeout, --home, --password-file,
// --verbose) taken out of a command's arguments, over `defaults`; `rest`
// holds everything else in its order. `status` fails on a missing or bad
// value.
struct ServerArguments {
    ServerOptions options;
    std::vector<std::string> rest;
    Status status;
};
ServerArguments ParseServerArguments(const std::vector<std::string>& args,
                                     ServerOptions defaults = {});

// One headless session with the server module, built from the same
// connection and session as the window: connect, log in, wait for the
// download. Every step returns 0 or the command's exit code and has already
// told the user (stderr) what went wrong. Needs a QCoreApplication.
class ServerClient {
public:
    explicit ServerClient(const ServerOptions& options);
    ~ServerClient();

    // Connect, wait for the password answer and compare it with `password`
    // (bytes, already through the Windows-1252 table).
    int LogIn(const std::string& password);
    // Wait until all eleven parts have arrived since the last request for
    // everything.
    int AwaitDownload();
    // Both of the above; the link is closed again when the download fails.
    int LogInAndDownload(const std::string& password);
    // The same with the password --password-file, LUMETH_PASSWORD or the
    // terminal gives; without one, a line saying how to give one and the
    // usage exit code.
    int LogInAndDownload();
    // Send the new password, then ask for everything again and wait until the
    // server module answers with the new password.
    int ChangePassword(const std::string& newPassword);
    // The upload messages of the store's `parts` (all six by default) in
    // Apply's order, 500 ms apart; `sent` receives them. A lost link names
    // the parts that went out before it.
    int Apply(const std::string& fileName, std::vector<codec::Upload>& sent,
              PartSet parts = kUploadParts);
    // Ask for everything once more and compare the upload parts of `parts`
    // with `file`, the configuration FILE holds: 0 when the server module
    // holds it (names and labels as cut to their width by the upload).
    int VerifyApplied(const std::string& fileName, const PanelStore& file,
                      PartSet parts = kUploadParts);
    // Close the link after what was written has gone out.
    void Close();

    PanelStore& store() { return m_store; }
    LinkState& state() { return m_state; }

private:
    enum class WaitResult { Done, LinkLost, TimedOut };
    // Run the event loop until `done` holds, the link drops, or the deadline.
    WaitResult WaitFor(const std::function<bool()>& done);
    // Wait until the parts of `need` have arrived, then put every part
    // received since the last request for everything back into the store as
    // it arrived. Whenever parts are missing and the link has been quiet for
    // a while, ask again for exactly the missing ones, a bounded number of
    // times.
    WaitResult WaitForParts(PartSet need);
    // Forget what has arrived and ask for everything.
    void RequestEverything();
    // Print what is still missing when that changes.
    void ReportProgress();
    // One line on stderr for a lost link: "cannot reach" only when the
    // connection was never made.
    int LinkLost(const std::string& during);
    // The one line for a link dropped after an overlong message, when that
    // is why the link went; true when it was.
    bool ReportedTooLong() const;
    std::string Address() const;

    // The connection's sockets and timers need an application object; the
    // command makes it here unless one exists already.
    int m_argc = 1;
    char m_argv0[11] = "lumeth-cli";
    char* m_argv[2] = {m_argv0, nullptr};
    std::unique_ptr<QCoreApplication> m_application;

    ServerOptions m_options;
    PanelStore m_store;
    LinkState m_state;
    std::unique_ptr<ErrorLog> m_log;
    std::unique_ptr<Connection> m_connection;
    QDeadlineTimer m_deadline;
    // The parts received intact since the command last asked for everything,
    // each as it arrived. The session's pending masks cannot serve: a
    // re-request replaces them and forgets the other parts.
    ServerMirror m_mirror;
    // When to ask again for missing parts, timed on m_clock.
    ReaskPolicy m_reask;
    QElapsedTimer m_clock;
    bool m_linkLost = false;
    bool m_wasConnected = false;
    bool m_messageTooLong = false;
    std::string m_linkError;
    std::string m_lastProgress;
};

} // namespace lumeth::cli
