#pragma once

#include <QString>

#include <initializer_list>

class QAction;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace lumeth {

// A push button named `name` (left unnamed when null, for control arrays that
// name their members). It never becomes the default button: Enter belongs to
// the text boxes, lists and views of the window, never to a button.
QPushButton* MakeButton(QWidget* parent, const char* name, const QString& caption,
                        const QString& tip = {});

// A label named `name`.
QLabel* MakeLabel(QWidget* parent, const char* name, const QString& caption);

// A menu entry (or, for a widget, a context-menu entry) named `name`.
QAction* MakeMenuAction(QWidget* menu, const char* name, const QString& caption);

// The closing row of a dialog: `buttons` side by side at the right.
QHBoxLayout* ButtonRow(std::initializer_list<QPushButton*> buttons);

} // namespace lumeth
