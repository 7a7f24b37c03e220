#pragma once

#include <QObject>
#include <QString>
#include <QTcpServer>

#include <cstdint>
#include <functional>
#include <string>

#include "tools/sim/fault_injector.h"
#include "tools/sim/sim_state.h"

namespace lumeth::sim {

class SimClient;

struct SimServerOptions {
    FaultOptions faults;
    int pollIntervalMs = 5000;                   // 0: never poll
    bool trace = false;                          // every frame in and out to the log
    std::function<void(const std::string&)> log; // one line, no line end
};

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
    int clientCount() const { return m_clients; }

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

    SimState& m_state;
    SimServerOptions m_options;
    QTcpServer m_server;
    uint64_t m_nextClient = 1;
    int m_clients = 0;
    bool m_dropFired = false;
};

} // namespace lumeth::sim
