#pragma once

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

// Finding controls by object name and answering modal windows, for the GUI tests.
namespace lumeth::test {

template <typename T> T* Child(QObject* parent, const QString& name) {
    T* child = parent->findChild<T*>(name);
    if (!child)
        qFatal("no control %s", qPrintable(name));
    return child;
}

// Run `action` on the modal window `name` as soon as it is up (for windows
// shown with exec(), which return only when closed).
inline void WhenModal(const QString& name, std::function<void(QWidget*)> action) {
    auto* timer = new QTimer;
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, [timer, name, action] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal->objectName() != name)
            return;
        timer->stop();
        timer->deleteLater();
        action(modal);
    });
    timer->start();
}

// The settings file of `folder` (ending in a separator) pointing the window
// at the server module on 127.0.0.1:`port`.
inline bool WriteServerSettings(const QString& folder, quint16 port) {
    QFile ini(folder + "kovadmin.ini");
    return ini.open(QIODevice::WriteOnly) &&
           ini.write(QString("[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP "
                             "Port=%1\r\n")
                         .arg(port)
                         .toLatin1()) > 0;
}

// The lines of the read-only report `form` (Review Changes unless named; its
// text in `textName`) once `open` has brought it up, closed again; "(editable)" when the text can
// be edited. The report may come up from the event loop after `open` returns.
inline QStringList ReadOnlyReport(const std::function<void()>& open,
                                  const char* form = "frmChanges",
                                  const char* textName = "txtChanges") {
    auto text = std::make_shared<QString>();
    WhenModal(form, [text, textName](QWidget* dialog) {
        auto* view = Child<QPlainTextEdit>(dialog, textName);
        *text = view->isReadOnly() ? view->toPlainText() : "(editable)";
        qobject_cast<QDialog*>(dialog)->reject();
    });
    open();
    return QTest::qWaitFor([text] { return !text->isEmpty(); }) ? text->split('\n')
                                                                : QStringList{"(not shown)"};
}

} // namespace lumeth::test
