// The display list and user group editor, its duplicate dialog and the
// crosspoint export, driven through their controls; and what the main window
// shows after the editor has closed. No network: the stores are made here.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

#include <memory>

#include "app/main_views.h"
#include "app/main_window.h"
#include "model/alpha_sort.h"
#include "model/list_records.h"
#include "tests/gui/gui_support.h"
#include "tests/support/store_builders.h"
#include "ui/display_list_editor.h"
#include "ui/file_dialog.h"
#include "ui/list_item_model.h"
#include "ui/message_box.h"

using namespace lumeth;

namespace {

using test::Child;
using test::Group;
using test::List;
using test::WhenModal;

// Input channels MIC 1, MIC 2, CD, PHONE (listed by name: CD, MIC 1, MIC 2,
// PHONE); Output PGM, AUX.
PanelStore Facility() {
    PanelStore store;
    BuildAlphaTable(store.alpha(SubType::Input), {"MIC 1", "MIC 2", "CD", "PHONE"});
    BuildAlphaTable(store.alpha(SubType::Output), {"PGM", "AUX"});
    store.listCount(SubType::Input) = 4;
    store.lists(SubType::Input) = {List("Mics", {0, 1}), List("Players         ", {2}),
                                   List("Mics(2)", {}), List("Long List Name", {3})};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output) = {List("Monitors", {0})};
    store.listCount(SubType::Opto) = 1;
    store.lists(SubType::Opto) = {List("Lights", {})};
    store.listCount(SubType::Relay) = 1;
    store.lists(SubType::Relay) = {List("Tally", {})};
    store.groups.userGroupCount = 2;
    store.groups.userGroupNames = {"Studio A", "Newsroom"};
    store.groups.userGroups = {Group({{0, 11}, {0, 21}, {1, 11}}), Group({{0, 31}})};
    store.groups.userGroupIndex = {0, 1};
    store.groups.userGroupNumber = {0, 1};
    return store;
}

QStringList Column(QTreeView* view, int column = 1) {
    QStringList texts;
    for (int row = 0; row < view->model()->rowCount(); ++row)
        texts << view->model()->index(row, column).data().toString();
    return texts;
}

void Select(QTreeView* view, const QList<int>& rows) {
    view->selectionModel()->clearSelection();
    for (int row : rows)
        view->selectionModel()->select(view->model()->index(row, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

std::vector<int16_t> Channels(const DisplayList& list) {
    return {list.channels.begin(), list.channels.begin() + list.channelCount};
}

} // namespace

class ListEditorTest : public QObject {
    Q_OBJECT

private:
    PanelStore m_store;
    std::vector<std::string> m_reports;
    std::unique_ptr<QTemporaryDir> m_home;
    DisplayListEditor* m_editor = nullptr;

    QString Folder() const { return m_home->path() + "/"; }
    QTreeView* Available() { return Child<QTreeView>(m_editor, "lvChannel"); }
    QTreeView* Selected() { return Child<QTreeView>(m_editor, "lvList"); }
    QComboBox* ListAlphas() { return Child<QComboBox>(m_editor, "cmbListAlphas"); }
    QLineEdit* ListAlpha() { return Child<QLineEdit>(m_editor, "txtListAlpha"); }
    void Click(const char* name) {
        QTest::mouseClick(Child<QPushButton>(m_editor, name), Qt::LeftButton);
    }

    void Open(int16_t listType, int16_t index, int16_t currentListType = 11) {
        m_store.editorListType = listType;
        m_store.currentListType = currentListType;
        (listType == kUserGroupListType ? m_store.currentUserGroup : m_store.currentList) = index;
        m_editor->show(); // loads the editor
        m_editor->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_editor));
    }

private slots:
    void init() {
        m_store = Facility();
        m_reports.clear();
        m_home = std::make_unique<QTemporaryDir>();
        m_editor =
            new DisplayListEditor(m_store, Folder().toStdString(),
                                  [this](std::string_view location, std::string_view,
                                         const Failure&) { m_reports.emplace_back(location); });
        MessageBox::clearQueuedAnswers();
        MessageBox::clearHistory();
        FileDialog::clearQueuedNames();
    }

    void cleanup() {
        delete m_editor;
        m_editor = nullptr;
    }

    void addRemoveAndTheDuplicateGuard() {
        Open(11, 0);
        QCOMPARE(m_editor->windowTitle(), QString("Edit Views"));
        QCOMPARE(Column(Available(), 0), QStringList({"CD (Ch.0003)", "MIC 1 (Ch.0001)",
                                                      "MIC 2 (Ch.0002)", "PHONE (Ch.0004)"}));
        QCOMPARE(Column(Selected()), QStringList({"Ch.0001", "Ch.0002"}));

        Select(Available(), {3, 1}); // PHONE, and MIC 1 which is already there
        Click("cmdAdd");
        QCOMPARE(Column(Selected()), QStringList({"Ch.0001", "Ch.0002", "Ch.0004"}));
        QCOMPARE(Child<QLabel>(m_editor, "lblListCount")->text(), QString("3 channels"));
        QVERIFY(m_editor->isChanged());
        QVERIFY(m_store.lists(SubType::Input)[0].channelCount == 2); // not committed yet
        const QPoint cd = Available()->visualRect(Available()->model()->index(0, 0)).center();
        QTest::mouseClick(Available()->viewport(), Qt::LeftButton, {}, cd);
        QTest::mouseDClick(Available()->viewport(), Qt::LeftButton, {}, cd);
        QCOMPARE(Column(Selected()), QStringList({"Ch.0001", "Ch.0002", "Ch.0004", "Ch.0003"}));

        Select(Selected(), {0, 2});
        Click("cmdRemove");
        QCOMPARE(Column(Selected()), QStringList({"Ch.0002", "Ch.0003"}));
        Click("cmdAddAll"); // adds what is missing, in the available order
        QCOMPARE(Column(Selected()), QStringList({"Ch.0002", "Ch.0003", "Ch.0001", "Ch.0004"}));
        Click("cmdClose");
        QVERIFY(!m_editor->isVisible());
        QCOMPARE(Channels(m_store.lists(SubType::Input)[0]), std::vector<int16_t>({1, 2, 0, 3}));
        QVERIFY(m_editor->storeChanged());

        Open(11, 0);
        QVERIFY(!m_editor->storeChanged());
        Click("cmdRemoveAll");
        QCOMPARE(Selected()->model()->rowCount(), 0);
        QCOMPARE(Child<QLabel>(m_editor, "lblListCount")->text(), QString("0 channels"));
        Child<QAction>(m_editor, "mnuExit")->trigger();
        QCOMPARE(m_store.lists(SubType::Input)[0].channelCount, int16_t(0));
        QVERIFY(!m_store.lists(SubType::Input)[0].channels.empty());
        QVERIFY(m_reports.empty());
    }

    void namesAreSixteenCharactersAndRenamesAreCommitted() {
        Open(11, 1);
        QCOMPARE(ListAlpha()->text(), QString("Players         "));
        ListAlpha()->setFocus();
        ListAlpha()->clear();
        QTest::keyClicks(ListAlpha(), "ABCDEFGHIJKLMNOPQ");
        QCOMPARE(ListAlpha()->text(), QString("ABCDEFGHIJKLMNOP"));
        QTest::keyClick(ListAlpha(), Qt::Key_Backspace);
        QTest::keyClicks(ListAlpha(), "Z");
        QCOMPARE(ListAlpha()->text(), QString("ABCDEFGHIJKLMNOZ"));
        QTest::keyClick(ListAlpha(), Qt::Key_Return);
        QVERIFY(m_editor->isVisible()); // Enter is the name box's, not a default button's
        QCOMPARE(ListAlphas()->itemText(1), QString("ABCDEFGHIJKLMNOZ"));
        QVERIFY(m_editor->isChanged());
        QCOMPARE(m_store.lists(SubType::Input)[1].name, std::string("Players         "));

        // Choosing another list commits the rename; the refresh keeps it.
        ListAlphas()->setCurrentIndex(0);
        QCOMPARE(m_store.lists(SubType::Input)[1].name, std::string("ABCDEFGHIJKLMNOZ"));
        QCOMPARE(ListAlphas()->itemText(1), QString("ABCDEFGHIJKLMNOZ"));
        QCOMPARE(m_editor->currentIndex(), int16_t(0));
        QCOMPARE(ListAlpha()->text(), QString("Mics"));

        // Leaving the box renames as Enter does; a list type change commits it.
        ListAlpha()->setFocus();
        ListAlpha()->setText("Vocals");
        Selected()->setFocus();
        QCOMPARE(ListAlphas()->itemText(0), QString("Vocals"));
        Child<QComboBox>(m_editor, "cmbListType")->setCurrentIndex(1);
        QCOMPARE(m_store.lists(SubType::Input)[0].name, std::string("Vocals"));
        QVERIFY(m_editor->storeChanged());

        // A menu takes the focus without the box being left: the copy still
        // starts from the renamed list, and its refresh keeps the name.
        ListAlpha()->setFocus();
        ListAlpha()->setText("Mains");
        WhenModal("frmDuplicateDisplayList", [](QWidget* dialog) { dialog->close(); });
        Child<QAction>(m_editor, "mnuCopy")->trigger();
        QCOMPARE(m_store.lists(SubType::Output)[0].name, std::string("Mains"));
        QCOMPARE(ListAlpha()->text(), QString("Mains"));
        QApplication::clipboard()->setText("ABCDEFGHIJKLMNOPQRST"); // a paste is cut to 16
        QTest::keyClick(ListAlpha(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(ListAlpha()->text(), QString("MainsABCDEFGHIJK"));
    }

    void escapeInTheNameBoxIsTyped() {
        Open(11, 0);
        ListAlpha()->setFocus();
        QTest::keyClicks(ListAlpha(), "XY");
        QTest::keyClick(ListAlpha(), Qt::Key_Escape);
        QVERIFY(m_editor->isVisible());
        QCOMPARE(ListAlpha()->text(), QString("MicsXY"));
        QCOMPARE(m_store.lists(SubType::Input)[0].name, std::string("Mics"));
        // Escape elsewhere still closes the editor, committing the name.
        QTest::keyClick(Selected(), Qt::Key_Escape);
        QVERIFY(!m_editor->isVisible());
        QCOMPARE(m_store.lists(SubType::Input)[0].name, std::string("MicsXY"));
    }

    void browsingLeavesLongNamesWhole() {
        // Names from the server module may be longer than a typed one.
        const std::string list(20, 'L');
        const std::string group = "Group Of Twenty Char";
        m_store.lists(SubType::Input)[3].name = list;
        m_store.groups.userGroupNames[1] = group;
        const PanelStore opened = m_store;
        auto* listTypes = Child<QComboBox>(m_editor, "cmbListType");
        Open(11, 3);
        QCOMPARE(ListAlpha()->text(), QString::fromStdString(list));
        ListAlpha()->setFocus();
        ListAlphas()->setCurrentIndex(0);
        ListAlphas()->setCurrentIndex(3);
        Click("cmdAdd"); // nothing selected: nothing added
        listTypes->setCurrentIndex(4);
        ListAlphas()->setCurrentIndex(1);
        QCOMPARE(ListAlpha()->text(), QString::fromStdString(group));
        ListAlpha()->setFocus();
        Child<QRadioButton>(m_editor, "optSubType_31")->click();
        listTypes->setCurrentIndex(0);
        Click("cmdClose");
        QVERIFY(!m_editor->storeChanged());
        for (const SubType s : kAllSubTypes)
            QVERIFY(m_store.lists(s) == opened.lists(s));
        QVERIFY(m_store.groups == opened.groups);

        // An edit applies the 16-character rule: no typing past it, and the
        // edited name is cut.
        Open(11, 3);
        ListAlpha()->setFocus();
        ListAlpha()->end(false);
        QTest::keyClicks(ListAlpha(), "X");
        QCOMPARE(ListAlpha()->text(), QString::fromStdString(list));
        QTest::keyClick(ListAlpha(), Qt::Key_Backspace);
        QTest::keyClick(ListAlpha(), Qt::Key_Return);
        QCOMPARE(ListAlpha()->text(), QString(16, 'L'));
        Click("cmdClose");
        QCOMPARE(m_store.lists(SubType::Input)[3].name, std::string(16, 'L'));
        QVERIFY(m_editor->storeChanged());
        QVERIFY(m_reports.empty());
    }

    void newRecords_data() {
        QTest::addColumn<int>("listType");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("caption");
        QTest::newRow("input list") << 11 << "New Display List"
                                    << "New List";
        QTest::newRow("relay list") << 41 << "New Display List"
                                    << "New List";
        QTest::newRow("user group") << 83 << "New User Group  "
                                    << "New User";
    }
    void newRecords() {
        QFETCH(int, listType);
        QFETCH(QString, name);
        QFETCH(QString, caption);
        const auto type = static_cast<int16_t>(listType);
        const int count =
            type == kUserGroupListType ? 2 : m_store.listCount(*SubTypeFromListCode(type));
        Open(type, 0);
        auto* create = Child<QPushButton>(m_editor, "cmndNew");
        QCOMPARE(create->text(), caption);
        Click("cmdRemoveAll"); // pending: committed before the new record is added
        QTest::mouseClick(create, Qt::LeftButton);

        QCOMPARE(m_editor->currentIndex(), int16_t(count));
        QCOMPARE(m_editor->itemCount(), int16_t(count + 1));
        QCOMPARE(ListAlphas()->currentText(), name);
        QCOMPARE(ListAlpha()->text(), name);
        QCOMPARE(Selected()->model()->rowCount(), 0);
        QVERIFY(m_editor->storeChanged());
        if (type == kUserGroupListType) {
            QCOMPARE(m_store.groups.userGroupCount, int16_t(count + 1));
            QCOMPARE(m_store.groups.userGroupNames.size(), size_t(count + 1));
            QCOMPARE(m_store.groups.userGroupNames.back(), name.toStdString());
            QCOMPARE(m_store.groups.userGroups.back().listCount, int16_t(0));
            QCOMPARE(m_store.groups.userGroupIndex.back(), int16_t(count));
            QCOMPARE(m_store.groups.userGroupNumber.back(), int16_t(count));
            QCOMPARE(GroupEntriesOfType(m_store.groups.userGroups[0], 11).size(), size_t(0));
        } else {
            const SubType subType = *SubTypeFromListCode(type);
            QCOMPARE(m_store.listCount(subType), int16_t(count + 1));
            QCOMPARE(m_store.lists(subType).back().name, name.toStdString());
            QCOMPARE(m_store.lists(subType).back().channelCount, int16_t(0));
            QCOMPARE(m_store.lists(subType)[0].channelCount, int16_t(0));
        }
    }

    void openingAndSwitchingResetTheIndex_data() {
        QTest::addColumn<int>("startType");
        QTest::addColumn<int>("startIndex");
        QTest::addColumn<int>("openedIndex");
        QTest::addColumn<int>("item"); // cmbListType item chosen; -1: none
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("currentListType");
        // Opening lets an index equal to the count through; a switch does not.
        QTest::newRow("open at count") << 11 << 4 << 4 << -1 << 4 << 31;
        QTest::newRow("open output at count") << 21 << 1 << 1 << -1 << 1 << 31;
        QTest::newRow("open beyond count") << 11 << 5 << 0 << -1 << 0 << 31;
        QTest::newRow("open negative") << 83 << -1 << 0 << -1 << 0 << 31;
        QTest::newRow("input 3 to output") << 11 << 3 << 3 << 1 << 0 << 31;
        QTest::newRow("input 0 to output") << 11 << 0 << 0 << 1 << 0 << 31;
        QTest::newRow("input 1 to groups") << 11 << 1 << 1 << 4 << 1 << 11;
        QTest::newRow("input 2 to groups") << 11 << 2 << 2 << 4 << 0 << 11;
        QTest::newRow("group 1 to inputs") << 83 << 1 << 1 << 0 << 1 << 31;
    }
    void openingAndSwitchingResetTheIndex() {
        QFETCH(int, startType);
        QFETCH(int, startIndex);
        QFETCH(int, openedIndex);
        QFETCH(int, item);
        QFETCH(int, index);
        QFETCH(int, currentListType);
        Open(static_cast<int16_t>(startType), static_cast<int16_t>(startIndex), 31);
        QCOMPARE(m_editor->currentIndex(), int16_t(openedIndex));
        QCOMPARE(m_editor->listType(), int16_t(startType));
        auto* listTypes = Child<QComboBox>(m_editor, "cmbListType");
        QCOMPARE(listTypes->currentIndex(), startType == 83 ? 4 : startType / 10 - 1);
        if (item < 0) {
            QCOMPARE(m_reports.empty(), openedIndex < m_editor->itemCount());
            if (startType == 11 && openedIndex == 4) { // no list there: no edit can be committed
                Click("cmdAddAll");
                listTypes->setCurrentIndex(1);
                QCOMPARE(m_reports.back(), std::string("Error Changing List Type"));
                QCOMPARE(listTypes->currentIndex(), 0);
                QCOMPARE(m_store.listCount(SubType::Input), int16_t(4));
                listTypes->setCurrentIndex(1); // reported once: the editor is not stuck
                QCOMPARE(m_editor->listType(), int16_t(21));
            }
            return;
        }
        const std::string before = startType == 83
                                       ? m_store.groups.userGroupNames[size_t(startIndex)]
                                       : m_store.lists(SubType::Input)[size_t(startIndex)].name;
        ListAlpha()->setText("Switched");
        QTest::keyClick(ListAlpha(), Qt::Key_Return);
        listTypes->setCurrentIndex(item);
        QCOMPARE(m_editor->currentIndex(), int16_t(index));
        QCOMPARE(m_store.currentListType, int16_t(currentListType));
        QCOMPARE(Child<QPushButton>(m_editor, "cmndNew")->text(),
                 QString(item == 4 ? "New User" : "New List"));
        QCOMPARE(Child<QLabel>(m_editor, "lblMasterList")->text(),
                 QString(item == 4 ? "Available Lists" : "Available Channels"));
        QCOMPARE(Child<QWidget>(m_editor, "frSubType")->isEnabled(), item == 4);
        // The edited record was committed before the switch.
        QCOMPARE(startType == 83 ? m_store.groups.userGroupNames[size_t(startIndex)]
                                 : m_store.lists(SubType::Input)[size_t(startIndex)].name,
                 std::string("Switched"));
        QVERIFY(before != "Switched");
        QVERIFY(m_reports.empty());
    }

    void groupModeEditsTheGroupsEntries() {
        Open(kUserGroupListType, 0, 11);
        QCOMPARE(Child<QLabel>(m_editor, "lblList")->text(), QString("Current Group"));
        QVERIFY(Child<QRadioButton>(m_editor, "optSubType_11")->isChecked());
        QCOMPARE(Column(Available(), 0),
                 QStringList({"Mics (Input.0001)", "Players          (Input.0002)",
                              "Mics(2) (Input.0003)", "Long List Name (Input.0004)"}));
        QCOMPARE(Column(Selected()), QStringList({"Input.0001", "Input.0002"}));
        Select(Selected(), {0});
        QTest::keyClick(Selected(), Qt::Key_Delete);
        Select(Available(), {2, 3});
        QTest::keyClick(Available(), Qt::Key_Return);
        QCOMPARE(Column(Selected()), QStringList({"Input.0002", "Input.0003", "Input.0004"}));
        QCOMPARE(Child<QLabel>(m_editor, "lblListCount")->text(), QString("3 lists"));

        // Another sub type commits first; the Output entry keeps its place.
        QTest::mouseClick(Child<QRadioButton>(m_editor, "optSubType_21"), Qt::LeftButton);
        QCOMPARE(m_store.currentListType, int16_t(21));
        QCOMPARE(Column(Selected()), QStringList({"Output.0001"}));
        QCOMPARE(Column(Available(), 0), QStringList({"Monitors (Output.0001)"}));
        Click("cmdClose");

        // The Input entries in their new order, the Output entry in its place.
        QCOMPARE(m_store.groups.userGroups[0], Group({{1, 11}, {0, 21}, {2, 11}, {3, 11}}));
        QCOMPARE(m_store.groups.userGroups[1], Facility().groups.userGroups[1]);
    }

    void duplicateNames_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to"); // -1: "New List" / "New Group"
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<int>("copiedTo");
        QTest::newRow("input counted") << 11 << 0 << -1
                                       << QStringList({"Mics", "Players         ", "Mics(2)",
                                                       "Long List Name", "Mics(3)", "Mics(4)"})
                                       << 4;
        QTest::newRow("input padded name")
            << 11 << 1 << -1
            << QStringList({"Mics", "Players         ", "Mics(2)", "Long List Name", "Players(2)",
                            "Players(3)"})
            << 4;
        QTest::newRow("input 14 characters")
            << 11 << 3 << -1
            << QStringList({"Mics", "Players         ", "Mics(2)", "Long List Name",
                            "Long List Name", "Long List Name"})
            << 4;
        QTest::newRow("output plain")
            << 21 << 0 << -1 << QStringList({"Monitors", "Monitors(2)", "Monitors(2)"}) << 1;
        QTest::newRow("group counted")
            << 83 << 0 << -1 << QStringList({"Studio A", "Newsroom", "Studio A(2)", "Studio A(3)"})
            << 2;
        QTest::newRow("existing target")
            << 11 << 0 << 1
            << QStringList({"Mics", "Players         ", "Mics(2)", "Long List Name"}) << 1;
    }
    void duplicateNames() {
        QFETCH(int, mode);
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QStringList, names);
        QFETCH(int, copiedTo);
        Open(static_cast<int16_t>(mode), 0);
        const int count = m_editor->itemCount();
        bool checked = false;
        WhenModal("frmDuplicateDisplayList", [&](QWidget* dialog) {
            QCOMPARE(dialog->windowTitle(), QString("Duplicate Display List"));
            auto* source = Child<QComboBox>(dialog, "cmbListAlphas_0");
            auto* target = Child<QComboBox>(dialog, "cmbListAlphas_1");
            QCOMPARE(target->count(), count + 1);
            QCOMPARE(target->itemText(count), QString(mode == 83 ? "New Group" : "New List"));
            QCOMPARE(Child<QRadioButton>(dialog, "optSubType_1")->isChecked(), mode == 21);
            for (int copy = 0; copy < 2; ++copy) { // the lists are reloaded after each
                source->setCurrentIndex(from);
                target->setCurrentIndex(to < 0 ? target->count() - 1 : to);
                QTest::mouseClick(Child<QPushButton>(dialog, "cmdCopy"), Qt::LeftButton);
                QCOMPARE(target->currentIndex(), 0);
            }
            checked = true;
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
        });
        Child<QAction>(m_editor, "mnuCopy")->trigger();
        QVERIFY(checked);

        QStringList stored;
        for (int i = 0; i < RecordCount(m_store, static_cast<int16_t>(mode)).value(); ++i)
            stored << QString::fromStdString(
                RecordName(m_store, static_cast<int16_t>(mode), i).value());
        QCOMPARE(stored, names);
        QCOMPARE(ListAlphas()->count(), names.size()); // the editor refreshed
        QVERIFY(m_editor->storeChanged());
        if (mode == 83) {
            QCOMPARE(m_store.groups.userGroups[size_t(copiedTo)].listCount, int16_t(3));
            QCOMPARE(m_store.groups.userGroupNumber[size_t(copiedTo)], int16_t(copiedTo));
        } else {
            const SubType subType = *SubTypeFromListCode(static_cast<int16_t>(mode));
            QCOMPARE(Channels(m_store.lists(subType)[size_t(copiedTo)]),
                     Channels(Facility().lists(subType)[size_t(from)]));
        }
    }

    void exportWritesTheCrosspointMap() {
        m_store.alpha(SubType::Input).names[1] = "MIC 1, \"A\"  ";
        m_store.lists(SubType::Input)[3].channels = {3, 9}; // 9 is beyond the 4 inputs
        m_store.lists(SubType::Input)[3].channelCount = 2;
        Open(11, 0);
        Click("cmdRemoveAll"); // pending: exported as committed
        const QString path = Folder() + "map.csv";
        FileDialog::setNextFileName(path);
        Child<QAction>(m_editor, "mnuExport")->trigger();
        const auto request = FileDialog::lastRequest();
        QVERIFY(request);
        QCOMPARE(request->title, QString("Save Crosspoint Map"));
        QCOMPARE(request->presetName, QString("CrosspointMap.csv"));
        QCOMPARE(request->nameFilters, QStringList({"CSV Files (*.csv)", "All Files (*.*)"}));
        const QByteArray expected = "sub_type,list,list_name,position,channel,key,channel_name\r\n"
                                    "Input,1,Players,1,2,Ch.0003,CD\r\n"
                                    "Input,3,Long List Name,1,3,Ch.0004,PHONE\r\n"
                                    "Input,3,Long List Name,2,9,Ch.0010,*Invalid*\r\n"
                                    "Output,0,Monitors,1,0,Ch.0001,PGM\r\n";
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), expected);
        file.close();

        // An existing file is replaced only after a Yes.
        m_store.lists(SubType::Input)[0] = List("Mics", {0});
        for (auto answer : {QMessageBox::No, QMessageBox::Yes}) {
            FileDialog::setNextFileName(path);
            MessageBox::setNextAnswer(answer);
            Child<QAction>(m_editor, "mnuExport")->trigger();
            QCOMPARE(MessageBox::history().back().title, QString("Save Crosspoint Map"));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll().contains("\"MIC 1, \"\"A\"\"\""), answer == QMessageBox::Yes);
            file.close();
        }
        QVERIFY(m_reports.empty());
        FileDialog::setNextFileName(Folder() + "missing/map.csv");
        Child<QAction>(m_editor, "mnuExport")->trigger();
        QCOMPARE(m_reports, std::vector<std::string>({"Error Exporting Display Lists"}));
    }

    void filterMoveDragAndKeys() {
        m_store.lists(SubType::Input)[0] = List("Mics", {});
        Open(11, 0);
        auto* filter = Child<QLineEdit>(m_editor, "txtFilter");
        QCOMPARE(filter->placeholderText(), QString("Filter"));
        QTest::keyClicks(filter, "mic");
        QCOMPARE(Column(Available()), QStringList({"Ch.0001", "Ch.0002"}));
        Click("cmdAddAll"); // adds the shown items only
        QCOMPARE(Column(Selected()), QStringList({"Ch.0001", "Ch.0002"}));
        filter->setText("CH.0004");
        QCOMPARE(Column(Available()), QStringList({"Ch.0004"}));
        auto* noMatch = Child<QLabel>(m_editor, "lblNoMatch");
        QVERIFY(noMatch->isHidden());
        filter->setText("xyz"); // hides everything: said under the empty view
        QCOMPARE(Column(Available()), QStringList());
        QVERIFY(!noMatch->isHidden());
        QCOMPARE(noMatch->text(), QString("No available items match \"xyz\""));
        filter->clear();
        QVERIFY(noMatch->isHidden());
        Click("cmdAddAll");
        QCOMPARE(Column(Selected()), QStringList({"Ch.0001", "Ch.0002", "Ch.0003", "Ch.0004"}));

        Select(Selected(), {0, 1});
        QTest::keyClick(Selected(), Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(Column(Selected()), QStringList({"Ch.0003", "Ch.0001", "Ch.0002", "Ch.0004"}));
        Click("cmdDown");
        Click("cmdDown"); // pressed against the end: stays
        QCOMPARE(Column(Selected()), QStringList({"Ch.0003", "Ch.0004", "Ch.0001", "Ch.0002"}));
        Select(Selected(), {1, 3});
        Click("cmdUp");
        QTest::keyClick(Selected(), Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(Column(Selected()), QStringList({"Ch.0004", "Ch.0002", "Ch.0003", "Ch.0001"}));

        // Rows dragged to below the last item.
        auto* model = qobject_cast<ListItemModel*>(Selected()->model());
        std::unique_ptr<QMimeData> data(model->mimeData({model->index(0, 0), model->index(1, 0)}));
        const QRect last = Selected()->visualRect(model->index(3, 0));
        QVERIFY(m_editor->DropOnList(data.get(), QPoint(last.center().x(), last.bottom() - 1)));
        QCOMPARE(Column(Selected()), QStringList({"Ch.0003", "Ch.0001", "Ch.0004", "Ch.0002"}));
        Click("cmdClose");
        QCOMPARE(Channels(m_store.lists(SubType::Input)[0]), std::vector<int16_t>({2, 0, 3, 1}));
        filter->setText("mic");
        Open(11, 0); // reopened with every channel available
        QCOMPARE(Available()->model()->rowCount(), 4);
    }

    void theMainWindowAfterTheEditorCloses() {
        MainWindow window(Folder().toStdString());
        window.store() = Facility();
        PanelStore& store = window.store();
        MainViews& views = window.views();
        views.DisplayUserGroups();
        views.ShowGroupData(0);
        window.show();
        auto progress = [&] { return Child<QLabel>(&window, "stbStatus_2")->text(); };

        // Lists from group mode reopen on Input list 0; an edit leaves
        // "Unapplied changes" and the group's lists on show.
        int16_t openedType = 0;
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            openedType = qobject_cast<DisplayListEditor*>(editor)->listType();
            QTest::mouseClick(Child<QPushButton>(editor, "cmdRemoveAll"), Qt::LeftButton);
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(&window, "cmdEditLists"), Qt::LeftButton);
        QCOMPARE(openedType, int16_t(11));
        QCOMPARE(store.lists(SubType::Input)[0].channelCount, int16_t(0));
        QCOMPARE(progress(), QString("Unapplied changes"));
        QCOMPARE(views.groups()->currentItem(), views.groups()->topLevelItem(0));
        QCOMPARE(views.displayLists()->topLevelItemCount(), 2);

        // Groups always reopen on the first; closing unchanged adds nothing.
        window.setUnappliedChanges(false);
        store.currentUserGroup = 1;
        int16_t openedGroup = -1;
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            openedGroup = qobject_cast<DisplayListEditor*>(editor)->currentIndex();
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        Child<QAction>(&window, "munUserGroups")->trigger();
        QCOMPARE(openedGroup, int16_t(0));
        QCOMPARE(store.editorListType, kUserGroupListType);
        QCOMPARE(progress(), QString());

        // A double-click opens the clicked group; the first is shown after.
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            auto* name = Child<QLineEdit>(editor, "txtListAlpha");
            name->setText("Renamed");
            QTest::keyClick(name, Qt::Key_Return);
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        const QRect second = views.groups()->visualItemRect(views.groups()->topLevelItem(1));
        QTest::mouseClick(views.groups()->viewport(), Qt::LeftButton, {}, second.center());
        QTest::mouseDClick(views.groups()->viewport(), Qt::LeftButton, {}, second.center());
        QCOMPARE(views.groups()->topLevelItem(1)->text(0), QString("Renamed"));
        QCOMPARE(Child<QLabel>(&window, "lblLists_1")->text(),
                 QString("Display Lists in Studio A"));
        QCOMPARE(progress(), QString("Unapplied changes"));

        // "Edit List" from the context menu: the views are redrawn after the
        // editor has committed.
        store.currentListType = 11;
        views.ShowGroupData(0);
        views.displayLists()->setCurrentItem(views.displayLists()->topLevelItem(1));
        views.ListClicked();
        QCOMPARE(store.currentList, int16_t(1));
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            QTest::qWait(30);
            Child<QLineEdit>(editor, "txtListAlpha")->setText("Edited In Editor");
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        auto* popup = Child<QMenu>(&window, "mnuPopup");
        const QRect list =
            views.displayLists()->visualItemRect(views.displayLists()->topLevelItem(1));
        const QRect first =
            views.displayLists()->visualItemRect(views.displayLists()->topLevelItem(0));
        QTest::mousePress(views.displayLists()->viewport(), Qt::RightButton, {}, first.center());
        QCOMPARE(views.displayLists()->currentItem(), views.displayLists()->topLevelItem(1));
        QTest::mouseRelease(views.displayLists()->viewport(), Qt::RightButton, {}, list.center());
        QTRY_VERIFY(popup->isVisible());
        auto* edit = Child<QAction>(&window, "mnuEdit");
        QTest::mouseClick(popup, Qt::LeftButton, {}, popup->actionGeometry(edit).center());
        QTRY_COMPARE(views.displayLists()->topLevelItem(1)->text(0), QString("Edited In Editor"));
    }
};

QTEST_MAIN(ListEditorTest)
#include "test_list_editor.moc"
