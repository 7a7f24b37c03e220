#pragma once

#include <QString>

#include <initializer_list>

#include "model/failure.h"

class QMainWindow;
class QTreeView;

namespace lumeth {

// The main window's size, position and the column widths of its views are
// kept between runs in this file in the program's folder. kovadmin.ini is not
// used for them: its content is the link and log settings only.
inline constexpr char kWindowLayoutFileName[] = "lumeth-admin-window.ini";

// Puts back what SaveWindowLayout wrote into `folder` (ending in a separator),
// before the window is shown. A missing or unreadable file changes nothing;
// views are matched by object name.
void RestoreWindowLayout(QMainWindow& window, std::initializer_list<QTreeView*> views,
                         const QString& folder);

// Writes the window's geometry and the views' column widths, replacing the
// file atomically. On failure returns what went wrong.
Status SaveWindowLayout(const QMainWindow& window, std::initializer_list<QTreeView*> views,
                        const QString& folder);

} // namespace lumeth
