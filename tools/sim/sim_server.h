#pragma once

#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/sim/fault_injector.h"
#include "tools/sim/sim_state.h"

namespace lumeth::sim {

class SimClient;

struct SimServerOptions {
    FaultOptions faults;
    int pollIntervalMs = 5000;                   // 0: never poll
    bool trace = false;                          // every frame in and out to the log
    std::function<void(const std::string&)> log; // one line, no line end
    // The most clients served at once; 0: as many as the descriptor limit
    // leaves room for. Never more than that room, whatever is asked.
    int maxClients = 0;
    // What may wait to be sent to all clients together.
    size_t maxQueuedTotal = kDefaultMaxQueuedTotal;

    static constexpr size_t kDefaultMaxQueuedTotal = 64u * 1024u * 1024u;
};

// Descriptors kept free for everything but clients: standard streams, the
// listening socket, the event loop's own and the state file written beside
// its copy.
constexpr int kReservedDescriptors = 24;

// The most clients that fit under the process's descriptor limit
// (RLIMIT_NOFILE) with kReservedDescriptors kept free; at least one.
int DescriptorClientLimit();

// The emulator's TCP side: accepts clients and gives each a SimClient over
// the one shared state, so a change made by one client is served to the next
// request of any.
class SimServer : public QObject {
    Q_OBJECT
public:
    SimServer(SimState& state, SimServerOptions options, QObject* parent = nullptr);

    // Listen on host:port (port 0: any free port). On failure `error` says
    // why and `addressInUse` tells a taken port from other failures.
    bool Listen(const QString& host, quint16 port, QString& error, bool& addressInUse);
    quint16 port() const { return m_server.serverPort(); }
    QString address() const { return m_server.serverAddress().toString(); }
    int clientCount() const { return static_cast<int>(m_clients.size()); }
    int maxClients() const { return m_maxClients; }

    // Cut off the clients with the most queued output until what waits for
    // all of them fits maxQueuedTotal again.
    void LimitQueuedTotal();

    // The drop fault closes one connection per run, so a client that
    // reconnects can finish its work.
    bool dropFired() const { return m_dropFired; }
    void markDropFired() { m_dropFired = true; }

    void Log(const std::string& line) const;
    const SimServerOptions& options() const { return m_options; }

signals:
    void clientClosed();

private:
    void OnNewConnection();
    void Serve(QTcpSocket* socket);
    // Make room for one more client by closing the longest idle one.
    void DropLongestIdle();
    void OnAcceptError(QAbstractSocket::SocketError error);

    SimState& m_state;
    SimServerOptions m_options;
    QTcpServer m_server;
    std::vector<SimClient*> m_clients; // open connections, oldest first
    int m_maxClients = 1;
    uint64_t m_nextClient = 1;
    bool m_dropFired = false;
    // Idle clients closed to make room since the burst began; the burst ends
    // after a second without one.
    int m_droppedInBurst = 0;
    QTimer m_burstTimer;
    QTimer m_resumeTimer; // accepting again after accept() failed
    bool m_acceptFailing = false;
};

} // namespace lumeth::sim
