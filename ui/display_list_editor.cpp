#include "ui/display_list_editor.h"

#include <QComboBox>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>
#include <stdexcept>

#include "files/crosspoint_map.h"
#include "model/channel_alpha.h"
#include "model/limits.h"
#include "model/list_records.h"
#include "model/view_keys.h"
#include "ui/busy_flag.h"
#include "ui/control_array.h"
#include "ui/duplicate_display_list_dialog.h"
#include "ui/file_dialog.h"
#include "ui/fixed_pitch_font.h"
#include "ui/list_item_model.h"
#include "ui/message_box.h"
#include "ui/named_widgets.h"
#include "ui/qt_text.h"
#include "ui/row_count_label.h"
#include "ui/typed_key.h"

namespace lumeth {

namespace {

// cmbListType's items and the mode each one selects.
constexpr std::array<int16_t, 5> kListTypes{11, 21, 31, 41, kUserGroupListType};
const char* const kListTypeItems[5] = {"Input Display Lists", "Output Display Lists",
                                       "Opto Display Lists", "Relay Display Lists", "User Groups"};

// The cmbListType item of a mode; -1 (no item) for an unknown one.
int ListTypeItem(int16_t listType) {
    const auto item = std::find(kListTypes.begin(), kListTypes.end(), listType);
    return item == kListTypes.end() ? -1 : static_cast<int>(item - kListTypes.begin());
}

QTreeView* MakeView(QWidget* parent, const char* name, QAbstractItemModel* model) {
    auto* view = new QTreeView(parent);
    view->setObjectName(name);
    view->setModel(model);
    view->setRootIsDecorated(false);
    view->setUniformRowHeights(true); // constant-time layout of 16383 rows
    view->setAllColumnsShowFocus(true);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    view->setColumnHidden(1, true); // the text already ends in the key
    UseFixedPitchFont(view);        // so the keys after padded names line up
    return view;
}

QList<ListItemModel::Item> Items(const std::vector<std::pair<std::string, std::string>>& rows) {
    QList<ListItemModel::Item> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const auto& [key, text] : rows)
        items.push_back({QString::fromLatin1(key), ToQt(text)});
    return items;
}

// The rows of `view` that are selected, in item order.
QList<int> SelectedRows(const QTreeView* view) {
    QList<int> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedRows())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

bool SameList(const DisplayList& a, const DisplayList& b) {
    const auto n = static_cast<size_t>(ValidCount(a.channelCount));
    return a.name == b.name && a.channelCount == b.channelCount && b.channels.size() >= n &&
           std::equal(a.channels.begin(), a.channels.begin() + static_cast<std::ptrdiff_t>(n),
                      b.channels.begin());
}

bool SameGroup(const UserGroup& a, const UserGroup& b) {
    const auto n = static_cast<std::ptrdiff_t>(ValidCount(a.listCount));
    return a.listCount == b.listCount && b.listIndexes.size() >= size_t(n) &&
           b.listTypes.size() >= size_t(n) &&
           std::equal(a.listIndexes.begin(), a.listIndexes.begin() + n, b.listIndexes.begin()) &&
           std::equal(a.listTypes.begin(), a.listTypes.begin() + n, b.listTypes.begin());
}

} // namespace

DisplayListEditor::DisplayListEditor(PanelStore& store, std::string folder, ErrorReporter reporter,
                                     QWidget* parent)
    : QDialog(parent), m_store(store), m_folder(std::move(folder)),
      m_reporter(std::move(reporter)) {
    setObjectName("frmDisplayListView");
    setWindowTitle("Edit Views");
    setModal(true);
    createLayout();
    createWhereUsedMenus();
}

DisplayListEditor::~DisplayListEditor() = default;

void DisplayListEditor::createMenu() {
    m_menu = new QMenuBar(this);
    m_menu->setObjectName("mnuDisplayListView");
    QMenu* file = m_menu->addMenu("&File");
    file->setObjectName("mnuFIle");
    file->menuAction()->setObjectName("mnuFIle");
    const auto action = [file](const char* name, const QString& caption) {
        QAction* entry = file->addAction(caption);
        entry->setObjectName(name);
        return entry;
    };
    connect(action("mnuCopy", "&Copy List"), &QAction::triggered, this,
            &DisplayListEditor::CopyList);
    action("mnuSave", "&Save Display Lists"); // has no action of its own
    connect(action("mnuExport", "&Export Crosspoint Map..."), &QAction::triggered, this,
            &DisplayListEditor::ExportCrosspointMap);
    createRecordActions(file);
    file->addSeparator()->setObjectName("mnuSep");
    connect(action("mnuExit", "E&xit"), &QAction::triggered, this, &DisplayListEditor::CloseEditor);
}

void DisplayListEditor::createLayout() {
    // Built in tab order: which records are edited and which one, the sub
    // type of a group's lists, the two views with the buttons between, Close.
    createMenu();
    QGroupBox* listTypeFrame = createListTypeGroup();
    QGridLayout* nameGrid = createNameGrid();
    createSubTypeGroup();
    QGridLayout* lists = createListsGrid();
    auto* close = MakeButton(this, "cmdClose", "&Close");
    connect(close, &QPushButton::clicked, this, &DisplayListEditor::CloseEditor);

    auto* top = new QHBoxLayout;
    top->addWidget(listTypeFrame);
    top->addLayout(nameGrid, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setMenuBar(m_menu);
    layout->addLayout(top);
    layout->addWidget(m_subTypeFrame);
    layout->addLayout(lists, 1);
    layout->addLayout(ButtonRow({close}));
    resize(880, 620);
}

QGroupBox* DisplayListEditor::createListTypeGroup() {
    auto* frame = new QGroupBox("List Type", this);
    frame->setObjectName("frListType");
    m_listTypes = new QComboBox(frame);
    m_listTypes->setObjectName("cmbListType");
    for (const char* item : kListTypeItems)
        m_listTypes->addItem(item);
    auto* row = new QHBoxLayout(frame);
    row->addWidget(m_listTypes);
    connect(m_listTypes, &QComboBox::currentIndexChanged, this,
            &DisplayListEditor::ListTypeClicked);
    return frame;
}

QGridLayout* DisplayListEditor::createNameGrid() {
    // The edited list (group) and its name.
    m_listLabel = MakeLabel(this, "lblList", "Current List");
    m_listAlphas = new QComboBox(this);
    m_listAlphas->setObjectName("cmbListAlphas");
    m_listAlphas->setToolTip("Current Display List to Edit");
    m_listAlphas->setMinimumContentsLength(int(kNameWidth));
    m_listAlphas->setMaxVisibleItems(20);
    m_listLabel->setBuddy(m_listAlphas);
    m_listAlphaLabel = MakeLabel(this, "lblListAlpha", "Current List Label");
    m_listAlpha = new QLineEdit("Text1", this);
    m_listAlpha->setObjectName("txtListAlpha");
    // The key filter refuses a typed 17th character; the length limit (see
    // ShowListAlpha) also cuts a pasted or dropped text.
    m_listAlpha->setMaxLength(int(kNameWidth));
    m_listAlpha->installEventFilter(this);
    m_listAlphaLabel->setBuddy(m_listAlpha);
    m_new = MakeButton(this, "cmndNew", "New List");
    connect(m_listAlphas, &QComboBox::currentIndexChanged, this,
            &DisplayListEditor::ListAlphasClicked);
    connect(m_new, &QPushButton::clicked, this, &DisplayListEditor::NewList);

    auto* grid = new QGridLayout;
    grid->addWidget(m_listLabel, 0, 0);
    grid->addWidget(m_listAlphas, 0, 1);
    grid->addWidget(m_new, 0, 2);
    grid->addWidget(m_listAlphaLabel, 1, 0);
    grid->addWidget(m_listAlpha, 1, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

void DisplayListEditor::createSubTypeGroup() {
    // The sub type of the lists a group shows (group mode only).
    m_subTypeFrame = new QGroupBox("Display List Type", this);
    m_subTypeFrame->setObjectName("frSubType");
    auto* row = new QHBoxLayout(m_subTypeFrame);
    for (size_t i = 0; i < 4; ++i) {
        const int code = kListTypes[i];
        auto* button = ArrayMember(new QRadioButton(SubTypeName(kAllSubTypes[i]), m_subTypeFrame),
                                   "optSubType", code);
        row->addWidget(button);
        m_subTypeButtons[i] = button;
        connect(button, &QRadioButton::clicked, this, [this, code] { SubTypeClicked(code); });
    }
    row->addStretch(1);
}

QGridLayout* DisplayListEditor::createListsGrid() {
    createChannelView();
    createListView();
    // One grid, so that the two views start on the same line although the
    // filter box stands over the available items only.
    auto* grid = new QGridLayout;
    grid->addWidget(m_masterListLabel, 0, 0);
    grid->addWidget(m_currentListLabel, 0, 2);
    grid->addWidget(m_filter, 1, 0);
    grid->addWidget(m_channelView, 2, 0);
    grid->addWidget(m_noMatch, 3, 0);
    grid->addLayout(createMoveButtons(), 2, 1);
    grid->addWidget(m_listView, 2, 2);
    // How many items the edited list holds, under it.
    auto* count = new RowCountLabel(
        m_listItems,
        [this] { return std::string(m_listType == kUserGroupListType ? "list" : "channel"); },
        this);
    count->setObjectName("lblListCount");
    grid->addWidget(count, 3, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(2, 1);
    return grid;
}

void DisplayListEditor::createChannelView() {
    // The available items, narrowed by the filter box.
    m_channels = new ListItemModel("Channel Alpha", false, this);
    m_channelFilter = new QSortFilterProxyModel(this);
    m_channelFilter->setSourceModel(m_channels);
    m_channelFilter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_channelFilter->setFilterKeyColumn(0);
    m_channelView = MakeView(this, "lvChannel", m_channelFilter);
    m_channelView->installEventFilter(this);
    m_masterListLabel = MakeLabel(this, "lblMasterList", "Available Channels");
    m_filter = new QLineEdit(this);
    m_filter->setObjectName("txtFilter");
    m_filter->setPlaceholderText("Filter");
    m_filter->setClearButtonEnabled(true);
    m_filter->setToolTip("Show only the available items whose text contains this");
    connect(m_channelView, &QTreeView::doubleClicked, this, &DisplayListEditor::Add);
    connect(m_filter, &QLineEdit::textChanged, m_channelFilter,
            &QSortFilterProxyModel::setFilterFixedString);
    // A filter that hides every item says so under the (empty) view.
    m_noMatch = MakeLabel(this, "lblNoMatch", QString());
    m_noMatch->hide();
    connect(m_channelFilter, &QAbstractItemModel::modelReset, this,
            &DisplayListEditor::ShowNoMatch);
    connect(m_channelFilter, &QAbstractItemModel::layoutChanged, this,
            &DisplayListEditor::ShowNoMatch);
    connect(m_channelFilter, &QAbstractItemModel::rowsInserted, this,
            &DisplayListEditor::ShowNoMatch);
    connect(m_channelFilter, &QAbstractItemModel::rowsRemoved, this,
            &DisplayListEditor::ShowNoMatch);
    connect(m_filter, &QLineEdit::textChanged, this, &DisplayListEditor::ShowNoMatch);
}

void DisplayListEditor::ShowNoMatch() {
    const QString text = m_filter->text();
    const bool hidden = !text.isEmpty() && m_channelFilter->rowCount() == 0;
    m_noMatch->setText(hidden ? QStringLiteral("No available items match \"%1\"").arg(text)
                              : QString());
    m_noMatch->setVisible(hidden);
}

void DisplayListEditor::createListView() {
    // The edited list's items, in order; dragging rows reorders them.
    m_listItems = new ListItemModel("Channel", true, this);
    m_listView = MakeView(this, "lvList", m_listItems);
    m_listView->setToolTip("Current Display List");
    m_listView->setDragEnabled(true);
    m_listView->setAcceptDrops(true);
    m_listView->setDragDropMode(QAbstractItemView::InternalMove);
    m_listView->setDefaultDropAction(Qt::MoveAction);
    m_listView->setDropIndicatorShown(true);
    m_listView->installEventFilter(this);
    m_listView->viewport()->installEventFilter(this);
    m_currentListLabel = MakeLabel(this, "lblCurrentList", "Selected Channels");
    connect(m_listView, &QTreeView::doubleClicked, this, &DisplayListEditor::Remove);
}

QVBoxLayout* DisplayListEditor::createMoveButtons() {
    const QString addTip = "Add Selected Items to Current Display Listy";
    const QString removeTip = "Remove Selected Items from Current Display List";
    auto* add = MakeButton(this, "cmdAdd", "&Add >>", addTip);
    auto* addAll = MakeButton(this, "cmdAddAll", "Add All >>", addTip);
    auto* remove = MakeButton(this, "cmdRemove", "<< &Remove", removeTip);
    auto* removeAll = MakeButton(this, "cmdRemoveAll", "<< Remove All", removeTip);
    auto* up = MakeButton(this, "cmdUp", "Move &Up",
                          "Move the selected items of the current list up one place (Ctrl+Up)");
    auto* down =
        MakeButton(this, "cmdDown", "Move &Down",
                   "Move the selected items of the current list down one place (Ctrl+Down)");
    connect(add, &QPushButton::clicked, this, &DisplayListEditor::Add);
    connect(addAll, &QPushButton::clicked, this, &DisplayListEditor::AddAll);
    connect(remove, &QPushButton::clicked, this, &DisplayListEditor::Remove);
    connect(removeAll, &QPushButton::clicked, this, &DisplayListEditor::RemoveAll);
    connect(up, &QPushButton::clicked, this, [this] { MoveSelection(-1); });
    connect(down, &QPushButton::clicked, this, [this] { MoveSelection(1); });

    auto* column = new QVBoxLayout;
    column->addStretch(1);
    for (QPushButton* button : {add, addAll})
        column->addWidget(button);
    column->addSpacing(16);
    for (QPushButton* button : {remove, removeAll})
        column->addWidget(button);
    column->addSpacing(16);
    for (QPushButton* button : {up, down})
        column->addWidget(button);
    column->addStretch(2);
    return column;
}

void DisplayListEditor::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous())
        Open();
}

void DisplayListEditor::Open() {
    m_changed = false;
    m_storeChanged = false;
    m_recordsMoved = false;
    // The editor is reused: a filter typed last time would hide channels.
    m_filter->clear();
    Guarded(m_reporter, "Error Loading List Form", "List Error", [this] {
        m_listType = m_store.editorListType;
        if (m_listType == kUserGroupListType) {
            m_currentIndex = m_store.currentUserGroup;
            m_itemCount = m_store.groups.userGroupCount;
            if (QRadioButton* button = m_subTypeButtons.at(
                    static_cast<size_t>(SubTypeFromListCode(m_store.currentListType).value())))
                button->setChecked(true);
        } else {
            m_currentIndex = m_store.currentList;
            m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
        }
        // An index equal to the count is let through here; a list type
        // change applies the stricter test.
        if (m_currentIndex < 0 || m_currentIndex > m_itemCount)
            m_currentIndex = 0;
        UpdateDisplays();
    });
    // The box shows the mode the editor is in, also when the display could
    // not be filled.
    ShowListType();
}

// cmbListType selects the item of the editor's mode, quietly.
void DisplayListEditor::ShowListType() {
    const BusyFlag::Scope busy;
    m_listTypes->setCurrentIndex(ListTypeItem(m_listType));
}

void DisplayListEditor::UpdateDisplays() {
    Guarded(m_reporter, "Error Loading Display Lists", "Database Error",
            [&] { LoadWorkingCopy(); });
    Guarded(m_reporter, "Error Loading master List", "List Error", [&] { FillChannels(); });
    Guarded(m_reporter, "Error Loading Display Alphas", "File Error", [&] { FillListAlphas(); });
    SetModeCaptions();
    FillList();
}

void DisplayListEditor::UpdateDisplayLists() {
    Guarded(m_reporter, "Error Updating Display Lists", "File Error", [&] {
        LoadWorkingCopy();
        FillListAlphas();
        FillList();
    });
}

void DisplayListEditor::LoadWorkingCopy() {
    if (m_listType == kUserGroupListType) {
        m_groups = m_store.groups.userGroups;
        m_groupNames = m_store.groups.userGroupNames;
        m_lists.clear();
    } else {
        m_lists = m_store.lists(SubTypeFromListCode(m_listType).value());
        m_groups.clear();
        m_groupNames.clear();
    }
}

void DisplayListEditor::FillChannels() {
    std::vector<std::pair<std::string, std::string>> rows;
    try {
        if (m_listType == kUserGroupListType) {
            // The display lists of the sub type the option buttons select.
            const SubType subType = SubTypeFromListCode(m_store.currentListType).value();
            const auto& lists = m_store.lists(subType);
            for (int p = 0; p < m_store.listCount(subType); ++p) {
                std::string key = GroupEntryKey(subType, p);
                rows.emplace_back(key, ItemText(lists.at(size_t(p)).name, key));
            }
        } else {
            // Every channel of the sub type, in the order of their names.
            const AlphaTable& table = m_store.alpha(SubTypeFromListCode(m_listType).value());
            rows.reserve(size_t(ValidCount(table.count)));
            for (int i = 0; i < table.count; ++i) {
                std::string key = ChannelKey(table.numbers.at(size_t(i)));
                rows.emplace_back(key, ItemText(table.names.at(size_t(i)), key));
            }
        }
    } catch (...) {
        m_channels->setItems(Items(rows));
        throw;
    }
    m_channels->setItems(Items(rows));
}

void DisplayListEditor::FillListAlphas() {
    const QSignalBlocker block(m_listAlphas);
    m_listAlphas->clear();
    QStringList names;
    for (int i = 0; i < m_itemCount; ++i) {
        names << ToQt(m_listType == kUserGroupListType ? m_groupNames.at(size_t(i))
                                                       : m_lists.at(size_t(i)).name);
    }
    m_listAlphas->addItems(names);
    if (m_currentIndex < 0 || m_currentIndex >= m_listAlphas->count())
        throw std::out_of_range("no list at position " + std::to_string(m_currentIndex));
    m_listAlphas->setCurrentIndex(m_currentIndex);
    ShowListAlpha(m_listAlphas->itemText(m_currentIndex));
}

void DisplayListEditor::ShowListAlpha(const QString& name) {
    // A name from the server module may be longer than the 16 characters a
    // typed one holds: the box shows all of it, so that showing it changes
    // nothing (the limit applies to what is typed or pasted).
    m_listAlpha->setMaxLength(std::max(int(kNameWidth), int(name.size())));
    m_listAlpha->setText(name);
}

void DisplayListEditor::FillList() {
    std::vector<std::pair<std::string, std::string>> rows;
    if (m_listType == kUserGroupListType) {
        const UserGroup& group = m_groups.at(size_t(m_currentIndex));
        const SubType subType = SubTypeFromListCode(m_store.currentListType).value();
        const auto& lists = m_store.lists(subType);
        for (const int16_t p : GroupEntriesOfType(group, m_store.currentListType)) {
            const bool known = p >= 0 && p < m_store.listCount(subType) && size_t(p) < lists.size();
            std::string key = GroupEntryKey(subType, p);
            rows.emplace_back(key, ItemText(known ? lists[size_t(p)].name : "*Invalid*", key));
        }
    } else {
        const DisplayList& list = m_lists.at(size_t(m_currentIndex));
        const SubType subType = SubTypeFromListCode(m_listType).value();
        rows.reserve(size_t(ValidCount(list.channelCount)));
        for (int k = 0; k < list.channelCount; ++k) {
            const int channel = list.channels.at(size_t(k));
            std::string key = ChannelKey(channel);
            rows.emplace_back(key, ItemText(ChannelAlpha(m_store, subType, channel).value(), key));
        }
    }
    m_listItems->setItems(Items(rows));
}

void DisplayListEditor::SetModeCaptions() {
    const bool groups = m_listType == kUserGroupListType;
    m_subTypeFrame->setEnabled(groups);
    m_masterListLabel->setText(groups ? "Available Lists" : "Available Channels");
    m_currentListLabel->setText(groups ? "Selected Lists" : "Selected Channels");
    m_listLabel->setText(groups ? "Current Group" : "Current List");
    m_listAlphaLabel->setText(groups ? "Current Group Label" : "Current List Label");
    m_new->setText(groups ? "New User" : "New List");
    if (groups) {
        if (const auto subType = SubTypeFromListCode(m_store.currentListType))
            m_subTypeButtons[static_cast<size_t>(*subType)]->setChecked(true);
    }
}

bool DisplayListEditor::KeyExists(const QString& key) const {
    return m_listItems->containsKey(key);
}

void DisplayListEditor::CommitEditedList() {
    if (m_currentIndex < 0 || m_currentIndex >= m_itemCount) {
        // Opening lets an index equal to the count through: there is no record
        // to take the edits. They are dropped, once reported, so that the
        // editor can still be switched and closed.
        m_changed = false;
        throw std::out_of_range("no list at position " + std::to_string(m_currentIndex));
    }
    const auto at = size_t(m_currentIndex);
    std::vector<int16_t> numbers;
    numbers.reserve(static_cast<size_t>(m_listItems->items().size()));
    for (const ListItemModel::Item& item : m_listItems->items()) {
        const QByteArray key = item.key.toLatin1();
        numbers.push_back(
            static_cast<int16_t>(KeyEntryNumber(std::string_view(key.constData(), key.size()))));
    }
    if (numbers.size() > static_cast<size_t>(INT16_MAX))
        throw std::out_of_range("too many items in the list");

    if (m_listType == kUserGroupListType) {
        // The shown sub type's entries take their old places in the group;
        // entries of the other sub types stay where they were.
        UserGroup& group = m_groups.at(at);
        if (const Status replaced = ReplaceGroupEntries(group, m_store.currentListType, numbers);
            !replaced)
            throw std::out_of_range(replaced.failure().detail);
        // An unchanged record is not written back: the store keeps its own
        // copy, so a commit of nothing changes nothing.
        if (!SameGroup(group, m_store.groups.userGroups.at(at)) ||
            m_groupNames.at(at) != m_store.groups.userGroupNames.at(at)) {
            m_storeChanged = true;
            m_store.groups.userGroups = m_groups;
            m_store.groups.userGroupNames = m_groupNames;
        }
    } else {
        DisplayList& list = m_lists.at(at);
        list.channelCount = static_cast<int16_t>(numbers.size());
        list.channels = numbers.empty() ? std::vector<int16_t>{0} : std::move(numbers);
        const SubType subType = SubTypeFromListCode(m_listType).value();
        if (!SameList(list, m_store.lists(subType).at(at))) {
            m_storeChanged = true;
            m_store.lists(subType) = m_lists;
        }
    }
    LoadWorkingCopy();
    m_changed = false;
}

void DisplayListEditor::CommitIfChanged() {
    if (m_changed)
        CommitEditedList();
}

void DisplayListEditor::ListTypeClicked(int item) {
    if (BusyFlag::IsSet() || item < 0 || item >= static_cast<int>(kListTypes.size()))
        return;
    // A rename still in the name box belongs to the list being left (the box
    // keeps the focus when the wheel turns a drop-down).
    ApplyListAlpha();
    if (!Guarded(m_reporter, "Error Changing List Type", "List Error", [&] {
            CommitIfChanged();
            const BusyFlag::Scope busy;
            m_listType = kListTypes[static_cast<size_t>(item)];
            m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
            if (m_listType == kUserGroupListType)
                m_store.currentListType = ListTypeCode(SubType::Input);
            if (m_currentIndex > m_itemCount - 1)
                m_currentIndex = 0;
            UpdateDisplays();
        }))
        ShowListType();
}

void DisplayListEditor::ListAlphasClicked(int item) {
    if (BusyFlag::IsSet() || item < 0)
        return;
    ApplyListAlpha();
    if (!Guarded(m_reporter, "Error Changing Current List", "List Error", [&] {
            const BusyFlag::Scope busy;
            CommitIfChanged();
            m_currentIndex = static_cast<int16_t>(item);
            ShowListAlpha(m_listAlphas->itemText(item));
            FillList();
        })) {
        // The box shows the list being edited.
        const BusyFlag::Scope busy;
        m_listAlphas->setCurrentIndex(m_currentIndex);
    }
}

void DisplayListEditor::SubTypeClicked(int listTypeCode) {
    if (BusyFlag::IsSet())
        return;
    ApplyListAlpha();
    Guarded(m_reporter, "Error Changing Sub Type", "List Error", [&] {
        CommitIfChanged();
        const BusyFlag::Scope busy;
        m_store.currentListType = static_cast<int16_t>(listTypeCode);
        UpdateDisplays();
    });
}

void DisplayListEditor::Add() {
    AddItems(false);
}

void DisplayListEditor::AddAll() {
    AddItems(true);
}

void DisplayListEditor::AddItems(bool all) {
    Guarded(m_reporter, all ? "Error Adding All Items" : "Error Adding item", "List Error", [&] {
        // The shown items (all of them unless a filter narrows them), in item order.
        QList<int> rows;
        if (all) {
            rows.resize(m_channelFilter->rowCount());
            std::iota(rows.begin(), rows.end(), 0);
        } else {
            rows = SelectedRows(m_channelView);
        }
        const QList<ListItemModel::Item>& available = m_channels->items();
        QList<ListItemModel::Item> added;
        for (const int row : rows) {
            const int source = m_channelFilter->mapToSource(m_channelFilter->index(row, 0)).row();
            const ListItemModel::Item& item = available.at(source);
            if (!KeyExists(item.key))
                added.push_back(item);
        }
        m_listItems->appendItems(added);
        if (!added.isEmpty())
            m_listView->scrollToBottom(); // where the added items are
        m_changed = true;
    });
}

void DisplayListEditor::Remove() {
    Guarded(m_reporter, "Error Removing Item", "List Error", [&] {
        m_listItems->removeItemsAt(SelectedRows(m_listView));
        m_changed = true;
    });
}

void DisplayListEditor::RemoveAll() {
    Guarded(m_reporter, "Error Removing All Items", "List Error", [&] {
        m_listItems->clear();
        m_changed = true;
    });
}

void DisplayListEditor::MoveSelection(int delta) {
    const QList<int> rows = SelectedRows(m_listView);
    if (rows.isEmpty())
        return;
    SelectRows(m_listView, m_listItems->moveItemsBy(rows, delta));
    m_changed = true;
}

void DisplayListEditor::SelectRows(QTreeView* view, const QList<int>& rows) {
    QItemSelection selection;
    for (const int row : rows)
        selection.select(view->model()->index(row, 0), view->model()->index(row, 1));
    if (!rows.isEmpty())
        view->selectionModel()->setCurrentIndex(view->model()->index(rows.front(), 0),
                                                QItemSelectionModel::NoUpdate);
    view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty())
        view->scrollTo(view->model()->index(rows.front(), 0));
}

void DisplayListEditor::NewList() {
    ApplyListAlpha();
    Guarded(m_reporter, "Error Adding New List", "List Error", [&] {
        CommitIfChanged();
        const bool groups = m_listType == kUserGroupListType;
        // A group name fills the 16 characters: two trailing blanks.
        m_currentIndex = static_cast<int16_t>(
            AppendRecord(m_store, m_listType, groups ? "New User Group  " : "New Display List")
                .value());
        m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
        m_storeChanged = true;
        UpdateDisplays();
    });
}

void DisplayListEditor::ApplyListAlpha() {
    Guarded(m_reporter, "Error processing List Alpha", "File Error", [&] {
        if (m_currentIndex < 0 || m_currentIndex >= m_itemCount)
            return; // no record to take the name
        std::string& name = m_listType == kUserGroupListType
                                ? m_groupNames.at(size_t(m_currentIndex))
                                : m_lists.at(size_t(m_currentIndex)).name;
        std::string text = FromQt(m_listAlpha->text());
        if (text == name)
            return; // shown, not edited: a long name stays whole
        // A rename is a change of the edited list: it is committed with it.
        // An edited name holds at most 16 characters.
        text.resize(std::min(text.size(), kNameWidth));
        name = std::move(text);
        m_changed = true;
        const QString shown = ToQt(name);
        ShowListAlpha(shown);
        const QSignalBlocker block(m_listAlphas);
        m_listAlphas->setItemText(m_currentIndex, shown);
    });
}

void DisplayListEditor::CopyList() {
    // A menu takes the focus from the name box without the box being left:
    // a rename typed there is applied first, or the refresh after the copy
    // would put the stored name back.
    ApplyListAlpha();
    Guarded(m_reporter, "Error Copying List", "List Error", [&] {
        // The copy works on the store: pending changes go there first.
        CommitIfChanged();
        if (!m_duplicate) {
            m_duplicate = new DuplicateDisplayListDialog(m_store, m_reporter, this);
            connect(m_duplicate, &DuplicateDisplayListDialog::copied, this, [this] {
                if (m_stepHook)
                    m_stepHook();
            });
        }
        m_duplicate->setMode(m_listType);
        m_duplicate->LoadDisplayLists();
        if (m_stepHook)
            m_stepHook();
        m_duplicate->exec();
        if (m_stepHook)
            m_stepHook();
        m_storeChanged = m_storeChanged || m_duplicate->copies() > 0;
        m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
        UpdateDisplayLists();
    });
}

void DisplayListEditor::ExportCrosspointMap() {
    ApplyListAlpha();
    if (!Guarded(m_reporter, "Error Exporting Display Lists", "File Error", [&] {
            // The map is written from the store: pending changes go there first.
            CommitIfChanged();
        }))
        return;
    const QString title = QStringLiteral("Save Crosspoint Map");
    FileDialog::Request request;
    request.title = title;
    request.folder = QString::fromStdString(m_folder);
    request.presetName = kCrosspointMapFileName;
    request.nameFilters = {QStringLiteral("CSV Files (*.csv)"), QStringLiteral("All Files (*.*)")};
    const QString path = FileDialog::GetFileName(this, request);
    if (path.isEmpty())
        return;
    if (QFileInfo::exists(path) &&
        MessageBox::Show(
            this, QFileInfo(path).fileName() + " already exists.\nDo you want to replace it?",
            title, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    const Status saved = SaveCrosspointMap(QFile::encodeName(path).toStdString(), m_store);
    if (!saved && m_reporter)
        m_reporter("Error Exporting Display Lists", "File Error", saved.failure());
}

void DisplayListEditor::CloseEditor() {
    ApplyListAlpha(); // as if the name box were left
    if (!Guarded(m_reporter, "Error Closing List Form", "List Error", [&] { CommitIfChanged(); }))
        return;
    m_channels->clear();
    m_listItems->clear();
    done(QDialog::Accepted);
}

bool DisplayListEditor::Shows(Part part) const {
    if (!isVisible())
        return false;
    if (m_listType == kUserGroupListType) {
        const auto shown = SubTypeFromListCode(m_store.currentListType);
        return part == Part::UserGroups || (shown && part == ListsPart(*shown));
    }
    const auto subType = SubTypeFromListCode(m_listType);
    return subType && (part == ListsPart(*subType) || part == AlphasPart(*subType));
}

void DisplayListEditor::PartArriving(Part part) {
    if (!Shows(part))
        return;
    ApplyListAlpha();
    Guarded(m_reporter, "Error Updating Display Lists", "List Error", [&] { CommitIfChanged(); });
}

void DisplayListEditor::PartReplaced(Part part) {
    if (!Shows(part))
        return;
    Guarded(m_reporter, "Error Updating Display Lists", "List Error", [&] {
        const BusyFlag::Scope busy;
        m_itemCount = static_cast<int16_t>(RecordCount(m_store, m_listType).value());
        if (m_currentIndex > m_itemCount - 1)
            m_currentIndex = 0;
        m_changed = false;
        UpdateDisplays();
    });
}

void DisplayListEditor::reject() {
    // Escape and the close box close the editor as cmdClose does.
    CloseEditor();
}

bool DisplayListEditor::DropOnList(const QMimeData* data, const QPoint& at) {
    const QList<int> rows = ListItemModel::RowsFromMimeData(data);
    if (rows.isEmpty())
        return false;
    const QModelIndex target = m_listView->indexAt(at);
    int destination = m_listItems->rowCount();
    if (target.isValid())
        destination = target.row() + (at.y() >= m_listView->visualRect(target).center().y());
    SelectRows(m_listView, m_listItems->moveItemsTo(rows, destination));
    m_changed = true;
    return true;
}

bool DisplayListEditor::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_listView->viewport() && event->type() == QEvent::Drop) {
        auto* drop = static_cast<QDropEvent*>(event);
        if (!DropOnList(drop->mimeData(), drop->position().toPoint()))
            return false;
        // The rows are already in place: the drop is reported as moving
        // nothing, so that the view does not remove the dragged rows.
        drop->setDropAction(Qt::IgnoreAction);
        drop->accept();
        return true;
    }
    if (watched == m_listAlpha && event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            ApplyListAlpha();
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);

    const auto* key = static_cast<QKeyEvent*>(event);
    const bool enter = IsEnter(key);
    if (watched == m_listAlpha) {
        if (enter) {
            ApplyListAlpha();
            return true;
        }
        // Escape is the box's own key, as typed: it leaves the text as it is
        // and does not reach the dialog, which would close the editor.
        if (key->key() == Qt::Key_Escape)
            return true;
        // Names are at most 16 characters: a typed character is refused once
        // the box holds 16. Backspace and editing keys pass.
        return TypedCharacter(key) && size_t(m_listAlpha->text().size()) >= kNameWidth;
    }
    if (watched == m_channelView && enter) {
        Add();
        return true;
    }
    if (watched == m_listView) {
        if (key->key() == Qt::Key_Delete) {
            Remove();
            return true;
        }
        if (key->modifiers() & Qt::ControlModifier &&
            (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
            MoveSelection(key->key() == Qt::Key_Up ? -1 : 1);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace lumeth
