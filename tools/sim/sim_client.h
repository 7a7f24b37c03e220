#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <string>

#include "tools/sim/fault_injector.h"
#include "tools/sim/garbage_summary.h"
#include "tools/sim/log_budget.h"
#include "tools/sim/sim_session.h"

namespace lumeth::sim {

class SimServer;

// One client connection: moves bytes between the socket and its SimSession,
// shapes what goes out with the fault injector and sends the polls.
class SimClient : public QObject, private SimSessionObserver {
    Q_OBJECT
public:
    SimClient(QTcpSocket* socket, SimState& state, SimServer& server, uint64_t number,
              QObject* parent = nullptr);

    const SimSession& session() const { return m_session; }
    uint64_t number() const { return m_number; }
    // Bytes waiting to be sent, in the queue and the socket's buffer.
    size_t waiting() const;
    // Milliseconds since the client last sent anything (or connected).
    qint64 idleMs() const { return m_lastHeard.elapsed(); }
    bool closing() const { return m_closing; }
    // Close the connection at once, logging `reason` first (unless empty).
    void CutOff(const std::string& reason);

signals:
    void closed();

private:
    struct Pending {
        Chunk chunk;
        size_t sent = 0; // bytes of the chunk already written
        bool closeAfter = false;
        bool waited = false;
    };

    // What may wait to be sent to one client, in the queue and the socket's
    // buffer together: room for several full answers of the largest
    // configuration (about 1.3 MB each). A client that keeps asking without
    // reading is cut off past it.
    static constexpr size_t kMaxQueuedBytes = 8u * 1024u * 1024u;

    void OnReadyRead();
    void OnPollTick();
    void OnDisconnected();
    // Shape what the session queued and start sending it.
    void Flush();
    // Write queued chunks until one has to wait for its pause.
    void Pump();
    void Write(const char* data, size_t size);
    // Close a client that lets too much pile up; true when it did.
    bool CutOffIfNotReading();
    // Write the garbage summary when its second is over (or `force`).
    void FlushGarbageSummary(bool force);
    // A line outside the log budget: the trace (--trace asks for every
    // frame) and the once-per-connection lines about closing it.
    void LogAlways(const std::string& line);

    // SimSessionObserver
    void Log(std::string_view line) override;
    void BadInput(std::string_view kind, std::string_view line, size_t bytes) override;
    void FrameIn(std::string_view frame) override;

    QTcpSocket* m_socket;
    SimServer& m_server;
    uint64_t m_number;
    SimSession m_session;
    FaultInjector m_faults;
    std::deque<Pending> m_queue;
    size_t m_queuedBytes = 0; // unsent bytes in m_queue
    LogBudget m_logBudget;
    GarbageSummary m_garbage;
    QElapsedTimer m_clock;     // since the connection opened, for the summary
    QElapsedTimer m_lastHeard; // since the client last sent anything
    QTimer m_summaryTimer;
    QTimer m_pumpTimer;
    QTimer m_pollTimer;
    bool m_closing = false;
};

} // namespace lumeth::sim
