#include "ui/message_box.h"

namespace lumeth {

std::deque<QMessageBox::StandardButton>& MessageBox::queue() {
    static std::deque<QMessageBox::StandardButton> answers;
    return answers;
}

std::deque<MessageBox::Shown>& MessageBox::shown() {
    static std::deque<Shown> boxes;
    return boxes;
}

QMessageBox::StandardButton MessageBox::Show(QWidget* parent, const QString& text,
                                             const QString& title, QMessageBox::Icon icon,
                                             QMessageBox::StandardButtons buttons,
                                             QMessageBox::StandardButton defaultButton) {
    shown().push_back({text, title, icon, buttons, defaultButton});
    if (!queue().empty()) {
        const auto answer = queue().front();
        queue().pop_front();
        return answer;
    }
    QMessageBox box(icon, title, text, buttons, parent);
    box.setObjectName("msgBox");
    if (defaultButton != QMessageBox::NoButton)
        box.setDefaultButton(defaultButton);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void MessageBox::setNextAnswer(QMessageBox::StandardButton answer) {
    queue().push_back(answer);
}
bool MessageBox::hasQueuedAnswers() {
    return !queue().empty();
}
void MessageBox::clearQueuedAnswers() {
    queue().clear();
}
const std::deque<MessageBox::Shown>& MessageBox::history() {
    return shown();
}
void MessageBox::clearHistory() {
    shown().clear();
}

} // namespace lumeth
