#include "tools/cli/server_client.h"

#include <QObject>

#include <charconv>
#include <cmath>
#include <sstream>

#include "link/codec.h"
#include "link/protocol.h"
#include "model/store_diff.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/password_input.h"
#include "tools/cli/progress_line.h"

namespace lumeth::cli {

namespace {

// Each pass of a wait lets the event loop run this long before the
// conditions are looked at again. Short, so that a finished download is
// noticed within a fraction of the 10 ms decode tick, not a slice later.
constexpr int kWaitSliceMs = 5;
// How long Close waits for the socket to finish sending and close.
constexpr int kCloseLimitMs = 3000;

// The parts of `parts` by name, or "none".
std::string NamesOrNone(PartSet parts) {
    return parts.empty() ? std::string("none") : JoinPartNames(parts);
}

// Seconds as the user wrote them: "10", "0.5".
std::string SecondsText(double seconds) {
    std::ostringstream text;
    text << seconds;
    return text.str();
}

Status UsageFailure(const std::string& message) {
    return Status::Fail(ErrorCode::InvalidProcedureCall, message);
}

// A --timeout value: more than 0 seconds and at most a day.
std::optional<double> ParseSeconds(const std::string& value) {
    double seconds = 0;
    const char* end = value.data() + value.size();
    const auto [stop, code] = std::from_chars(value.data(), end, seconds);
    if (value.empty() || code != std::errc() || stop != end || !(seconds > 0) || seconds > 86400) {
        return std::nullopt;
    }
    return seconds;
}

} // namespace

ServerAddress ParseServer(std::string_view text) {
    ServerAddress parsed;
    std::string_view hostPart = text;
    const size_t colon = text.rfind(':');
    if (colon != std::string_view::npos) {
        hostPart = text.substr(0, colon);
        const std::string_view portText = text.substr(colon + 1);
        const char* end = portText.data() + portText.size();
        const auto [stop, code] = std::from_chars(portText.data(), end, parsed.port);
        if (portText.empty() || code != std::errc() || stop != end || parsed.port < 1 ||
            parsed.port > 65535) {
            parsed.status =
                UsageFailure("invalid port in --server " + std::string(text) + " (1 to 65535)");
            return parsed;
        }
    }
    if (hostPart.empty()) {
        parsed.status = UsageFailure("no host in --server " + std::string(text));
        return parsed;
    }
    parsed.host = std::string(hostPart);
    return parsed;
}

ServerArguments ParseServerArguments(const std::vector<std::string>& args, ServerOptions defaults) {
    ServerArguments parsed{std::move(defaults), {}, Status::Ok()};
    ServerOptions& options = parsed.options;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--verbose") {
            options.verbose = true;
            continue;
        }
        const bool shared =
            arg == "--server" || arg == "--timeout" || arg == "--home" || arg == "--password-file";
        if (!shared) {
            parsed.rest.push_back(arg);
            continue;
        }
        if (i + 1 >= args.size()) {
            parsed.status = UsageFailure(arg + " needs a value");
            return parsed;
        }
        const std::string& value = args[++i];
        if (arg == "--server") {
            ServerAddress address = ParseServer(value);
            if (!address.status) {
                parsed.status = address.status;
                return parsed;
            }
            options.host = std::move(address.host);
            options.port = address.port;
        } else if (arg == "--timeout") {
            const std::optional<double> seconds = ParseSeconds(value);
            if (!seconds) {
                parsed.status = UsageFailure("--timeout needs a number of seconds greater than 0");
                return parsed;
            }
            options.timeoutSeconds = *seconds;
        } else if (arg == "--home") {
            options.home = value;
        } else {
            options.passwordFile = value;
        }
    }
    return parsed;
}

ServerClient::ServerClient(const ServerOptions& options)
    : m_application(QCoreApplication::instance() != nullptr
                        ? nullptr
                        : std::make_unique<QCoreApplication>(m_argc, m_argv)),
      m_options(options),
      m_deadline(static_cast<qint64>(std::ceil(options.timeoutSeconds * 1000.0)),
                 Qt::PreciseTimer) {
    m_clock.start();
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
    m_reask.Restart(m_clock.elapsed());
    m_connection->RequestEverything();
}

ServerClient::WaitResult ServerClient::WaitForParts(PartSet need) {
    m_reask.Heard(m_clock.elapsed());
    return WaitFor([this, need] {
        ReportProgress();
        if ((m_mirror.missing() & need).empty()) {
            m_mirror.RestoreReceived(m_store, m_state.serverPassword);
            return true;
        }
        // Nothing asked for yet (no identity query) leaves nothing to ask again.
        const bool asked = m_state.AnyPending() || !m_mirror.received().empty();
        switch (m_reask.Look(m_clock.elapsed(), m_connection->BytesReceived(), asked)) {
        case ReaskPolicy::Step::Wait:
            break;
        case ReaskPolicy::Step::GiveUp:
            m_deadline.setRemainingTime(0); // reported as a timeout
            break;
        case ReaskPolicy::Step::AskAgain: {
            Progress().Step("asking again for: " + JoinPartNames(m_mirror.missing()));
            const RequestMasks missing = MasksFor(m_mirror.missing());
            m_connection->session().RequestData(missing.a, missing.b, missing.c);
            m_connection->FlushSession();
            break;
        }
        }
        return false;
    });
}

bool ServerClient::ReportedTooLong() const {
    if (m_messageTooLong) {
        Error(ExitCode::Unreachable,
              "the server module sent a message larger than any the protocol carries");
    }
    return m_messageTooLong;
}

int ServerClient::LinkLost(const std::string& during) {
    if (ReportedTooLong()) {
        return ToInt(ExitCode::Unreachable);
    }
    if (m_wasConnected) {
        return Error(ExitCode::Unreachable,
                     "lost the link to the server module at " + Address() + during);
    }
    return Error(ExitCode::Unreachable,
                 "cannot reach the server module at " + Address() + ": " + m_linkError);
}

int ServerClient::LogIn(const std::string& password) {
    Progress().Step("connecting to " + Address());
    m_reask.Restart(m_clock.elapsed());
    m_connection->Connect();
    switch (WaitFor([this] { return m_state.connected; })) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" right after connecting");
    case WaitResult::TimedOut:
        return Error(ExitCode::Unreachable, "cannot reach the server module at " + Address() +
                                                ": no connection within " +
                                                SecondsText(m_options.timeoutSeconds) + " s");
    }

    Progress().Step("connected, waiting for the password");
    switch (WaitForParts({Part::Password})) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" while waiting for the password");
    case WaitResult::TimedOut:
        // Nothing asked for yet means the identity query never came.
        return Error(ExitCode::Timeout,
                     "timed out waiting for: " + std::string(m_state.AnyPending()
                                                                 ? PartName(Part::Password)
                                                                 : "identity query"));
    }

    if (password != m_state.serverPassword) {
        return Error(ExitCode::WrongPassword,
                     "wrong password for the server module at " + Address());
    }
    m_state.enteredPassword = password;
    Progress().Step("logged in");
    return 0;
}

void ServerClient::ReportProgress() {
    const PartSet missing = m_mirror.missing();
    const std::string text = JoinPartNames(missing);
    if (text != m_lastProgress) {
        m_lastProgress = text;
        if (!text.empty()) {
            // The count first: a terminal line may be too short for the names.
            Progress().Step(std::to_string(kAllParts.size() - missing.size()) + " of " +
                            std::to_string(kAllParts.size()) + " parts in, waiting for: " + text);
        }
    }
}

int ServerClient::AwaitDownload() {
    switch (WaitForParts(kAllParts)) {
    case WaitResult::Done:
        Progress().Step("download complete");
        return 0;
    case WaitResult::LinkLost:
        return LinkLost(" during the download; missing: " + JoinPartNames(m_mirror.missing()));
    case WaitResult::TimedOut:
        break;
    }
    return Error(ExitCode::Timeout, "timed out waiting for: " + JoinPartNames(m_mirror.missing()));
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

int ServerClient::LogInAndDownload() {
    const PasswordResult password = ReadPassword({m_options.passwordFile, "LUMETH_PASSWORD"});
    if (!password.password) {
        return Error(ExitCode::Usage, password.status.failure().detail);
    }
    return LogInAndDownload(PasswordBytes(*password.password));
}

int ServerClient::ChangePassword(const std::string& newPassword) {
    m_state.serverPassword = newPassword;
    m_connection->SendPassword();
    // The password that comes back with the next download confirms the change.
    RequestEverything();
    Progress().Step("new password sent, waiting for the server module to confirm it");
    switch (WaitForParts({Part::Password})) {
    case WaitResult::Done:
        break;
    case WaitResult::LinkLost:
        return LinkLost(" after sending the new password");
    case WaitResult::TimedOut:
        return Error(ExitCode::Timeout,
                     "timed out waiting for: " + std::string(PartName(Part::Password)));
    }
    if (m_state.serverPassword != newPassword) {
        return Error(ExitCode::WrongPassword, "the server module did not take the new password");
    }
    m_state.enteredPassword = newPassword;
    return 0;
}

int ServerClient::Apply(const std::string& fileName, std::vector<codec::Upload>& sent,
                        PartSet parts) {
    Progress().Step("sending " + (parts == kUploadParts
                                      ? std::string("display lists, user groups and button templates")
                                      : JoinPartNames(parts)));
    sent = codec::UploadMessages(m_store, parts);
    const QMetaObject::Connection sending = QObject::connect(
        m_connection.get(), &Connection::uploadSending, m_connection.get(),
        [](Part part) { Progress().Step("sending " + std::string(PartName(part))); });
    const PartSet gone = m_connection->Apply(parts);
    QObject::disconnect(sending);
    if (!m_state.connected) {
        // The cause first, then what went out before the link was dropped.
        ReportedTooLong();
        return Error(ExitCode::Unreachable, "lost the link to the server module at " + Address() +
                                                " while sending " + fileName +
                                                "; sent before it was lost: " + NamesOrNone(gone));
    }
    return 0;
}

int ServerClient::VerifyApplied(const std::string& fileName, const PanelStore& file,
                                PartSet parts) {
    Progress().Step("reading the configuration back");
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
        return Error(ExitCode::Unreachable,
                     "lost the link to the server module at " + Address() +
                         " while reading the configuration back; the server module's state is "
                         "unknown");
    case WaitResult::TimedOut: {
        // A server module that stops reading leaves the uploads queued here:
        // more waiting than the read-back request means FILE did not all go out.
        const auto readBack =
            codec::DataRequest(kRequestEverything.a, kRequestEverything.b, kRequestEverything.c);
        const bool allSent = m_connection->BytesWaiting() <= static_cast<int64_t>(readBack.size());
        return Error(ExitCode::Timeout, "timed out reading the configuration back (missing: " +
                                            JoinPartNames(m_mirror.missing()) +
                                            (allSent ? "); all of " : "); not all of ") + fileName +
                                            (allSent ? " was sent" : " could be sent") +
                                            ", the server module's state is unknown");
    }
    }
    // FILE as the server module holds it (names and labels cut to their
    // width) against what it answered: not the messages sent, which may
    // have been shortened on the way.
    const PartSet differs = DifferingParts(file, m_store) & parts;
    if (!differs.empty()) {
        return Error(ExitCode::Differs,
                     "the server module now holds a configuration that differs from " + fileName +
                         " in: " + JoinPartNames(differs));
    }
    return 0;
}

void ServerClient::Close() {
    // The session is over: what follows (a result, diff's lines on stdout)
    // starts on a line of its own.
    Progress().Clear();
    m_connection->Disconnect();
    QDeadlineTimer limit(kCloseLimitMs);
    while (!m_connection->SocketClosed() && !limit.hasExpired()) {
        m_connection->Wait(kWaitSliceMs, true);
    }
}

} // namespace lumeth::cli
