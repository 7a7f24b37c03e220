#include "ui/key_filter.h"

#include <QKeyEvent>
#include <QWidget>

namespace lumeth {

KeyFilter::KeyFilter(Predicate accepts, QObject* parent) : QObject(parent), m_accepts(accepts) {}

void KeyFilter::Install(QWidget* widget, Predicate accepts) {
    widget->installEventFilter(new KeyFilter(accepts, widget));
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Backspace)
        return !m_accepts(8);
    const QString text = key->text();
    if (text.isEmpty() || key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    const char16_t ch = text.front().unicode();
    if (ch < 32 || ch == 127)
        return false; // Enter, Tab, Escape and the like are not typed characters
    return !m_accepts(static_cast<int>(ch));
}

} // namespace lumeth
