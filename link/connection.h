#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTcpSocket>
#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "files/error_log.h"
#include "link/link_state.h"
#include "link/session.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// True when `ms` milliseconds have passed since the 32-bit tick `start`,
// with the wrap-around rule of the tick counter.
bool DeadlinePassed(int32_t start, double ms, int32_t now);

// The system millisecond tick count as a wrapping signed 32-bit value.
int32_t TickCount();

// The wait between two of Apply's upload messages.
inline constexpr int kApplySpacingMs = 500;

// Largest piece a message is written in.
inline constexpr size_t kTransmitChunkSize = 16384;

// How Transmit cuts a message: pieces of 16384 bytes while more than 16384
// remain, then the remainder in one piece. A message of exactly 16384 bytes is
// one piece; an empty message gives no pieces.
std::vector<std::string_view> TransmitChunks(std::string_view message);

// The Qt side of the link: one socket, the decode and poll timers, the
// transmitter and Wait. It moves bytes between the socket and the session and
// reports status and store changes as signals.
class Connection : public QObject, private SessionObserver {
    Q_OBJECT
public:
    Connection(PanelStore& store, LinkState& state, ErrorLog& log, QObject* parent = nullptr);
    ~Connection() override;

    LinkSession& session() { return m_session; }
    LinkState& state() { return m_state; }

    // Close any open socket, empty the buffer, connect to state().serverAddress:serverPort.
    void Connect();
    // Close; connected false, buffer and entered password empty, password not received.
    void Disconnect();
    bool IsConnected() const { return m_state.connected; }
    // True once the socket is fully closed (after Disconnect has sent what was queued).
    bool SocketClosed() const { return m_socket->state() == QAbstractSocket::UnconnectedState; }
    // Bytes received since this connection was made (across reconnects), so
    // a caller can tell a quiet link from a busy one.
    uint64_t BytesReceived() const { return m_bytesReceived; }
    // Bytes written that the socket has not yet passed on to the system.
    int64_t BytesWaiting() const { return m_socket->bytesToWrite(); }

    // Write one whole message with the 16384-byte chunk rule; false when the
    // link was down or failed before all of it was written.
    bool Transmit(const std::string& message);
    // Transmit everything the session has queued.
    void FlushSession();

    // Return after `ms` milliseconds; with pumpEvents the event loop keeps running.
    void Wait(int ms, bool pumpEvents);

    void RequestEverything();
    void SendPassword();
    // The upload messages of `parts` (all six by default) in Apply's order,
    // Wait(500, true) between every two. The result holds the parts whose message was written while the link was up.
    PartSet Apply(PartSet parts = kUploadParts);

    // tmrPoll: 500 ms, reconnects while the link is down and calls the login
    // hook whenever nobody is logged in.
    void StartPolling();
    void StopPolling();
    void setLoginHook(std::function<void()> hook) { m_loginHook = std::move(hook); }

    QTimer* decodeTimer() { return &m_decodeTimer; }
    QTimer* pollTimer() { return &m_pollTimer; }

signals:
    void statusTextChanged(const QString& text); // "Server Module Connected" / "... Not Connected"
    void partReceived(lumeth::Part part);
    // Emitted (directly) before a downloaded part is written into the store.
    void partArriving(lumeth::Part part);
    void linkConnected();
    void linkDisconnected();
    // A connect attempt failed or the socket reported an error (text from the socket).
    void linkError(const QString& reason);
    // The peer sent more bytes without an end marker than any message holds;
    // the link is dropped right after (linkDisconnected follows).
    void messageTooLong();
    // Apply is about to write the upload of `part`.
    void uploadSending(lumeth::Part part);

private:
    void OnConnected();
    void OnReadyRead();
    void OnPeerClosed();
    // Abort the socket and disconnect after an overlong message.
    void DropOverlongLink();
    void OnDecodeTick();
    void OnPollTick();
    void OnSocketError(QAbstractSocket::SocketError error);
    // Write one piece; false when the socket failed and the message is abandoned.
    bool WritePiece(std::string_view piece, bool isLast);

    // SessionObserver
    void PartReceived(Part part) override;
    void PartArriving(Part part) override;
    void WriteErrorLog(std::string_view message, std::string_view location) override;
    void ReportError(std::string_view location, std::string_view category,
                     const Failure& failure) override;
    void LogActivity(std::string_view text, std::string_view location) override;

    LinkState& m_state;
    ErrorLog& m_log;
    LinkSession m_session;
    QTcpSocket* m_socket = nullptr;
    QTimer m_decodeTimer;
    QTimer m_pollTimer;
    std::function<void()> m_loginHook;
    bool m_inLoginHook = false;
    bool m_disconnecting = false;        // we are closing the socket ourselves
    bool m_connectFailureLogged = false; // one log line per outage, not one per poll
    QElapsedTimer m_connectStarted;
    uint64_t m_bytesReceived = 0;
};

} // namespace lumeth
