// The window as a person drives it from the keyboard and reads it: drill-down
// by keys and Enter, the status panels in each link state, the login's
// password echo and the window layout kept between runs.
#include <QApplication>
#include <QDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStatusBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QTreeWidget>

#include <memory>

#include "app/main_views.h"
#include "app/main_window.h"
#include "files/panel_data_file.h"
#include "link/protocol.h"
#include "tests/gui/gui_support.h"
#include "tests/support/store_builders.h"
#include "ui/elided_label.h"
#include "ui/file_dialog.h"

using namespace lumeth;
using test::Child;

class DesktopUseTest : public QObject {
    Q_OBJECT
    QTemporaryDir m_home;

private slots:
    void keysDrillDownAsTheMouseDoes_data() {
        QTest::addColumn<QString>("view");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("number"); // the group or list the handler ran for; -1 none
        // Group 0 lists Lst.001 above Lst.000.
        QTest::newRow("group down") << "lvGroups" << 0 << int(Qt::Key_Down) << 1;
        QTest::newRow("group end") << "lvGroups" << 0 << int(Qt::Key_End) << 2;
        QTest::newRow("group typed") << "lvGroups" << 0 << int(Qt::Key_N) << 1;
        QTest::newRow("group up at top") << "lvGroups" << 0 << int(Qt::Key_Up) << -1;
        QTest::newRow("group enter") << "lvGroups" << 2 << int(Qt::Key_Return) << 2;
        QTest::newRow("list down") << "lvDisplayLists" << 0 << int(Qt::Key_Down) << 0;
        QTest::newRow("list enter") << "lvDisplayLists" << 1 << int(Qt::Key_Enter) << 0;
    }
    void keysDrillDownAsTheMouseDoes() {
        QFETCH(QString, view);
        QFETCH(int, start);
        QFETCH(int, key);
        QFETCH(int, number);
        const bool editor = key == Qt::Key_Return || key == Qt::Key_Enter; // the double-click
        PanelStore store;
        store.listCount(SubType::Input) = 2;
        store.lists(SubType::Input) = {test::List("Mics", {0}), test::List("Players", {1})};
        store.groups.userGroupCount = 3;
        store.groups.userGroupNames = {"Studio A", "Newsroom", "Tally"};
        store.groups.userGroups = {test::Group({{1, 11}, {0, 11}}), test::Group({{0, 11}}),
                                   test::Group({{1, 11}})};
        store.groups.userGroupIndex = {0, 1, 2};
        QWidget host;
        MainViews views(store, {}, &host);
        int16_t& state = view == "lvGroups" ? store.currentUserGroup : store.currentList;
        int edits = 0, seen = -1;
        views.setListEditor([&] {
            ++edits;
            seen = state;
        });
        views.DisplayUserGroups();
        views.ShowGroupData(0);
        host.show();
        auto* tree = Child<QTreeWidget>(&host, view);
        tree->setCurrentItem(tree->topLevelItem(start)); // in code: no handler runs
        state = -1;
        tree->setFocus();
        QTest::keyClick(tree, Qt::Key(key),
                        key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        QCOMPARE(edits, editor ? 1 : 0);
        QCOMPARE(editor ? seen : int(state), number);
    }

    void tabWalksTheMainWindowInReadingOrder() {
        MainWindow window((m_home.path() + "/").toStdString());
        PanelStore& store = window.store();
        store.listCount(SubType::Input) = 1;
        store.lists(SubType::Input) = {test::List("Mics", {0, 1})};
        store.groups.userGroupCount = 1;
        store.groups.userGroupNames = {"Studio A"};
        store.groups.userGroups = {test::Group({{0, 11}})};
        store.groups.userGroupIndex = {0};
        window.views().DisplayUserGroups();
        window.views().ShowGroupData(0);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.views().groups()->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), window.views().groups());
        const QStringList expected{"optSubType_11", "optSubType_21",  "optSubType_31",
                                   "optSubType_41", "lvDisplayLists", "lvItems",
                                   "cmdEditGroups", "cmdEditLists",   "cmdEditButtons",
                                   "cmdSend",       "cmdCancel",      "lvGroups"};
        QStringList walked;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            walked << QApplication::focusWidget()->objectName();
        }
        QCOMPARE(walked, expected);
    }
    void statusPanelsFollowTheLinkAndLoginEchoesStars() {
        QTcpServer silent; // accepts and never answers
        QVERIFY(silent.listen(QHostAddress::LocalHost, 0));
        QVERIFY(test::WriteServerSettings(m_home.path() + "/", silent.serverPort()));
        MainWindow window((m_home.path() + "/").toStdString());
        window.Start();
        window.show();
        window.resize(1024, 560);
        auto* link = Child<QLabel>(&window, "stbStatus_1");
        auto* progress = qobject_cast<ElidedLabel*>(Child<QLabel>(&window, "stbStatus_2"));
        QVERIFY(progress);
        QTRY_COMPARE(link->text(), QString("Server Module Connected"));

        QTRY_VERIFY(window.findChild<QDialog*>("frmLogin"));
        auto* login = Child<QDialog>(&window, "frmLogin");
        QCOMPARE(login->minimumSize(), login->maximumSize());
        auto* password = Child<QLineEdit>(login, "txtPassword");
        QTest::keyClicks(password, "studio");
        QCOMPARE(password->displayText(), QString("******"));

        // Everything outstanding: cut at 1024 px, whole in text() and the tooltip,
        // with room for messages left of the panels.
        window.link().pendingA = kRequestEverything.a;
        window.link().pendingC = kRequestEverything.c;
        QTRY_VERIFY(progress->text().startsWith("Receiving: password, Input channel names"));
        QTRY_VERIFY(progress->isElided());
        QHelpEvent help(QEvent::ToolTip, {4, 4}, progress->mapToGlobal(QPoint(4, 4)));
        QApplication::sendEvent(progress, &help);
        QCOMPARE(QToolTip::text(), progress->text());
        QVERIFY2(link->x() >= 1024 / 4, qPrintable(QString::number(link->x())));

        // The link drops with the requests still marked: nothing is received.
        QTRY_VERIFY(silent.hasPendingConnections());
        std::unique_ptr<QTcpSocket> peer(silent.nextPendingConnection());
        silent.close();
        peer->close();
        QTRY_COMPARE(link->text(), QString("Server Module Not Connected"));
        QVERIFY(window.link().AnyPending());
        QTRY_COMPARE(progress->text(), QString("Link lost"));
        QCOMPARE(window.statusBar()->currentMessage(),
                 QString("Lost the link to the server module."));
        window.setUnappliedChanges(true);
        QCOMPARE(progress->text(), QString("Link lost - Unapplied changes"));
        QTRY_VERIFY(!progress->isElided());
    }
    // The counts panel follows what the window holds: a loaded file, the sub
    // type shown, an undo; the tooltip counts every sub type.
    void countsFollowTheStore() {
        PanelStore file;
        file.listCount(SubType::Input) = 1;
        file.lists(SubType::Input) = {test::List("Mics", {0, 1})};
        file.listCount(SubType::Output) = 2;
        file.lists(SubType::Output) = {test::List("Outs", {0}), test::List("Cue", {})};
        file.groups.userGroupCount = 1;
        file.groups.userGroupNames = {"Studio A"};
        file.groups.userGroups = {test::Group({{0, 11}, {1, 21}})};
        const QString path = m_home.filePath("counts.dat");
        QVERIFY(SavePanelDataFile(path.toStdString(), file).ok());

        MainWindow window((m_home.path() + "/").toStdString());
        window.show();
        auto* counts = Child<QLabel>(&window, "lblCounts");
        window.store().alpha(SubType::Input).count = 12; // channel names stay as downloaded
        FileDialog::setNextFileName(path);
        window.LoadAll();
        QCOMPARE(counts->text(), QString("Input: 12 channels, 1 list; 1 user group; 0 templates"));
        QTest::mouseClick(Child<QRadioButton>(&window, "optSubType_21"), Qt::LeftButton);
        QCOMPARE(counts->text(), QString("Output: 0 channels, 2 lists; 1 user group; 0 templates"));
        QCOMPARE(counts->toolTip(),
                 QString("Input: 12 channels, 1 list\nOutput: 0 channels, 2 lists\n"
                         "Opto: 0 channels, 0 lists\nRelay: 0 channels, 0 lists\n"
                         "1 user group; 0 templates"));
        window.Undo();
        QCOMPARE(counts->text(),
                 QString("Output: 0 channels, 0 lists; 0 user groups; 0 templates"));
    }
};

QTEST_MAIN(DesktopUseTest)
#include "test_desktop_use.moc"
