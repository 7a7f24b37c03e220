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

// What goes around each of a client's log lines: "lumeth-sim: client N: "
// and the line end.
size_t LogLineOverhead(uint64_t number) {
    return std::string("lumeth-sim: client " + std::to_string(number) + ": \n").size();
}
} // namespace

SimClient::SimClient(QTcpSocket* socket, SimState& state, SimServer& server, uint64_t number,
                     QObject* parent)
    : QObject(parent), m_socket(socket), m_server(server), m_number(number),
      m_session(state, *this), m_faults(ConnectionFaults(server), number),
      m_logBudget(LogLineOverhead(number)) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &SimClient::OnReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &SimClient::OnDisconnected);

    m_pumpTimer.setSingleShot(true);
    connect(&m_pumpTimer, &QTimer::timeout, this, &SimClient::Pump);
    m_clock.start();
    m_lastHeard.start();
    m_summaryTimer.setSingleShot(true);
    m_summaryTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_summaryTimer, &QTimer::timeout, this, [this] {
        FlushGarbageSummary(false);
        if (m_garbage.pending()) { // the timer fired a little early
            m_summaryTimer.start(50);
        }
    });

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
    m_lastHeard.restart();
    m_logBudget.AddTraffic(static_cast<size_t>(bytes.size()));
    // In slices, so a burst of requests is answered (and a client that does
    // not read is cut off) a few at a time rather than all queued at once.
    constexpr size_t kSlice = 256;
    const std::string_view all(bytes.constData(), static_cast<size_t>(bytes.size()));
    for (size_t at = 0; at < all.size() && !m_closing; at += kSlice) {
        m_session.Receive(all.substr(at, kSlice));
        Flush();
    }
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
    m_queuedBytes = 0;
    m_closing = true;
    FlushGarbageSummary(true);
    if (m_logBudget.suppressed() > 0) {
        LogAlways(std::to_string(m_logBudget.suppressed()) +
                  " log lines left out (more log than traffic)");
    }
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
            LogAlways("> " + Hex(sent));
        }
        for (size_t i = 0; i < delivery.chunks.size(); ++i) {
            m_queuedBytes += delivery.chunks[i].bytes.size();
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
    if (CutOffIfNotReading()) {
        return;
    }
    if (!m_pumpTimer.isActive()) {
        Pump();
    }
    m_server.LimitQueuedTotal();
}

size_t SimClient::waiting() const {
    return m_closing ? 0 : m_queuedBytes + static_cast<size_t>(m_socket->bytesToWrite());
}

bool SimClient::CutOffIfNotReading() {
    const size_t queued = waiting();
    if (queued <= kMaxQueuedBytes) {
        return false;
    }
    CutOff("not reading: " + std::to_string(queued) +
           " bytes waiting to be sent, connection cut off");
    return true;
}

void SimClient::CutOff(const std::string& reason) {
    if (m_closing) {
        return;
    }
    if (!reason.empty()) {
        LogAlways(reason);
    }
    m_closing = true;
    m_pumpTimer.stop();
    m_queue.clear();
    m_queuedBytes = 0;
    m_socket->abort();
}

void SimClient::Write(const char* data, size_t size) {
    m_socket->write(data, static_cast<qint64>(size));
    m_queuedBytes -= size;
    m_logBudget.AddTraffic(size);
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
        if (front.chunk.byteDelayMs > 0) {
            // One byte now, the next after the pause.
            Write(bytes.data() + front.sent, 1);
            if (++front.sent < bytes.size()) {
                m_pumpTimer.start(front.chunk.byteDelayMs);
                return;
            }
        } else {
            Write(bytes.data(), bytes.size());
        }
        const bool closeAfter = front.closeAfter;
        m_queue.pop_front();
        if (closeAfter) {
            Log("closing the connection (drop fault)");
            m_closing = true;
            m_queue.clear();
            m_queuedBytes = 0;
            m_socket->disconnectFromHost();
            return;
        }
    }
}

void SimClient::Log(std::string_view line) {
    for (const std::string& admitted : m_logBudget.Admit(std::string(line))) {
        m_server.Log("client " + std::to_string(m_number) + ": " + admitted);
    }
}

void SimClient::BadInput(std::string_view kind, std::string_view line, size_t bytes) {
    FlushGarbageSummary(false);
    if (auto written = m_garbage.Add(m_clock.elapsed(), kind, std::string(line), bytes)) {
        Log(*written);
    }
    if (m_garbage.pending() && !m_summaryTimer.isActive()) {
        m_summaryTimer.start(static_cast<int>(GarbageSummary::kWindowMs));
    }
}

void SimClient::FlushGarbageSummary(bool force) {
    if (auto summary = m_garbage.Flush(m_clock.elapsed(), force)) {
        Log(*summary);
    }
}

void SimClient::LogAlways(const std::string& line) {
    m_server.Log("client " + std::to_string(m_number) + ": " + line);
}

void SimClient::FrameIn(std::string_view frame) {
    if (m_server.options().trace) {
        LogAlways("< " + Hex(frame));
    }
}

} // namespace lumeth::sim
