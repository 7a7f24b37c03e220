#include "tools/sim/sim_server.h"

#include <QHostAddress>
#include <QTcpSocket>

#include "tools/sim/sim_client.h"

namespace lumeth::sim {

SimServer::SimServer(SimState& state, SimServerOptions options, QObject* parent)
    : QObject(parent), m_state(state), m_options(std::move(options)) {
    connect(&m_server, &QTcpServer::newConnection, this, &SimServer::OnNewConnection);
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
        const uint64_t number = m_nextClient++;
        ++m_clients;
        Log("client " + std::to_string(number) + " connected from " +
            socket->peerAddress().toString().toStdString() + ":" +
            std::to_string(socket->peerPort()));
        auto* client = new SimClient(socket, m_state, *this, number, this);
        connect(client, &SimClient::closed, this, [this, client, number] {
            --m_clients;
            const SessionStats& s = client->session().stats();
            Log("client " + std::to_string(number) + " closed: " + std::to_string(s.requests) +
                " requests, " + std::to_string(s.uploadsAccepted) + " uploads accepted, " +
                std::to_string(s.uploadsRejected) + " rejected");
            client->deleteLater();
            emit clientClosed();
        });
    }
}

} // namespace lumeth::sim
