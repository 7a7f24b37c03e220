#pragma once

#include <QMessageBox>
#include <QString>

#include <deque>

class QWidget;

namespace lumeth {

// Every message box of the program goes through here. Tests queue answers with
// setNextAnswer; a queued answer is returned at once and the box is recorded
// instead of shown, so a test never blocks on a modal box.
class MessageBox {
public:
    struct Shown {
        QString text;
        QString title;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QMessageBox::StandardButtons buttons = QMessageBox::Ok;
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    };

    static QMessageBox::StandardButton
    Show(QWidget* parent, const QString& text, const QString& title,
         QMessageBox::Icon icon = QMessageBox::NoIcon,
         QMessageBox::StandardButtons buttons = QMessageBox::Ok,
         QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

    // Answer the next box with `answer` without showing it.
    static void setNextAnswer(QMessageBox::StandardButton answer);
    static bool hasQueuedAnswers();
    static void clearQueuedAnswers();

    // Every box shown or answered since the last clearHistory, oldest first.
    static const std::deque<Shown>& history();
    static void clearHistory();

private:
    static std::deque<QMessageBox::StandardButton>& queue();
    static std::deque<Shown>& shown();
};

} // namespace lumeth
