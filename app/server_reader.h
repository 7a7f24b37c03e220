#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <string>

#include "files/error_log.h"
#include "link/link_state.h"
#include "link/reask_policy.h"
#include "model/panel_store.h"
#include "model/server_mirror.h"

namespace lumeth {

class Connection;

// Reads the server module's configuration into a store of its own over a
// second, short-lived connection: the window's link, store and views are
// untouched and nothing is uploaded. It checks the server module's password
// against the one the operator entered at login, waits for all eleven parts
// (asking again for missing ones), and finishes with the copy or with a
// reason, within a bounded time. Asynchronous: the event loop keeps running.
class ServerReader : public QObject {
    Q_OBJECT
public:
    static constexpr int kDefaultLimitMs = 10000;

    // Connection failures go to `log`, as the window's link reports them.
    explicit ServerReader(ErrorLog& log, QObject* parent = nullptr);
    ~ServerReader() override;

    // Connect to `address`:`port` and read everything; `password` is the
    // one entered at login. finished() follows, once.
    void Start(const std::string& address, int port, const std::string& password,
               int limitMs = kDefaultLimitMs);
    // Stop reading: finished(false, "Cancelled.") follows.
    void Cancel();
    bool running() const { return m_running; }

    // The configuration read (after a successful finish).
    const PanelStore& store() const { return m_store; }
    // The parts received so far.
    PartSet received() const { return m_mirror.received(); }

signals:
    void progress(int received, int total);
    void finished(bool ok, const QString& reason);

private:
    void OnPartReceived(Part part);
    void OnTick();
    void Finish(bool ok, const QString& reason);

    PanelStore m_store;
    LinkState m_link;
    ServerMirror m_mirror;
    std::unique_ptr<Connection> m_connection;
    std::string m_password;
    QTimer m_tick;
    QElapsedTimer m_elapsed;
    ReaskPolicy m_reask;
    int m_limitMs = kDefaultLimitMs;
    bool m_running = false;
};

} // namespace lumeth
