// Deleting and moving whole lists, groups and templates from the editors,
// each one undo step with the group references kept right, and the
// where-used reports of the editors and the main window.
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

#include "app/main_views.h"
#include "app/main_window.h"
#include "model/store_check.h"
#include "tests/gui/gui_support.h"
#include "tests/support/store_builders.h"
#include "ui/message_box.h"

using namespace lumeth;

namespace {

using namespace lumeth::test;

// Input lists Mics {0, 1}, Players {2}, Spare {}; Output Monitors {0};
// groups Studio A {In Mics, Out Monitors, In Players}, Newsroom {In Players};
// templates Host, News, Spare with Host's first key on Input channel 2.
PanelStore Facility() {
    PanelStore store;
    store.ResetToDefaults();
    AlphaTable& inputs = store.alpha(SubType::Input);
    inputs.count = 3;
    inputs.channelNames = inputs.names = {"MIC 1", "MIC 2", "CD"};
    inputs.numbers = inputs.positionOf = {0, 1, 2};
    store.listCount(SubType::Input) = 3;
    store.lists(SubType::Input) = {List("Mics", {0, 1}), List("Players", {2}), List("Spare", {})};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output) = {List("Monitors", {0})};
    store.groups.Resize(2);
    store.groups.userGroupCount = 2;
    store.groups.userGroupNames = {"Studio A", "Newsroom"};
    store.groups.userGroups = {Group({{0, 11}, {0, 21}, {1, 11}}), Group({{1, 11}})};
    store.groups.userGroupIndex = store.groups.userGroupNumber = {0, 1};
    store.templates.Resize(3);
    store.templates.templateCount = 3;
    store.templates.templateNames = {"Host", "News", "Spare"};
    store.templates.templateIndex = store.templates.templatePosition = {0, 1, 2};
    ButtonTemplate& host = store.templates.buttonTemplates[0];
    host.buttonCount = kTemplateButtons;
    host.buttons.assign(kTemplateButtons, PanelButton::Cleared());
    host.buttons[0].type = 40; // Source Select
    host.buttons[0].channel = 2;
    return store;
}

} // namespace

class RecordMovesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_home;
    std::unique_ptr<MainWindow> m_window;

    PanelStore& Store() { return m_window->store(); }
    // The report a where-used action shows, once it is up.
    QString WhereUsedText(QAction* action) {
        QString text;
        WhenModal("frmWhereUsed", [&](QWidget* dialog) {
            text = Child<QPlainTextEdit>(dialog, "txtWhereUsed")->toPlainText();
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdClose"), Qt::LeftButton);
        });
        action->trigger();
        return text;
    }

private slots:
    void init() {
        m_window = std::make_unique<MainWindow>((m_home.path() + "/").toStdString());
        Store() = Facility();
        m_window->views().DisplayUserGroups();
        m_window->views().ShowGroupData(0);
        MessageBox::clearQueuedAnswers();
        MessageBox::clearHistory();
    }
    void cleanup() { m_window.reset(); }

    void moveAndDeleteListsAskingNamingTheGroupsOneStepEach() {
        Store().editorListType = 11;
        Store().currentList = 1;
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            // Down and back up: the editor follows the list.
            auto* lists = Child<QComboBox>(editor, "cmbListAlphas");
            Child<QAction>(editor, "mnuMoveListDown")->trigger();
            QCOMPARE(lists->currentIndex(), 2);
            QCOMPARE(Store().groups.userGroups[1], Group({{2, 11}}));
            Child<QAction>(editor, "mnuMoveListUp")->trigger();
            QCOMPARE(lists->currentText(), QString("Players"));

            auto* remove = Child<QAction>(editor, "mnuDeleteList");
            MessageBox::setNextAnswer(QMessageBox::No);
            remove->trigger();
            QCOMPARE(MessageBox::history().size(), size_t(1));
            QCOMPARE(MessageBox::history().back().title, QString("Delete List"));
            QCOMPARE(MessageBox::history().back().text,
                     QString("Delete Input Lst.001 \"Players\"?\n\nThese user groups hold it "
                             "and will no longer:\nGr.001 \"Studio A\"\nGr.002 \"Newsroom\""));
            QCOMPARE(Store().listCount(SubType::Input), int16_t(3));

            MessageBox::setNextAnswer(QMessageBox::Yes);
            remove->trigger();
            // The editor stays on the list that took the deleted one's place.
            QCOMPARE(lists->count(), 2);
            QCOMPARE(lists->currentText(), QString("Spare"));
            // A list no group uses goes without a question.
            remove->trigger();
            QCOMPARE(MessageBox::history().size(), size_t(2));
            QCOMPARE(lists->count(), 1);
            QCOMPARE(lists->currentText(), QString("Mics"));
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window.get(), "cmdEditLists"), Qt::LeftButton);

        QCOMPARE(Store().listCount(SubType::Input), int16_t(1));
        QCOMPARE(Store().groups.userGroups[0], Group({{0, 11}, {0, 21}}));
        QCOMPARE(Store().groups.userGroups[1], Group({}));
        QVERIFY(!HasErrors(CheckStore(Store(), false)));
        // The views show the groups as they now are: Studio A holds one Input list.
        QCOMPARE(m_window->views().displayLists()->topLevelItemCount(), 1);

        // Each delete was one step.
        m_window->Undo();
        QCOMPARE(Store().listCount(SubType::Input), int16_t(2));
        QCOMPARE(Store().lists(SubType::Input)[1].name, std::string("Spare"));
        m_window->Undo();
        QCOMPARE(Store().groups, Facility().groups);
        QCOMPARE(Store().displayLists, Facility().displayLists);
    }

    void templatesDeleteAndMoveAsOneStepEach() {
        WhenModal("frmButtons", [&](QWidget* editor) {
            QTest::mouseClick(Child<QPushButton>(editor, "cmdNav_3"), Qt::LeftButton); // News
            Child<QAction>(editor, "mnuMoveTemplateUp")->trigger();
            QCOMPARE(Child<QLineEdit>(editor, "txtTemplateNumber")->text(), QString("01"));
            QCOMPARE(Child<QLineEdit>(editor, "txtTemplateName")->text(), QString("News"));
            Child<QAction>(editor, "mnuMoveTemplateDown")->trigger();
            Child<QAction>(editor, "mnuDeleteTemplate")->trigger();
            QCOMPARE(Child<QLineEdit>(editor, "txtTemplateName")->text(), QString("Spare"));
            Child<QAction>(editor, "mnuExit")->trigger();
        });
        Child<QAction>(m_window.get(), "mnuButtons")->trigger();
        QCOMPARE(Store().templates.templateNames, (std::vector<std::string>{"Host", "Spare"}));
        QCOMPARE(Store().templates.templatePosition, (std::vector<int16_t>{0, 1}));
        m_window->Undo();
        QCOMPARE(Store().templates.templateNames,
                 (std::vector<std::string>{"Host", "News", "Spare"}));
    }

    void whereUsedInTheEditorsAndTheViews() {
        const QString channelUses = "Input Ch.0003 \"CD\" is used in 2 places:\n"
                                    "  Input Lst.001 \"Players\"\n"
                                    "  template 01 \"Host\" Btn 1";
        Store().editorListType = 11;
        Store().currentList = 1;
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            auto* selected = Child<QTreeView>(editor, "lvList");
            selected->setCurrentIndex(selected->model()->index(0, 0));
            QCOMPARE(WhereUsedText(Child<QAction>(editor, "mnuWhereUsedSelected")), channelUses);
            // Without a current item: the edited list.
            selected->setCurrentIndex({});
            selected->setFocus();
            QCOMPARE(WhereUsedText(Child<QAction>(editor, "mnuWhereUsed")),
                     QString("Input Lst.001 \"Players\" is used in 2 places:\n"
                             "  Gr.001 \"Studio A\"\n  Gr.002 \"Newsroom\""));
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window.get(), "cmdEditLists"), Qt::LeftButton);

        WhenModal("frmButtons", [&](QWidget* editor) {
            QCOMPARE(WhereUsedText(Child<QAction>(editor, "mnuWhereUsed")), channelUses);
            Child<QAction>(editor, "mnuExit")->trigger();
        });
        Child<QAction>(m_window.get(), "mnuButtons")->trigger();

        MainViews& views = m_window->views();
        Store().currentListType = 11;
        views.ShowDisplayListData(1);
        views.items()->setCurrentItem(views.items()->topLevelItem(0));
        QCOMPARE(WhereUsedText(Child<QAction>(m_window.get(), "mnuWhereUsedChannel")), channelUses);
    }
};

QTEST_MAIN(RecordMovesTest)
#include "test_record_moves.moc"
