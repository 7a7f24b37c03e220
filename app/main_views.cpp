#include "app/main_views.h"

#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QRadioButton>
#include <QTreeWidget>

#include <new>
#include <stdexcept>

#include "app/drill_down_tree.h"
#include "model/channel_alpha.h"
#include "model/number_text.h"
#include "model/view_keys.h"
#include "ui/fixed_pitch_font.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

constexpr std::array<int16_t, 4> kListTypeCodes{11, 21, 31, 41};

SubType SubTypeOrThrow(int listTypeCode) {
    const auto subType = SubTypeFromListCode(listTypeCode);
    if (!subType)
        throw std::out_of_range("list type code " + std::to_string(listTypeCode));
    return *subType;
}

template <typename T> const T& At(const std::vector<T>& values, int index) {
    if (index < 0)
        throw std::out_of_range("index " + std::to_string(index));
    return values.at(static_cast<size_t>(index));
}

template <typename View>
View* MakeView(QWidget* parent, const char* name, const QStringList& headers) {
    auto* view = new View(parent);
    view->setObjectName(name);
    view->setColumnCount(static_cast<int>(headers.size()));
    view->setHeaderLabels(headers);
    view->setRootIsDecorated(false);
    view->setUniformRowHeights(true); // lets long channel lists lay out in constant time
    view->setSortingEnabled(false);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setAllColumnsShowFocus(true);
    // Key columns start wide enough for the longest keys (sizing them to their
    // contents would measure every row on each redraw); the operator may
    // widen them, and the window remembers it.
    QHeaderView* header = view->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    const int keyWidth = view->fontMetrics().horizontalAdvance(QStringLiteral("Lst.0000")) + 16;
    for (int column = 1; column < view->columnCount(); ++column) {
        header->setSectionResizeMode(column, QHeaderView::Interactive);
        header->resizeSection(column, keyWidth);
    }
    return view;
}

} // namespace

void BuildGroupRows(const PanelStore& store, std::vector<ViewRow>& rows) {
    for (int i = 0; i < store.groups.userGroupCount; ++i) {
        ViewRow row;
        row.key = GroupKey(At(store.groups.userGroupIndex, i));
        row.text = At(store.groups.userGroupNames, i);
        rows.push_back(std::move(row));
    }
}

void BuildGroupListRows(const PanelStore& store, int group, std::vector<ViewRow>& rows) {
    const UserGroup& entries = At(store.groups.userGroups, group);
    for (int k = 0; k < entries.listCount; ++k) {
        const int16_t type = At(entries.listTypes, k);
        if (type != store.currentListType)
            continue;
        const int position = At(entries.listIndexes, k);
        const DisplayList& list = At(store.lists(SubTypeOrThrow(type)), position);
        rows.push_back({ListKey(position), list.name, std::to_string(type)});
    }
}

bool BuildListItemRows(const PanelStore& store, int list, std::vector<ViewRow>& rows) {
    const auto subType = SubTypeFromListCode(store.currentListType);
    if (!subType)
        return false;
    const DisplayList& members = At(store.lists(*subType), list);
    rows.reserve(rows.size() + static_cast<size_t>(std::max<int>(members.channelCount, 0)));
    for (int k = 0; k < members.channelCount; ++k) {
        const int channel = At(members.channels, k);
        std::string key = ChannelKey(channel);
        std::string text = ItemText(ChannelAlpha(store, *subType, channel).value(), key);
        rows.push_back({std::move(key), std::move(text), {}});
    }
    return true;
}

int16_t SubTypeForGroup(const PanelStore& store, int group) {
    const UserGroup& entries = At(store.groups.userGroups, group);
    for (const int16_t wanted : kListTypeCodes) {
        for (int k = 0; k < entries.listCount; ++k) {
            if (At(entries.listTypes, k) == wanted)
                return wanted;
        }
    }
    return kListTypeCodes[0];
}

MainViews::MainViews(PanelStore& store, Reporter reporter, QWidget* parent)
    : QObject(parent), m_store(store), m_reporter(std::move(reporter)) {
    auto* groups = MakeView<DrillDownTree>(parent, "lvGroups", {"User Group", "Key"});
    auto* lists =
        MakeView<DrillDownTree>(parent, "lvDisplayLists", {"Display List", "Key", "Type"});
    m_groups = groups;
    m_lists = lists;
    m_lists->setColumnHidden(2, true); // the ListTypeCode is for the handlers only
    m_items = MakeView<QTreeWidget>(parent, "lvItems", {"Channel", "Key"});
    m_items->setColumnHidden(1, true); // the text already ends in the key
    // Channel names are blank-padded to one width: in a fixed-pitch font the
    // "(Ch.nnnn)" keys after them line up.
    UseFixedPitchFont(m_items);
    m_items->setSelectionMode(QAbstractItemView::NoSelection);
    // lvItems only shows channels: activating an item (Enter, double-click)
    // hands the focus to the display lists. Tab still passes through it.
    connect(m_items, &QTreeWidget::itemActivated, this,
            [this] { m_lists->setFocus(Qt::OtherFocusReason); });

    const char* captions[3] = {"User Groups", "Display Lists", "Items"};
    for (int i = 0; i < 3; ++i) {
        auto* label = new QLabel(captions[i], parent);
        label->setObjectName(QStringLiteral("lblLists_%1").arg(i));
        label->setProperty("controlArray", "lblLists");
        label->setProperty("controlIndex", i);
        m_captions[static_cast<size_t>(i)] = label;
    }
    m_captions[0]->setBuddy(m_groups);
    m_captions[1]->setBuddy(m_lists);

    m_subTypeFrame = new QGroupBox(parent);
    m_subTypeFrame->setObjectName("frSubType");
    m_subTypeFrame->setEnabled(false); // until a group is shown
    auto* row = new QHBoxLayout(m_subTypeFrame);
    row->setContentsMargins(6, 2, 6, 2);
    // One sub type is shown at a time; ShowGroupData checks its button and
    // clears the others. The buttons are not auto-exclusive: Qt would then
    // make only the checked one a Tab stop, and Tab is to reach all four.
    for (size_t i = 0; i < kListTypeCodes.size(); ++i) {
        const int code = kListTypeCodes[i];
        auto* button = new QRadioButton(SubTypeName(kAllSubTypes[i]), m_subTypeFrame);
        button->setObjectName(QStringLiteral("optSubType_%1").arg(code));
        button->setProperty("controlArray", "optSubType");
        button->setProperty("controlIndex", code);
        button->setAutoExclusive(false);
        row->addWidget(button);
        m_subTypeButtons[i] = button;
        connect(button, &QRadioButton::clicked, this, [this, code] { SubTypeClicked(code); });
    }
    row->addStretch(1);

    connect(m_groups, &QTreeWidget::itemClicked, this, &MainViews::GroupClicked);
    connect(m_groups, &QTreeWidget::itemDoubleClicked, this, &MainViews::GroupDoubleClicked);
    connect(m_lists, &QTreeWidget::itemClicked, this, &MainViews::ListClicked);
    connect(m_lists, &QTreeWidget::itemDoubleClicked, this, &MainViews::ListDoubleClicked);
    // The keyboard drills down as the mouse does: moving to an item is its
    // click, Enter its double-click.
    connect(groups, &DrillDownTree::keyboardMoved, this, &MainViews::GroupClicked);
    connect(groups, &DrillDownTree::enterPressed, this, &MainViews::GroupDoubleClicked);
    connect(lists, &DrillDownTree::keyboardMoved, this, &MainViews::ListClicked);
    connect(lists, &DrillDownTree::enterPressed, this, &MainViews::ListDoubleClicked);
}

QRadioButton* MainViews::subTypeButton(int listTypeCode) const {
    for (size_t i = 0; i < kListTypeCodes.size(); ++i) {
        if (kListTypeCodes[i] == listTypeCode)
            return m_subTypeButtons[i];
    }
    return nullptr;
}

QString MainViews::ItemKey(const QTreeWidgetItem* item) {
    return item ? item->data(0, Qt::UserRole).toString() : QString();
}

void MainViews::Fill(QTreeWidget* view, const std::vector<ViewRow>& rows, bool withType) {
    if (rows.empty())
        return;
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const ViewRow& row : rows) {
        const QString key = QString::fromLatin1(row.key);
        QStringList texts{ToQt(row.text), key};
        if (withType)
            texts << QString::fromLatin1(row.typeCode);
        auto* item = new QTreeWidgetItem(texts);
        item->setData(0, Qt::UserRole, key);
        items.push_back(item);
    }
    view->setUpdatesEnabled(false);
    view->addTopLevelItems(items);
    view->setUpdatesEnabled(true);
}

void MainViews::Report(std::string_view location, const std::exception& error) {
    if (m_reporter)
        m_reporter(location, "Display Error", FailureFromException(error));
}

void MainViews::ClearAll() {
    m_groups->clear();
    m_lists->clear();
    m_items->clear();
}

void MainViews::DisplayUserGroups() {
    m_groups->clear();
    std::vector<ViewRow> rows;
    try {
        BuildGroupRows(m_store, rows);
        Fill(m_groups, rows, false);
    } catch (const std::exception& error) {
        Fill(m_groups, rows, false);
        Report("Error Loading Group Alphas", error);
    }
}

void MainViews::ShowGroupData(int group) {
    m_items->clear();
    m_captions[2]->setText("Items");
    m_lists->clear();
    m_subTypeFrame->setEnabled(true);
    std::vector<ViewRow> rows;
    try {
        BuildGroupListRows(m_store, group, rows);
        Fill(m_lists, rows, true);
        m_captions[1]->setText("Display Lists in " +
                               ToQt(At(m_store.groups.userGroupNames, group)));
        QRadioButton* button = subTypeButton(m_store.currentListType);
        if (!button)
            throw std::out_of_range("no sub type button " +
                                    std::to_string(m_store.currentListType));
        for (QRadioButton* other : m_subTypeButtons)
            other->setChecked(other == button);
    } catch (const std::exception& error) {
        if (m_lists->topLevelItemCount() == 0)
            Fill(m_lists, rows, true);
        Report("Error Loading Group Items", error);
    }
}

void MainViews::ShowDisplayListData(int list) {
    m_items->clear();
    std::vector<ViewRow> rows;
    try {
        if (!BuildListItemRows(m_store, list, rows))
            return;
        Fill(m_items, rows, false);
        const auto& lists = m_store.lists(SubTypeOrThrow(m_store.currentListType));
        m_captions[2]->setText("Items in " + ToQt(At(lists, list).name));
    } catch (const std::exception& error) {
        if (m_items->topLevelItemCount() == 0)
            Fill(m_items, rows, false);
        Report("Error Loading Group Items", error);
    }
}

void MainViews::DetermineSubType() {
    m_store.currentListType = ListTypeCode(SubType::Input);
    try {
        m_store.currentListType = SubTypeForGroup(m_store, m_store.currentUserGroup);
    } catch (const std::exception& error) {
        Report("Error Determing Sub type", error);
    }
}

void MainViews::SelectFirstGroup() {
    if (QTreeWidgetItem* first = m_groups->topLevelItem(0))
        m_groups->setCurrentItem(first);
}

bool MainViews::TakeCurrentGroup() {
    QTreeWidgetItem* item = m_groups->currentItem();
    if (m_groups->topLevelItemCount() == 0 || !item)
        return false;
    m_store.currentUserGroup = static_cast<int16_t>(KeyNumber(ItemKey(item).toStdString()) - 1);
    m_store.editorListType = kUserGroupListType;
    return true;
}

void MainViews::GroupClicked() {
    if (!TakeCurrentGroup())
        return;
    DetermineSubType();
    ShowGroupData(m_store.currentUserGroup);
}

void MainViews::GroupDoubleClicked() {
    if (!TakeCurrentGroup())
        return;
    if (m_showListEditor)
        m_showListEditor();
    // The first group is shown after an edit, whichever was selected.
    DisplayUserGroups();
    m_store.currentUserGroup = 0;
    ShowGroupData(0);
}

void MainViews::ListClicked() {
    QTreeWidgetItem* item = m_lists->currentItem();
    if (m_lists->topLevelItemCount() == 0 || !item)
        return;
    m_store.currentList = static_cast<int16_t>(KeyNumber(ItemKey(item).toStdString()));
    m_store.editorListType = static_cast<int16_t>(LeadingNumber(item->text(2).toStdString()));
    ShowDisplayListData(m_store.currentList);
}

void MainViews::ListDoubleClicked() {
    if (m_lists->topLevelItemCount() == 0 || !m_lists->currentItem())
        return;
    ListClicked();
    if (m_showListEditor)
        m_showListEditor();
    ShowDisplayListData(m_store.currentList);
}

void MainViews::SubTypeClicked(int listTypeCode) {
    m_store.currentListType = static_cast<int16_t>(listTypeCode);
    ShowGroupData(m_store.currentUserGroup);
}

} // namespace lumeth
