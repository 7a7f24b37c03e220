#include "ui/typed_key.h"

#include <QKeyEvent>

namespace lumeth {

std::optional<QChar> TypedCharacter(const QKeyEvent* key) {
    const QString text = key->text();
    if (text.isEmpty() || key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return std::nullopt;
    const QChar ch = text.front();
    if (ch.unicode() < 32 || ch.unicode() == 127)
        return std::nullopt;
    return ch;
}

bool IsEnter(const QKeyEvent* key) {
    return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

} // namespace lumeth
