#include "tools/sim/sim_client.h"

#include "tools/sim/sim_server.h"

namespace lumeth::sim {

namespace {
FaultOptions ConnectionFaults(const SimServer& server) {
    FaultOptions faults = server.options().faults;
    if (server.dropFired()) {
        faults.dropAfter = 0;
    }
    return faults;
}
} // namespace

SimClient::SimClient(QTcpSocket* socket, SimState& state, SimServer& server, uint64_t number,
                     QObject* parent)
    : QObject(parent), m_socket(socket), m_server(server), m_number(number),
      m_session(state, *this), m_faults(ConnectionFaults(server), number) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &SimClient::OnReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &SimClient::OnDisconnected);

    m_pumpTimer.setSingleShot(true);
    connect(&m_pumpTimer, &QTimer::timeout, this, &SimClient::Pump);

    const int poll = server.options().pollIntervalMs;
    if (poll > 0) {
        m_pollTimer.setInterval(poll);
        connect(&m_pollTimer, &QTimer::timeout, this, &SimClient::OnPollTick);
        m_pollTimer.start();
    }

    m_session.Start();
    Flush();
}

void SimClient::OnReadyRead() {
    const QByteArray bytes = m_socket->readAll();
    if (m_closing) {
        return;
    }
    m_session.Receive(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
    Flush();
}

void SimClient::OnPollTick() {
    if (m_closing) {
        return;
    }
    m_session.PollTick();
    Flush();
}

void SimClient::OnDisconnected() {
    if (m_pollTimer.isActive()) {
        m_pollTimer.stop();
    }
    m_pumpTimer.stop();
    m_queue.clear();
    m_closing = true;
    emit closed();
}

void SimClient::Flush() {
    for (OutMessage& message : m_session.TakeOutgoing()) {
        if (m_faults.Closed()) {
            break;
        }
        Delivery delivery = m_faults.Shape(message.bytes, message.answer);
        if (m_server.options().trace) {
            std::string sent;
            for (const Chunk& chunk : delivery.chunks) {
                sent += chunk.bytes;
            }
            Log("> " + Hex(sent));
        }
        for (size_t i = 0; i < delivery.chunks.size(); ++i) {
            Pending pending;
            pending.chunk = std::move(delivery.chunks[i]);
            pending.closeAfter = delivery.closeAfter && i + 1 == delivery.chunks.size();
            m_queue.push_back(std::move(pending));
        }
        if (delivery.closeAfter) {
            m_server.markDropFired();
            break;
        }
    }
    if (!m_pumpTimer.isActive()) {
        Pump();
    }
}

void SimClient::Pump() {
    while (!m_queue.empty() && !m_closing) {
        Pending& front = m_queue.front();
        if (front.chunk.delayMs > 0 && !front.waited) {
            front.waited = true;
            m_pumpTimer.start(front.chunk.delayMs);
            return;
        }
        const std::string& bytes = front.chunk.bytes;
        m_socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
        const bool closeAfter = front.closeAfter;
        m_queue.pop_front();
        if (closeAfter) {
            Log("closing the connection (drop fault)");
            m_closing = true;
            m_queue.clear();
            m_socket->disconnectFromHost();
            return;
        }
    }
}

void SimClient::Log(std::string_view line) {
    m_server.Log("client " + std::to_string(m_number) + ": " + std::string(line));
}

void SimClient::FrameIn(std::string_view frame) {
    if (m_server.options().trace) {
        Log("< " + Hex(frame));
    }
}

} // namespace lumeth::sim
