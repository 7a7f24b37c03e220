#pragma once

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/parts.h"
#include "ui/error_reporter.h"

class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;
class QMimeData;
class QPushButton;
class QRadioButton;
class QSortFilterProxyModel;
class QTreeView;
class QVBoxLayout;

namespace lumeth {

class DuplicateDisplayListDialog;
class ListItemModel;

// frmDisplayListView, "Edit Views": the one editor for display lists (which
// channels of a sub type a list holds, and its name) and user groups (which
// display lists a group holds, and its name). It edits a working copy of the
// mode's records and writes it back into the store before the edited list is
// left (CommitEditedList). The main window tells it where to start through
// the store's EditorListType, CurrentList, CurrentUserGroup and CurrentListType.
class DisplayListEditor : public QDialog {
    Q_OBJECT
public:
    // `folder` is the program's folder, where the crosspoint export starts.
    DisplayListEditor(PanelStore& store, std::string folder, ErrorReporter reporter,
                      QWidget* parent = nullptr);
    ~DisplayListEditor() override;

    // Form load: the mode and position from the main window's state, then the
    // whole display. Runs each time the editor is shown.
    void Open();

    void UpdateDisplays();
    void UpdateDisplayLists();
    bool KeyExists(const QString& key) const;
    void CommitEditedList();
    // CommitEditedList when the edited list has pending changes: run before
    // the edited list is left.
    void CommitIfChanged();

    // The handlers, as the controls call them.
    void ListTypeClicked(int item);
    void ListAlphasClicked(int item);
    void SubTypeClicked(int listTypeCode);
    void Add();
    void AddAll();
    void Remove();
    void RemoveAll();
    void MoveSelection(int delta);
    // Rows of lvList dragged within it and dropped at `at` (viewport
    // coordinates): they move before the item there, or after it when dropped
    // on its lower half. False for data that holds no rows of lvList.
    bool DropOnList(const QMimeData* data, const QPoint& at);
    void NewList();
    void ApplyListAlpha();
    void CopyList();
    void ExportCrosspointMap();
    // Called before and after a duplicate changes the store, so the owner can
    // count each duplicate as a step of its own.
    void setStepHook(std::function<void()> hook) { m_stepHook = std::move(hook); }
    void CloseEditor();
    // File menu: delete the edited list (group), or move it one place
    // earlier (-1) or later (1); each is one step. Group entries follow the
    // lists they point at; deleting a list that groups use asks first.
    void DeleteList();
    void MoveList(int delta);
    // The uses of the current item of `view` (lvChannel or lvList): a
    // channel's lists and template keys, a list's user groups; without an
    // item, of the edited display list.
    void ShowWhereUsed(QTreeView* view);
    // A download is about to write `part` into the store: while the editor
    // shows it, the pending changes go into the store first, so that what
    // the download replaces is what the operator had.
    void PartArriving(Part part);
    // A download wrote `part` into the store: while the editor shows it, the
    // working copy and the display are loaded from the store again, so that
    // closing the editor never writes the older copy back.
    void PartReplaced(Part part);

    int16_t listType() const { return m_listType; }
    int16_t currentIndex() const { return m_currentIndex; }
    int16_t itemCount() const { return m_itemCount; }
    bool isChanged() const { return m_changed; }
    // Whether the store was changed since Open (a commit that altered a
    // record, a new record, a copy).
    bool storeChanged() const { return m_storeChanged; }
    // Whether lists or groups were deleted or moved since Open.
    bool recordsMoved() const { return m_recordsMoved; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void reject() override;

private:
    // The editor's parts, built once by the constructor.
    void createMenu();
    void createLayout();
    QGroupBox* createListTypeGroup();
    QGridLayout* createNameGrid();
    void createSubTypeGroup();
    QGridLayout* createListsGrid();
    void createChannelView();
    void ShowNoMatch();
    void createListView();
    QVBoxLayout* createMoveButtons();
    void ShowListType();
    bool Shows(Part part) const;
    void LoadWorkingCopy();
    void FillChannels();
    void FillListAlphas();
    void ShowListAlpha(const QString& name);
    void FillList();
    void SetModeCaptions();
    void SelectRows(QTreeView* view, const QList<int>& rows);
    void AddItems(bool all);
    void createRecordActions(QMenu* file);
    void createWhereUsedMenus();
    void RefreshRecordActions();
    // After a delete or move: `index` is the edited record from now on.
    void ShowMovedRecords(int index);

    PanelStore& m_store;
    std::function<void()> m_stepHook;
    std::string m_folder;
    ErrorReporter m_reporter;

    int16_t m_listType = 11;
    int16_t m_currentIndex = 0;
    int16_t m_itemCount = 0;
    bool m_changed = false;
    bool m_storeChanged = false;
    bool m_recordsMoved = false;
    QMenu* m_recordMenu = nullptr;

    // The working copy: the mode's display lists, or the user groups and
    // their names.
    std::vector<DisplayList> m_lists;
    std::vector<UserGroup> m_groups;
    std::vector<std::string> m_groupNames;

    QMenuBar* m_menu = nullptr;
    QComboBox* m_listTypes = nullptr;
    QComboBox* m_listAlphas = nullptr;
    QLineEdit* m_listAlpha = nullptr;
    QPushButton* m_new = nullptr;
    QLineEdit* m_filter = nullptr;
    QLabel* m_noMatch = nullptr;
    QTreeView* m_channelView = nullptr;
    QTreeView* m_listView = nullptr;
    ListItemModel* m_channels = nullptr;
    ListItemModel* m_listItems = nullptr;
    QSortFilterProxyModel* m_channelFilter = nullptr;
    QGroupBox* m_subTypeFrame = nullptr;
    std::array<QRadioButton*, 4> m_subTypeButtons{};
    QLabel* m_masterListLabel = nullptr;
    QLabel* m_currentListLabel = nullptr;
    QLabel* m_listLabel = nullptr;
    QLabel* m_listAlphaLabel = nullptr;
    DuplicateDisplayListDialog* m_duplicate = nullptr;
};

} // namespace lumeth
