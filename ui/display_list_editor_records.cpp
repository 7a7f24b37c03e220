// The list editor's commands on whole lists and groups: delete, move, and
// where-used.
#include <QAction>
#include <QMenu>
#include <QTreeView>

#include <stdexcept>

#include "model/list_records.h"
#include "model/record_moves.h"
#include "model/record_names.h"
#include "model/view_keys.h"
#include "model/where_used.h"
#include "ui/busy_flag.h"
#include "ui/display_list_editor.h"
#include "ui/message_box.h"
#include "ui/named_widgets.h"
#include "ui/qt_text.h"
#include "ui/where_used_dialog.h"

namespace lumeth {

namespace {

// "Delete Input Lst.003 "Mics"?" and the groups that would lose it.
QString DeleteQuestion(const PanelStore& store, SubType s, int position,
                       const std::vector<int>& groups) {
    std::string text = "Delete ";
    text.append(ListRecordName(store, s, position)).append("?\n\n");
    text.append(groups.size() == 1 ? "This user group holds it and will no longer:"
                                   : "These user groups hold it and will no longer:");
    for (const int g : groups)
        text.append("\n").append(GroupRecordName(store, g));
    return ToQt(text);
}

} // namespace

void DisplayListEditor::createRecordActions(QMenu* file) {
    m_recordMenu = file;
    file->addSeparator()->setObjectName("mnuSepRecords");
    connect(MakeMenuAction(file, "mnuDeleteList", "&Delete List"), &QAction::triggered, this,
            &DisplayListEditor::DeleteList);
    connect(MakeMenuAction(file, "mnuMoveListUp", "Move List &Up"), &QAction::triggered, this,
            [this] { MoveList(-1); });
    connect(MakeMenuAction(file, "mnuMoveListDown", "Move List Do&wn"), &QAction::triggered, this,
            [this] { MoveList(1); });
    connect(MakeMenuAction(file, "mnuWhereUsed", "Where &Used..."), &QAction::triggered, this,
            [this] { ShowWhereUsed(focusWidget() == m_channelView ? m_channelView : m_listView); });
    connect(file, &QMenu::aboutToShow, this, &DisplayListEditor::RefreshRecordActions);
}

void DisplayListEditor::createWhereUsedMenus() {
    // The views' context menus: the uses of the item under the pointer.
    for (QTreeView* view : {m_channelView, m_listView}) {
        view->setContextMenuPolicy(Qt::ActionsContextMenu);
        const char* name = view == m_channelView ? "mnuWhereUsedAvailable" : "mnuWhereUsedSelected";
        connect(MakeMenuAction(view, name, "Where &Used..."), &QAction::triggered, this,
                [this, view] { ShowWhereUsed(view); });
    }
}

void DisplayListEditor::RefreshRecordActions() {
    const bool record = m_currentIndex >= 0 && m_currentIndex < m_itemCount;
    const auto enable = [this](const char* name, bool enabled) {
        if (auto* action = m_recordMenu->findChild<QAction*>(name))
            action->setEnabled(enabled);
    };
    enable("mnuDeleteList", record && m_itemCount > 1);
    enable("mnuMoveListUp", record && m_currentIndex > 0);
    enable("mnuMoveListDown", record && m_currentIndex < m_itemCount - 1);
}

void DisplayListEditor::DeleteList() {
    ApplyListAlpha();
    Guarded(m_reporter, "Error Deleting List", "List Error", [&] {
        CommitIfChanged();
        const bool groups = m_listType == kUserGroupListType;
        const auto subType = SubTypeFromListCode(m_listType);
        if (!groups) {
            const std::vector<int> users = GroupsUsingList(m_store, *subType, m_currentIndex);
            if (!users.empty() &&
                MessageBox::Show(this, DeleteQuestion(m_store, *subType, m_currentIndex, users),
                                 "Delete List", QMessageBox::Question,
                                 QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) != QMessageBox::Yes)
                return;
        }
        // Edits made before are a step of their own.
        if (m_stepHook)
            m_stepHook();
        const RecordEdit deleted = groups ? DeleteUserGroup(m_store, m_currentIndex)
                                          : DeleteDisplayList(m_store, *subType, m_currentIndex);
        if (!deleted)
            throw std::out_of_range(deleted.status.failure().detail);
        if (m_stepHook)
            m_stepHook();
        const int left = RecordCount(m_store, m_listType).value();
        ShowMovedRecords(std::min<int>(m_currentIndex, left - 1));
    });
}

void DisplayListEditor::MoveList(int delta) {
    ApplyListAlpha();
    Guarded(m_reporter, "Error Moving List", "List Error", [&] {
        CommitIfChanged();
        const int to = m_currentIndex + delta;
        if (to < 0 || to >= m_itemCount)
            return; // already first (last)
        if (m_stepHook)
            m_stepHook();
        const auto subType = SubTypeFromListCode(m_listType);
        const RecordEdit moved = subType ? MoveDisplayList(m_store, *subType, m_currentIndex, to)
                                         : MoveUserGroup(m_store, m_currentIndex, to);
        if (!moved)
            throw std::out_of_range(moved.status.failure().detail);
        if (m_stepHook)
            m_stepHook();
        ShowMovedRecords(to);
    });
}

void DisplayListEditor::ShowMovedRecords(int index) {
    m_storeChanged = true;
    m_recordsMoved = true;
    m_changed = false;
    m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
    m_currentIndex = static_cast<int16_t>(index);
    const BusyFlag::Scope busy;
    UpdateDisplays();
}

void DisplayListEditor::ShowWhereUsed(QTreeView* view) {
    const QModelIndex current = view->currentIndex();
    const bool groups = m_listType == kUserGroupListType;
    const auto shown = SubTypeFromListCode(groups ? m_store.currentListType : m_listType);
    // Uses are looked up in the store: pending edits go there first.
    ApplyListAlpha();
    if (!shown ||
        !Guarded(m_reporter, "Error Finding Uses", "List Error", [&] { CommitIfChanged(); }))
        return;
    if (!current.isValid()) {
        // No item: the edited display list (a user group is used by nothing).
        if (!groups && m_currentIndex >= 0 && m_currentIndex < m_itemCount)
            WhereUsedDialog::ShowList(this, m_store, *shown, m_currentIndex);
        return;
    }
    const QByteArray key = view->model()->index(current.row(), 1).data().toString().toLatin1();
    const int number = KeyEntryNumber(std::string_view(key.constData(), size_t(key.size())));
    if (groups)
        WhereUsedDialog::ShowList(this, m_store, *shown, number);
    else
        WhereUsedDialog::ShowChannel(this, m_store, *shown, number);
}

} // namespace lumeth
