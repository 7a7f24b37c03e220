#include "tools/sim/sim_server.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <sys/resource.h>

#include <algorithm>
#include <limits>

#include "tools/sim/sim_client.h"

namespace lumeth::sim {

int DescriptorClientLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
        limit.rlim_cur > static_cast<rlim_t>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    return std::max(1, static_cast<int>(limit.rlim_cur) - kReservedDescriptors);
}

SimServer::SimServer(SimState& state, SimServerOptions options, QObject* parent)
    : QObject(parent), m_state(state), m_options(std::move(options)) {
    m_maxClients = DescriptorClientLimit();
    if (m_options.maxClients > 0) {
        m_maxClients = std::min(m_maxClients, m_options.maxClients);
    }
    connect(&m_server, &QTcpServer::newConnection, this, &SimServer::OnNewConnection);
    connect(&m_server, &QTcpServer::acceptError, this, &SimServer::OnAcceptError);

    m_burstTimer.setSingleShot(true);
    connect(&m_burstTimer, &QTimer::timeout, this, [this] {
        Log("closed " + std::to_string(m_droppedInBurst) +
            " idle connections to make room for new ones");
        m_droppedInBurst = 0;
    });
    m_resumeTimer.setSingleShot(true);
    connect(&m_resumeTimer, &QTimer::timeout, this, [this] { m_server.resumeAccepting(); });
}

bool SimServer::Listen(const QString& host, quint16 port, QString& error, bool& addressInUse) {
    addressInUse = false;
    QHostAddress address;
    if (host == "localhost") {
        address = QHostAddress(QHostAddress::LocalHost);
    } else if (!address.setAddress(host)) {
        error = QStringLiteral("\"%1\" is not an IP address").arg(host);
        return false;
    }
    if (!m_server.listen(address, port)) {
        addressInUse = m_server.serverError() == QAbstractSocket::AddressInUseError;
        error = m_server.errorString();
        return false;
    }
    return true;
}

void SimServer::Log(const std::string& line) const {
    if (m_options.log) {
        m_options.log(line);
    }
}

void SimServer::OnNewConnection() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        m_acceptFailing = false;
        if (static_cast<int>(m_clients.size()) >= m_maxClients) {
            DropLongestIdle();
        }
        Serve(socket);
    }
}

void SimServer::Serve(QTcpSocket* socket) {
    const uint64_t number = m_nextClient++;
    Log("client " + std::to_string(number) + " connected from " +
        socket->peerAddress().toString().toStdString() + ":" + std::to_string(socket->peerPort()));
    auto* client = new SimClient(socket, m_state, *this, number, this);
    m_clients.push_back(client);
    connect(client, &SimClient::closed, this, [this, client, number] {
        std::erase(m_clients, client);
        const SessionStats& s = client->session().stats();
        Log("client " + std::to_string(number) + " closed: " + std::to_string(s.requests) +
            " requests, " + std::to_string(s.uploadsAccepted) + " uploads accepted, " +
            std::to_string(s.uploadsRejected) + " rejected");
        client->deleteLater();
        emit clientClosed();
    });
}

void SimServer::DropLongestIdle() {
    const auto idlest = std::max_element(
        m_clients.begin(), m_clients.end(),
        [](const SimClient* a, const SimClient* b) { return a->idleMs() < b->idleMs(); });
    if (idlest == m_clients.end()) {
        return;
    }
    if (m_droppedInBurst++ == 0) {
        Log(std::to_string(m_clients.size()) + " clients, the most served at once: closing " +
            "the longest idle connections to make room for new ones");
    }
    m_burstTimer.start(1000);
    SimClient* client = *idlest;
    std::erase(m_clients, client); // room now, even if closing takes a turn of the loop
    client->CutOff({});            // the burst's lines say why
}

void SimServer::LimitQueuedTotal() {
    for (;;) {
        size_t total = 0;
        SimClient* largest = nullptr;
        for (SimClient* client : m_clients) {
            total += client->waiting();
            if (!largest || client->waiting() > largest->waiting()) {
                largest = client;
            }
        }
        if (total <= m_options.maxQueuedTotal || !largest || largest->waiting() == 0) {
            return;
        }
        largest->CutOff(std::to_string(total) + " bytes waiting to be sent to all clients, over " +
                        "the cap of " + std::to_string(m_options.maxQueuedTotal) + ": " +
                        std::to_string(largest->waiting()) +
                        " of them to this one, connection cut off");
    }
}

void SimServer::OnAcceptError(QAbstractSocket::SocketError error) {
    // QTcpServer stops accepting after an error such as running out of
    // descriptors; try again shortly instead of never serving anyone again.
    if (!m_acceptFailing) { // once until a connection is accepted again
        Log("cannot accept a connection (" + m_server.errorString().toStdString() + ", error " +
            std::to_string(static_cast<int>(error)) + "), trying again every 100 ms");
        m_acceptFailing = true;
    }
    m_resumeTimer.start(100);
}

} // namespace lumeth::sim
