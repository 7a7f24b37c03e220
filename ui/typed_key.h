#pragma once

#include <QChar>

#include <optional>

class QKeyEvent;

namespace lumeth {

// The character `key` types into a text box; nullopt for Enter, Tab, Escape,
// Backspace, arrows and shortcuts, which type none.
std::optional<QChar> TypedCharacter(const QKeyEvent* key);

// Return or the keypad's Enter.
bool IsEnter(const QKeyEvent* key);

} // namespace lumeth
