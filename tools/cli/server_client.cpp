#include "tools/cli/server_client.h"

#include <QObject>

#include <charconv>
#include <cmath>
#include <iostream>

#include "link/codec.h"
#include "link/protocol.h"
#include "model/store_diff.h"
#include "tools/cli/cli_common.h"

namespace lumeth::cli {

namespace {

// Each pass of a wait lets the event loop run this long before the
// conditions are looked at again. Short, so that a finished download is
// noticed within a fraction of the 10 ms decode tick, not a slice later.
constexpr int kWaitSliceMs = 5;
// How long Close waits for the socket to finish sending and close.
constexpr int kCloseLimitMs = 3000;
// Parts missing after this long without a byte from the server module are
// asked for again, at most kMaxReasks times per request for everything. An
// answer lost to a bad checksum or a cut frame is never asked for again by
// the session itself (alpha tables, templates, cut frames).
constexpr qint64 kQuietMs = 1000;
constexpr int kMaxReasks = 4;

// The parts of `parts` by name, or "none".
std::string NamesOrNone(PartSet parts) {
    return parts.empty() ? std::string("none") : JoinPartNames(parts);
}

} // namespace

bool ParseServer(std::string_view text, std::string& host, int& port, std::string& error) {
    std::string_view hostPart = text;
    int portValue = kDefaultServerPort;
    const size_t colon = text.rfind(':');
    if (colon != std::string_view::npos) {
        hostPart = text.substr(0, colon);
        const std::string_view portText = text.substr(colon + 1);
        const char* end = portText.data() + portText.size();
        const auto [stop, code] = std::from_chars(portText.data(), end, portValue);
        if (portText.empty() || code != std::errc() || stop != end || portValue < 1 ||
            portValue > 65535) {
            error = "invalid port in --server " + std::string(text) + " (1 to 65535)";
            return false;
        }
    }
    if (hostPart.empty()) {
        error = "no host in --server " + std::string(text);
        return false;
    }
    host = std::string(hostPart);
    port = portValue;
    return true;
}

bool ParseServerArguments(const std::vector<std::string>& args, ServerOptions& options,
                          std::vector<std::string>& rest, std::string& error) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool shared =
            arg == "--server" || arg == "--timeout" || arg == "--home" || arg == "--password-file";
        if (!shared) {
            rest.push_back(arg);
            continue;
        }
        if (i + 1 >= args.size()) {
            error = arg + " needs a value";
            return false;
        }
        const std::string& value = args[++i];
        if (arg == "--server") {
            if (!ParseServer(value, options.host, options.port, error)) {
                return false;
            }
        } else if (arg == "--timeout") {
            double seconds = 0;
            const char* end = value.data() + value.size();
            const auto [stop, code] = std::from_chars(value.data(), end, seconds);
            if (value.empty() || code != std::errc() || stop != end || !(seconds > 0) ||
                seconds > 86400) {
                error = "--timeout needs a number of seconds greater than 0";
                return false;
            }
            options.timeoutSeconds = seconds;
        } else if (arg == "--home") {
            options.home = value;
        } else {
            options.passwordFile = value;
        }
    }
    return true;
}

ServerClient::ServerClient(const ServerOptions& options)
    : m_application(QCoreApplication::instance() != nullptr
                        ? nullptr
                        : std::make_unique<QCoreApplication>(m_argc, m_argv)),
      m_options(options),
      m_deadline(static_cast<qint64>(std::ceil(options.timeoutSeconds * 1000.0)),
                 Qt::PreciseTimer) {
    std::string folder = m_options.home.empty() ? std::string(".") : m_options.home;
    if (folder.back() != '/') {
        folder += '/';
    }
    m_log = std::make_unique<ErrorLog>(folder);
    m_state.serverAddress = m_options.host;
    m_state.serverPort = m_options.port;
    m_connection = std::make_unique<Connection>(m_store, m_state, *m_log);
    QObject::connect(m_connection.get(), &Connection::linkConnected, m_connection.get(), [this] {
        m_wasConnected = true;
        m_mirror.LinkUp();
    });
    QObject::connect(m_connection.get(), &Connection::linkDisconnected, m_connection.get(),
                     [this] { m_linkLost = true; });
    QObject::connect(m_connection.get(), &Connection::messageTooLong, m_connection.get(),
                     [this] { m_messageTooLong = true; });
    QObject::connect(
        m_connection.get(), &Connection::partReceived, m_connection.get(),
        [this](Part part) { m_mirror.Received(part, m_store, m_state.serverPassword); });
    QObject::connect(m_connection.get(), &Connection::linkError, m_connection.get(),
                     [this](const QString& reason) {
                         m_linkError = reason.toStdString();
                         if (!m_state.connected) {
                             m_linkLost = true; // the connect attempt failed
                         }
                     });
}

ServerClient::~ServerClient() = default;

std::string ServerClient::Address() const {
    return m_options.host + ":" + std::to_string(m_options.port);
}

ServerClient::WaitResult ServerClient::WaitFor(const std::function<bool()>& done) {
    for (;;) {
        if (done()) {
            return WaitResult::Done;
        }
        if (m_linkLost) {
            return WaitResult::LinkLost;
        }
        if (m_deadline.hasExpired()) {
            return WaitResult::TimedOut;
        }
        m_connection->Wait(kWaitSliceMs, true);
    }
}

void ServerClient::RequestEverything() {
    m_mirror.RequestedEverything();
    m_reasks = 0;
    m_quiet.start();
    m_connection->RequestEverything();
}

ServerClient::WaitResult ServerClient::WaitForParts(PartSet need) {
    m_quiet.start();
    return WaitFor([this, need] {
        ReportProgress();
        if ((m_mirror.missing() & need).empty()) {
            m_mirror.RestoreReceived(m_store, m_state.serverPassword);
            return true;
        }
        if (m_connection->BytesReceived() != m_bytesSeen) {
            m_bytesSeen = m_connection->BytesReceived();
            m_quiet.start();
        }
        // Nothing asked for yet (no identity query) leaves nothing to ask again.
        const bool asked = m_state.AnyPending() || !m_mirror.received().empty();
        if (asked && m_quiet.elapsed() >= kQuietMs) {
            if (m_reasks >= kMaxReasks) {
                m_deadline.setRemainingTime(0); // give up: reported as a timeout
                return false;
            }
            ++m_reasks;
            std::cerr << "asking again for: " << JoinPartNames(m_mirror.missing()) << "\n";
            const RequestMasks missing = MasksFor(m_mirror.missing());
            m_connection->session().RequestData(missing.a, missing.b, missing.c);
            m_connection->FlushSession();
            m_quiet.start();
        }
        return false;
    });
}

bool ServerClient::ReportedTooLong() const {
    if (m_messageTooLong) {
        std::cerr << "lumeth-cli: the server module sent a message larger than any the protocol "
                     "carries\n";
    }
    return m_messageTooLong;
}

int ServerClient::LinkLost(const std::string& during) {
    if (ReportedTooLong()) {
        return ToInt(ExitCode::Unreachable);
    }
    if (m_wasConnected) {
        std::cerr << "lumeth-cli: lost the link to the server module at " << Address() << during
                  << "\n";
    } else {
        std::cerr << "lumeth-cli: cannot reach the server module at " << Address() << ": "
                  << m_linkError << "\n";
    }
    return ToInt(ExitCode::Unreachable);
}

int ServerClient::LogIn(const std::string& password) {
    std::cerr << "connecting to " << Address() << "\n";
    m_reasks = 0;
    m_connection->Connect();
    switch (WaitFor([this] { return m_state.connected; })) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" right after connecting");
    case WaitResult::TimedOut:
        std::cerr << "lumeth-cli: cannot reach the server module at " << Address()
                  << ": no connection within " << m_options.timeoutSeconds << " s\n";
        return ToInt(ExitCode::Unreachable);
    }

    std::cerr << "connected, waiting for the password\n";
    switch (WaitForParts({Part::Password})) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" while waiting for the password");
    case WaitResult::TimedOut:
        // Nothing asked for yet means the identity query never came.
        std::cerr << "lumeth-cli: timed out waiting for: "
                  << (m_state.AnyPending() ? PartName(Part::Password) : "identity query") << "\n";
        return ToInt(ExitCode::Timeout);
    }

    if (password != m_state.serverPassword) {
        std::cerr << "lumeth-cli: wrong password for the server module at " << Address() << "\n";
        return ToInt(ExitCode::WrongPassword);
    }
    m_state.enteredPassword = password;
    std::cerr << "logged in\n";
    return 0;
}

void ServerClient::ReportProgress() {
    const std::string text = JoinPartNames(m_mirror.missing());
    if (text != m_lastProgress) {
        m_lastProgress = text;
        if (!text.empty()) {
            std::cerr << "waiting for: " << text << "\n";
        }
    }
}

int ServerClient::AwaitDownload() {
    switch (WaitForParts(kAllParts)) {
    case WaitResult::Done:
        std::cerr << "download complete\n";
        return 0;
    case WaitResult::LinkLost:
        return LinkLost(" during the download; missing: " + JoinPartNames(m_mirror.missing()));
    case WaitResult::TimedOut:
        break;
    }
    std::cerr << "lumeth-cli: timed out waiting for: " << JoinPartNames(m_mirror.missing()) << "\n";
    return ToInt(ExitCode::Timeout);
}

int ServerClient::LogInAndDownload(const std::string& password) {
    if (const int code = LogIn(password); code != 0) {
        return code;
    }
    if (const int code = AwaitDownload(); code != 0) {
        Close();
        return code;
    }
    return 0;
}

int ServerClient::ChangePassword(const std::string& newPassword) {
    m_state.serverPassword = newPassword;
    m_connection->SendPassword();
    // The password that comes back with the next download confirms the change.
    RequestEverything();
    std::cerr << "new password sent, waiting for the server module to confirm it\n";
    switch (WaitForParts({Part::Password})) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" after sending the new password");
    case WaitResult::TimedOut:
        std::cerr << "lumeth-cli: timed out waiting for: " << PartName(Part::Password) << "\n";
        return ToInt(ExitCode::Timeout);
    }
    if (m_state.serverPassword != newPassword) {
        std::cerr << "lumeth-cli: the server module did not take the new password\n";
        return ToInt(ExitCode::WrongPassword);
    }
    m_state.enteredPassword = newPassword;
    return 0;
}

int ServerClient::Apply(const std::string& fileName, std::vector<codec::Upload>& sent,
                        PartSet parts) {
    std::cerr << "sending "
              << (parts == kUploadParts ? "display lists, user groups and button templates"
                                        : JoinPartNames(parts))
              << "\n";
    sent = codec::UploadMessages(m_store, parts);
    const PartSet gone = m_connection->Apply(parts);
    if (!m_state.connected) {
        // The cause first, then what went out before the link was dropped.
        ReportedTooLong();
        std::cerr << "lumeth-cli: lost the link to the server module at " << Address()
                  << " while sending " << fileName
                  << "; sent before it was lost: " << NamesOrNone(gone) << "\n";
        return ToInt(ExitCode::Unreachable);
    }
    return 0;
}

int ServerClient::VerifyApplied(const std::string& fileName, const PanelStore& file,
                                PartSet parts) {
    std::cerr << "reading the configuration back\n";
    m_deadline.setRemainingTime(static_cast<qint64>(std::ceil(m_options.timeoutSeconds * 1000.0)),
                                Qt::PreciseTimer);
    RequestEverything();
    switch (WaitForParts(kAllParts)) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        if (ReportedTooLong()) {
            return ToInt(ExitCode::Unreachable);
        }
        // What was still queued when the link went is gone: no claim either way.
        std::cerr << "lumeth-cli: lost the link to the server module at " << Address()
                  << " while reading the configuration back; the server module's state is "
                     "unknown\n";
        return ToInt(ExitCode::Unreachable);
    case WaitResult::TimedOut: {
        // A server module that stops reading leaves the uploads queued here:
        // more waiting than the read-back request means FILE did not all go out.
        const auto readBack =
            codec::DataRequest(kRequestEverything.a, kRequestEverything.b, kRequestEverything.c);
        const bool allSent = m_connection->BytesWaiting() <= static_cast<int64_t>(readBack.size());
        std::cerr << "lumeth-cli: timed out reading the configuration back (missing: "
                  << JoinPartNames(m_mirror.missing())
                  << (allSent ? "); all of " : "); not all of ") << fileName
                  << (allSent ? " was sent" : " could be sent")
                  << ", the server module's state is unknown\n";
        return ToInt(ExitCode::Timeout);
    }
    }
    // FILE as the server module holds it (names and labels cut to their
    // width) against what it answered: not the messages sent, which may
    // have been shortened on the way.
    const PartSet differs = DifferingParts(file, m_store) & parts;
    if (!differs.empty()) {
        std::cerr << "lumeth-cli: the server module now holds a configuration that differs from "
                  << fileName << " in: " << JoinPartNames(differs) << "\n";
        return ToInt(ExitCode::Differs);
    }
    return 0;
}

void ServerClient::Close() {
    m_connection->Disconnect();
    QDeadlineTimer limit(kCloseLimitMs);
    while (!m_connection->SocketClosed() && !limit.hasExpired()) {
        m_connection->Wait(kWaitSliceMs, true);
    }
}

} // namespace lumeth::cli
