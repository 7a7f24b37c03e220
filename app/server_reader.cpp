#include "app/server_reader.h"

#include "link/connection.h"
#include "link/protocol.h"
#include "model/parts.h"

namespace lumeth {

namespace {

// How often the reader looks at its deadline and at what is missing.
constexpr int kTickMs = 50;
constexpr const char* kCancelledText = "Cancelled.";

int PartCount(PartSet parts) {
    return static_cast<int>(parts.size());
}

} // namespace

ServerReader::ServerReader(ErrorLog& log, QObject* parent)
    : QObject(parent), m_connection(std::make_unique<Connection>(m_store, m_link, log)) {
    m_tick.setInterval(kTickMs);
    connect(&m_tick, &QTimer::timeout, this, &ServerReader::OnTick);
    connect(m_connection.get(), &Connection::linkConnected, this, [this] {
        m_mirror.LinkUp();
        m_reask.Restart(m_elapsed.elapsed());
    });
    connect(m_connection.get(), &Connection::partReceived, this, &ServerReader::OnPartReceived);
    connect(m_connection.get(), &Connection::linkDisconnected, this, [this] {
        if (m_running)
            Finish(false, "The server module closed the link before sending its configuration.");
    });
    connect(m_connection.get(), &Connection::linkError, this, [this](const QString& reason) {
        // A failed connect attempt; errors of a connected link end in linkDisconnected.
        if (m_running && !m_link.connected)
            Finish(false, "Could not connect to the server module: " + reason);
    });
}

ServerReader::~ServerReader() {
    // No signal from a reader going away.
    m_running = false;
    m_connection->disconnect(this);
}

void ServerReader::Start(const std::string& address, int port, const std::string& password,
                         int limitMs) {
    m_store = PanelStore{};
    m_link = LinkState{};
    m_link.serverAddress = address;
    m_link.serverPort = port;
    m_password = password;
    m_limitMs = limitMs;
    m_mirror.LinkUp();
    m_running = true;
    m_elapsed.start();
    m_reask.Restart(0);
    m_tick.start();
    emit progress(0, PartCount(kAllParts));
    m_connection->Connect();
}

void ServerReader::Cancel() {
    if (m_running)
        Finish(false, kCancelledText);
}

void ServerReader::OnPartReceived(Part part) {
    if (!m_running)
        return;
    m_mirror.Received(part, m_store, m_link.serverPassword);
    if (part == Part::Password && m_link.serverPassword != m_password) {
        Finish(false, "The server module's password is no longer the one entered at login.");
        return;
    }
    emit progress(PartCount(m_mirror.received()), PartCount(kAllParts));
    if (!m_mirror.missing().empty())
        return;
    // A later answer that failed its checks may have written into the store.
    m_mirror.RestoreReceived(m_store, m_link.serverPassword);
    Finish(true, {});
}

void ServerReader::OnTick() {
    if (!m_running)
        return;
    const qint64 now = m_elapsed.elapsed();
    if (now >= m_limitMs) {
        const QString waited = QString::number(m_limitMs / 1000.0, 'g', 3);
        Finish(false,
               m_link.connected
                   ? "The server module did not send its configuration within " + waited + " s."
                   : "Could not connect to the server module within " + waited + " s.");
        return;
    }
    const bool asked = m_link.AnyPending() || !m_mirror.received().empty();
    switch (m_reask.Look(now, m_connection->BytesReceived(), asked)) {
    case ReaskPolicy::Step::Wait:
        return;
    case ReaskPolicy::Step::GiveUp:
        Finish(false, "The server module did not send: " +
                          QString::fromStdString(JoinPartNames(m_mirror.missing())) + ".");
        return;
    case ReaskPolicy::Step::AskAgain: {
        const RequestMasks missing = MasksFor(m_mirror.missing());
        m_connection->session().RequestData(missing.a, missing.b, missing.c);
        m_connection->FlushSession();
        return;
    }
    }
}

void ServerReader::Finish(bool ok, const QString& reason) {
    m_running = false;
    m_tick.stop();
    m_connection->Disconnect();
    emit finished(ok, reason);
}

} // namespace lumeth
