#pragma once

#include <QTreeWidget>

class QKeyEvent;

namespace lumeth {

// A list view of the main window's drill-down that can be driven from the
// keyboard: a key that moves the current item (arrows, Page Up/Down, Home,
// End, typing a name) reports `keyboardMoved`, Enter or Return on an item
// reports `enterPressed`. Mouse handling is the plain QTreeWidget's, and
// programmatic changes of the current item report nothing.
class DrillDownTree : public QTreeWidget {
    Q_OBJECT
public:
    explicit DrillDownTree(QWidget* parent = nullptr);

signals:
    void keyboardMoved();
    void enterPressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace lumeth
