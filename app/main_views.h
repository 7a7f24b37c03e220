#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

class QGroupBox;
class QLabel;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;

namespace lumeth {

// One row of a view: its key, its text and, for display lists, the
// ListTypeCode as decimal text.
struct ViewRow {
    std::string key;
    std::string text;
    std::string typeCode;
};

// The rows of the three views, computed from the store. Each appends to `rows`
// and throws std::out_of_range on a position beyond the store's arrays, so a
// caller keeps the rows built up to the fault.
void BuildGroupRows(const PanelStore& store, std::vector<ViewRow>& rows);
void BuildGroupListRows(const PanelStore& store, int group, std::vector<ViewRow>& rows);
// Returns false when CurrentListType names no sub type (nothing to show).
bool BuildListItemRows(const PanelStore& store, int list, std::vector<ViewRow>& rows);
// The sub type to show for a group: Input if the group holds any Input list,
// else Output, Opto, Relay in that order of preference; Input for an empty group.
int16_t SubTypeForGroup(const PanelStore& store, int group);

// The main window's drill-down: user groups (lvGroups), the selected group's
// display lists of one sub type (lvDisplayLists) and the selected list's
// channels (lvItems), with the optSubType buttons and the lblLists captions.
// The views hold no data beyond their items; every item carries its key.
class MainViews : public QObject {
    Q_OBJECT
public:
    using Reporter = std::function<void(std::string_view location, std::string_view category,
                                        const Failure& failure)>;

    // Creates the widgets as children of `parent`; the window lays them out.
    MainViews(PanelStore& store, Reporter reporter, QWidget* parent);

    // The list editor, shown modally by the double-click handlers.
    void setListEditor(std::function<void()> showListEditor) {
        m_showListEditor = std::move(showListEditor);
    }

    // The four redraw operations. Each reports its own failure and leaves the
    // views as far as they were built.
    void DisplayUserGroups();
    void ShowGroupData(int group);
    void ShowDisplayListData(int list);
    void DetermineSubType();

    // Empty all three views (start-up).
    void ClearAll();
    // Select the first item of lvGroups, if there is one.
    void SelectFirstGroup();

    // The view handlers, as the widgets' signals call them.
    void GroupClicked();
    void GroupDoubleClicked();
    void ListClicked();
    void ListDoubleClicked();
    void SubTypeClicked(int listTypeCode);

    QTreeWidget* groups() const { return m_groups; }
    QTreeWidget* displayLists() const { return m_lists; }
    QTreeWidget* items() const { return m_items; }
    QLabel* caption(int index) const { return m_captions.at(static_cast<size_t>(index)); }
    QGroupBox* subTypeFrame() const { return m_subTypeFrame; }
    QRadioButton* subTypeButton(int listTypeCode) const;
    const std::array<QRadioButton*, 4>& subTypeButtons() const { return m_subTypeButtons; }

    // The key stored with a view item.
    static QString ItemKey(const QTreeWidgetItem* item);

protected:
private:
    void Report(std::string_view location, const std::exception& error);
    // The group of the current item becomes the current user group and the
    // editor's mode; false when there is none.
    bool TakeCurrentGroup();
    static void Fill(QTreeWidget* view, const std::vector<ViewRow>& rows, bool withType);

    PanelStore& m_store;
    Reporter m_reporter;
    std::function<void()> m_showListEditor;

    QTreeWidget* m_groups = nullptr;
    QTreeWidget* m_lists = nullptr;
    QTreeWidget* m_items = nullptr;
    std::array<QLabel*, 3> m_captions{};
    QGroupBox* m_subTypeFrame = nullptr;
    std::array<QRadioButton*, 4> m_subTypeButtons{};
};

} // namespace lumeth
