#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "app/main_window.h"
#include "tests/gui/gui_support.h"
#include "ui/message_box.h"

// Logging the window in and closing it again, for the tests against the emulator.
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

} // namespace lumeth::test
