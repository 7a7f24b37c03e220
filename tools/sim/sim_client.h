#pragma once

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <string>

#include "tools/sim/fault_injector.h"
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

signals:
    void closed();

private:
    struct Pending {
        Chunk chunk;
        bool closeAfter = false;
        bool waited = false;
    };

    void OnReadyRead();
    void OnPollTick();
    void OnDisconnected();
    // Shape what the session queued and start sending it.
    void Flush();
    // Write queued chunks until one has to wait for its pause.
    void Pump();

    // SimSessionObserver
    void Log(std::string_view line) override;
    void FrameIn(std::string_view frame) override;

    QTcpSocket* m_socket;
    SimServer& m_server;
    uint64_t m_number;
    SimSession m_session;
    FaultInjector m_faults;
    std::deque<Pending> m_queue;
    QTimer m_pumpTimer;
    QTimer m_pollTimer;
    bool m_closing = false;
};

} // namespace lumeth::sim
