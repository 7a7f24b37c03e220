// The main window's where-used commands, and its redraw after lists or groups
// were deleted or moved.
#include <QAction>
#include <QMenu>
#include <QTreeWidget>

#include "app/main_views.h"
#include "app/main_window.h"
#include "model/view_keys.h"
#include "ui/named_widgets.h"
#include "ui/where_used_dialog.h"

namespace lumeth {

void MainWindow::BuildWhereUsed() {
    QAction* lists = MakeMenuAction(m_popup, "mnuWhereUsed", "Where &Used...");
    connect(lists, &QAction::triggered, this, &MainWindow::WhereUsedFromPopup);
    // Nothing refers to a user group: only a display list has uses.
    connect(m_popup, &QMenu::aboutToShow, this, [this, lists] {
        lists->setEnabled(m_popupSource == m_views->displayLists() &&
                          SubTypeFromListCode(m_store.editorListType));
    });

    QTreeWidget* items = m_views->items();
    QAction* channels = MakeMenuAction(items, "mnuWhereUsedChannel", "Where &Used...");
    items->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(channels, &QAction::triggered, this, &MainWindow::WhereUsedOfChannel);
}

void MainWindow::WhereUsedFromPopup() {
    if (m_popupSource != m_views->displayLists())
        return;
    if (const auto subType = SubTypeFromListCode(m_store.editorListType))
        WhereUsedDialog::ShowList(this, m_store, *subType, m_store.currentList);
}

void MainWindow::WhereUsedOfChannel() {
    const QTreeWidgetItem* item = m_views->items()->currentItem();
    const auto subType = SubTypeFromListCode(m_store.currentListType);
    if (!item || !subType)
        return;
    const std::string key = MainViews::ItemKey(item).toStdString();
    WhereUsedDialog::ShowChannel(this, m_store, *subType, KeyEntryNumber(key));
}

void MainWindow::RedrawAfterMoves() {
    m_views->DisplayUserGroups();
    m_views->ShowGroupData(m_store.currentUserGroup);
}

} // namespace lumeth
