#include "link/connection.h"

#include <QAbstractSocket>
#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <limits>

namespace lumeth {

namespace {

constexpr int kDecodeIntervalMs = 10;
constexpr int kPollIntervalMs = 500;
// A connect attempt that has neither succeeded nor failed after this long is
// abandoned by the next poll and started again; a refused connection fails at
// once, so against a local server that is down an attempt is made every poll.
constexpr qint64 kConnectAttemptLimitMs = 2000;

const char* const kConnectedText = "Server Module Connected";
const char* const kNotConnectedText = "Server Module Not Connected";

Failure SocketFailure(const QTcpSocket& socket) {
    return Failure{ErrorCode::DeviceIoError, socket.errorString().toStdString()};
}

} // namespace

bool DeadlinePassed(int32_t start, double ms, int32_t now) {
    constexpr double kMax = std::numeric_limits<int32_t>::max(); // 2147483647
    double base = start;
    if (base + ms > kMax) {
        // The deadline lies beyond the largest tick: until the counter has
        // wrapped to negative values it cannot have passed.
        if (now > 0) {
            return false;
        }
        base = -kMax - (kMax - base);
    }
    return base + ms < now;
}

int32_t TickCount() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
    // Keep the low 32 bits and read them as signed, like the system tick count.
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(ms)));
}

std::vector<std::string_view> TransmitChunks(std::string_view message) {
    std::vector<std::string_view> pieces;
    while (message.size() > kTransmitChunkSize) {
        pieces.push_back(message.substr(0, kTransmitChunkSize));
        message.remove_prefix(kTransmitChunkSize);
    }
    if (!message.empty()) {
        pieces.push_back(message);
    }
    return pieces;
}

Connection::Connection(PanelStore& store, LinkState& state, ErrorLog& log, QObject* parent)
    : QObject(parent), m_state(state), m_log(log), m_session(store, state, *this),
      m_socket(new QTcpSocket(this)) {
    m_decodeTimer.setObjectName("tmrDecode");
    m_pollTimer.setObjectName("tmrPoll");
    m_decodeTimer.setInterval(kDecodeIntervalMs);
    m_pollTimer.setInterval(kPollIntervalMs);

    connect(m_socket, &QTcpSocket::connected, this, &Connection::OnConnected);
    connect(m_socket, &QTcpSocket::readyRead, this, &Connection::OnReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &Connection::OnPeerClosed);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &Connection::OnSocketError);
    connect(&m_decodeTimer, &QTimer::timeout, this, &Connection::OnDecodeTick);
    connect(&m_pollTimer, &QTimer::timeout, this, &Connection::OnPollTick);
}

Connection::~Connection() {
    // The socket outlives this destructor's body (it is a child); keep its
    // closing events from reaching a half-destroyed connection.
    m_socket->disconnect(this);
    m_socket->abort();
}

void Connection::Connect() {
    // Closing our own socket is not the peer closing it: the login stays.
    m_disconnecting = true;
    m_socket->abort();
    m_disconnecting = false;
    m_state.connected = false; // until this attempt's connect event
    m_state.receiveBuffer.clear();
    m_decodeTimer.stop();
    m_connectStarted.start();
    m_socket->connectToHost(QString::fromStdString(m_state.serverAddress),
                            static_cast<quint16>(m_state.serverPort), QIODevice::ReadWrite,
                            QAbstractSocket::IPv4Protocol);
}

void Connection::Disconnect() {
    const bool wasConnected = m_state.connected;
    m_state.connected = false;
    m_decodeTimer.stop();

    m_disconnecting = true;
    if (m_socket->state() == QAbstractSocket::ConnectedState) {
        // A graceful close: what is already written still goes out before the
        // socket closes (SocketClosed() tells when it has).
        m_socket->flush();
        m_socket->disconnectFromHost();
    } else {
        m_socket->abort();
    }
    m_disconnecting = false;

    m_session.Disconnected();
    m_state.receiveBuffer.clear();
    m_state.enteredPassword.clear();
    m_state.passwordReceived = false;

    emit statusTextChanged(QString::fromLatin1(kNotConnectedText));
    if (wasConnected) {
        emit linkDisconnected();
    }
}

bool Connection::Transmit(const std::string& message) {
    const std::vector<std::string_view> pieces = TransmitChunks(message);
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (!WritePiece(pieces[i], i + 1 == pieces.size())) {
            return false;
        }
    }
    m_socket->flush();
    return m_state.connected;
}

bool Connection::WritePiece(std::string_view piece, bool isLast) {
    while (m_state.connected) {
        const qint64 written = m_socket->write(piece.data(), static_cast<qint64>(piece.size()));
        if (written < 0) {
            ReportError("Error sending to switcher", "Connection Error", SocketFailure(*m_socket));
            return false;
        }
        if (written == static_cast<qint64>(piece.size())) {
            return true;
        }
        if (written > 0) {
            if (!isLast) {
                // A piece before the last one that went out only in part is
                // not resent; the next piece follows.
                return true;
            }
            piece.remove_prefix(static_cast<size_t>(written));
        }
    }
    return false;
}

void Connection::FlushSession() {
    for (const std::string& message : m_session.TakeOutgoing()) {
        Transmit(message);
    }
}

void Connection::Wait(int ms, bool pumpEvents) {
    const int32_t start = TickCount();
    QElapsedTimer elapsed;
    elapsed.start();
    while (!DeadlinePassed(start, ms, TickCount())) {
        // Sleep until just past the deadline (it is passed strictly after
        // `ms`), at least one millisecond per pass so the loop never spins.
        const qint64 slice = std::max<qint64>(1, static_cast<qint64>(ms) + 1 - elapsed.elapsed());
        if (pumpEvents) {
            QEventLoop loop;
            QTimer::singleShot(static_cast<int>(slice), Qt::PreciseTimer, &loop, &QEventLoop::quit);
            loop.exec();
        } else {
            QThread::msleep(static_cast<unsigned long>(slice));
        }
    }
}

void Connection::RequestEverything() {
    m_session.RequestEverything();
    FlushSession();
}

void Connection::SendPassword() {
    m_session.SendPassword();
    FlushSession();
}

PartSet Connection::Apply(PartSet parts) {
    const std::vector<codec::Upload> steps = m_session.BuildApplySteps(parts);
    PartSet written;
    for (size_t i = 0; i < steps.size(); ++i) {
        if (i > 0) {
            Wait(kApplySpacingMs, true);
        }
        if (!steps[i].status) {
            // Masking the value would store something else in the server
            // module; that upload is left out and the others still go.
            ReportError(steps[i].failureLocation, "TCP Send Error", steps[i].status.failure());
            continue;
        }
        emit uploadSending(steps[i].part);
        if (Transmit(steps[i].message)) {
            written.add(steps[i].part);
        }
    }
    return written;
}

void Connection::StartPolling() {
    m_pollTimer.start();
}

void Connection::StopPolling() {
    m_pollTimer.stop();
}

void Connection::OnConnected() {
    m_state.connected = true;
    m_connectFailureLogged = false;
    m_session.Connected();
    emit statusTextChanged(QString::fromLatin1(kConnectedText));
    emit linkConnected();
}

void Connection::OnReadyRead() {
    const QByteArray bytes = m_socket->readAll();
    if (bytes.isEmpty()) {
        return;
    }
    m_bytesReceived += static_cast<uint64_t>(bytes.size());
    const auto received =
        m_session.Receive(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
    if (received == LinkSession::Received::MessageTooLong) {
        DropOverlongLink();
        return;
    }
    if (!m_decodeTimer.isActive()) {
        m_decodeTimer.start();
    }
}

void Connection::DropOverlongLink() {
    // Not a graceful close: whatever else the peer streams is not read.
    m_disconnecting = true;
    m_socket->abort();
    m_disconnecting = false;
    emit messageTooLong();
    // The link is lost like any other; the poll timer connects again.
    Disconnect();
}

void Connection::OnPeerClosed() {
    if (m_disconnecting || !m_state.connected) {
        return;
    }
    Disconnect();
}

void Connection::OnSocketError(QAbstractSocket::SocketError error) {
    if (m_disconnecting) {
        return;
    }
    const QString reason = m_socket->errorString();
    if (!m_state.connected) {
        // A failed connect attempt. While the server module is down the poll
        // retries every half second; log the first failure of an outage only.
        if (!m_connectFailureLogged) {
            m_connectFailureLogged = true;
            ReportError("Error Connecting to Switcher", "Connection Error",
                        SocketFailure(*m_socket));
        }
        m_socket->abort();
    } else if (error != QAbstractSocket::RemoteHostClosedError) {
        ReportError("Error Receiving IP Message", "IP Error", SocketFailure(*m_socket));
    }
    emit linkError(reason);
}

void Connection::OnDecodeTick() {
    if (m_session.BufferEmpty()) {
        m_decodeTimer.stop();
        return;
    }
    m_session.DecodeNext();
    FlushSession();
    if (m_session.BufferEmpty()) {
        m_decodeTimer.stop();
    }
}

void Connection::OnPollTick() {
    if (!m_state.connected) {
        const auto socketState = m_socket->state();
        const bool attempting = socketState == QAbstractSocket::HostLookupState ||
                                socketState == QAbstractSocket::ConnectingState;
        if (!attempting || m_connectStarted.elapsed() >= kConnectAttemptLimitMs) {
            Connect();
        }
    }
    if (m_state.enteredPassword.empty() && m_loginHook && !m_inLoginHook) {
        // The hook may run a modal dialog whose event loop delivers further
        // poll ticks; those must not open a second one.
        m_inLoginHook = true;
        m_loginHook();
        m_inLoginHook = false;
    }
}

void Connection::PartReceived(Part part) {
    emit partReceived(part);
}

void Connection::PartArriving(Part part) {
    emit partArriving(part);
}

void Connection::WriteErrorLog(std::string_view message, std::string_view location) {
    m_log.WriteErrorLog(message, location);
}

void Connection::ReportError(std::string_view location, std::string_view category,
                             const Failure& failure) {
    m_log.ReportError(location, category, failure);
}

void Connection::LogActivity(std::string_view text, std::string_view location) {
    m_log.LogActivity(text, location);
}

} // namespace lumeth
