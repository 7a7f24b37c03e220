#include "ui/key_filter.h"

#include <QKeyEvent>
#include <QWidget>

#include "ui/typed_key.h"

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
    // Enter, Tab, Escape, navigation and shortcuts pass untouched.
    const std::optional<QChar> ch = TypedCharacter(key);
    return ch && !m_accepts(static_cast<int>(ch->unicode()));
}

} // namespace lumeth
