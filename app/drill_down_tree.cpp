#include "app/drill_down_tree.h"

#include <QKeyEvent>

namespace lumeth {

DrillDownTree::DrillDownTree(QWidget* parent) : QTreeWidget(parent) {}

void DrillDownTree::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && currentItem()) {
        event->accept();
        emit enterPressed();
        return;
    }
    const QTreeWidgetItem* before = currentItem();
    QTreeWidget::keyPressEvent(event);
    if (currentItem() && currentItem() != before)
        emit keyboardMoved();
}

} // namespace lumeth
