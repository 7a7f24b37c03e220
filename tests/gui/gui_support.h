#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

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

} // namespace lumeth::test
