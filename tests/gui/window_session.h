#pragma once

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <functional>
#include <memory>

#include "app/main_views.h"
#include "app/main_window.h"
#include "tests/gui/gui_support.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/sim_server.h"
#include "tools/sim/sim_state.h"
#include "ui/file_dialog.h"
#include "ui/message_box.h"
#include "ui/qt_text.h"

// The emulator as the server module, logging the window in and closing it
// again, for the tests against the emulator.
namespace lumeth::test {

// Type `password` into the login dialog once it is up and press OK.
inline void AnswerLogin(MainWindow* window, const QString& password) {
    QTRY_VERIFY(window->findChild<QDialog*>("frmLogin"));
    auto* login = Child<QDialog>(window, "frmLogin");
    QTRY_VERIFY(login->isVisible());
    Child<QLineEdit>(login, "txtPassword")->setText(password);
    QTest::mouseClick(Child<QPushButton>(login, "cmdOk"), Qt::LeftButton);
}

// Close the window as the operator would (quitting with unapplied changes
// asks first: Yes) and delete it.
inline void CloseWindow(MainWindow*& window) {
    if (window) {
        if (window->hasUnappliedChanges())
            MessageBox::setNextAnswer(QMessageBox::Yes);
        window->close();
    }
    delete window;
    window = nullptr;
}

// The emulator serving the demo set on a free loopback port, without polling
// of its own.
struct Emulator {
    sim::SimState state;
    std::unique_ptr<sim::SimServer> server;
    PanelStore demo; // the set it started with

    // `holds` changes the demo set before the emulator serves it.
    bool Start(sim::SimServerOptions options = {},
               const std::function<void(PanelStore&)>& holds = {}) {
        sim::DemoResult made = sim::MakeDemo("demo");
        if (!made.status.ok())
            return false;
        if (holds)
            holds(made.store);
        demo = made.store;
        state.Reset(std::move(made.store), made.password);
        options.pollIntervalMs = 0;
        server = std::make_unique<sim::SimServer>(state, options);
        QString error;
        bool inUse = false;
        return server->Listen("127.0.0.1", 0, error, inUse);
    }
    quint16 port() const { return server->port(); }
};

// A fresh folder, the window in it and the emulator it is pointed at; the
// message box and file dialog seams start each test with nothing queued.
class EmulatorSession {
protected:
    std::unique_ptr<QTemporaryDir> m_home;
    Emulator m_sim;
    MainWindow* m_window = nullptr;

    QString Folder() const { return m_home->path() + "/"; }
    QString Progress() const { return Child<QLabel>(m_window, "stbStatus_2")->text(); }
    QString StatusText() const { return m_window->statusBar()->currentMessage(); }
    QString FirstGroupShown() const {
        return m_window->views().groups()->topLevelItem(0)->text(0).trimmed();
    }
    // The first user group's name as the server module holds it.
    QString HeldGroup() const {
        return ToQt(m_sim.state.store().groups.userGroupNames[0]).trimmed();
    }
    // The error log of the folder ("" while there is none).
    QByteArray ErrorLog() const {
        QFile log(Folder() + "Errorlog.txt");
        return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
    }

    void BeginSession() {
        m_home = std::make_unique<QTemporaryDir>();
        MessageBox::clearQueuedAnswers();
        MessageBox::clearHistory();
        FileDialog::clearQueuedNames();
    }
    void EndSession() {
        CloseWindow(m_window);
        m_sim.server.reset();
        m_home.reset();
    }
    // The emulator started (see Emulator::Start) and the folder's settings
    // pointing at it.
    bool StartEmulator(const sim::SimServerOptions& options = {},
                       const std::function<void(PanelStore&)>& holds = {}) {
        return m_sim.Start(options, holds) && WriteServerSettings(Folder(), m_sim.port());
    }
    // A window over the folder, started and shown.
    void OpenWindow() {
        m_window = new MainWindow(Folder().toStdString());
        m_window->Start();
        m_window->show();
    }
};

} // namespace lumeth::test
