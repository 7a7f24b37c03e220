// The administrator window end to end, against the emulator running in this
// process on a free loopback port. Controls are found by their object names;
// message boxes and the file dialog are answered through their seams.
#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTcpServer>
#include <QTest>
#include <QTreeWidget>

#include "model/view_keys.h"
#include "tests/gui/window_session.h"
#include "ui/qt_text.h"

using namespace lumeth;

namespace {

using test::Child;
using test::Emulator;
using test::WhenModal;

// Types "é" and "€" (not plain ASCII), then `ascii`.
void TypeAccented(QLineEdit* edit, const QString& ascii) {
    for (const QString& accented : {QString(QChar(0xE9)), QString(QChar(0x20AC))}) {
        QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, accented, Qt::NoModifier);
    }
    QTest::keyClicks(edit, ascii);
}

QString Trimmed(const std::string& bytes) {
    return ToQt(bytes).trimmed();
}

int EntriesOfType(const UserGroup& group, int16_t type) {
    int count = 0;
    for (int k = 0; k < group.listCount; ++k)
        count += group.listTypes[static_cast<size_t>(k)] == type ? 1 : 0;
    return count;
}

void CheckLastMessage(const QString& title, const QString& text) {
    QVERIFY(!MessageBox::history().empty());
    QCOMPARE(MessageBox::history().back().title, title);
    QCOMPARE(MessageBox::history().back().text, text);
}

} // namespace

class AdminFlowsTest : public QObject, private test::EmulatorSession {
    Q_OBJECT

private:
    QDialog* Login() { return Child<QDialog>(m_window, "frmLogin"); }
    const PanelStore& Demo() const { return m_sim.state.store(); }
    QTreeWidget* Groups() { return m_window->views().groups(); }
    QTreeWidget* Lists() { return m_window->views().displayLists(); }
    QTreeWidget* Items() { return m_window->views().items(); }
    QString Ini() {
        QFile ini(Folder() + "kovadmin.ini");
        return ini.open(QIODevice::ReadOnly) ? QString::fromLatin1(ini.readAll()) : QString();
    }

    void StartWindow() {
        OpenWindow();
        QTRY_VERIFY(m_window->findChild<QDialog*>("frmLogin") && Login()->isVisible());
    }

    void TypeAndOk(const QString& password) {
        Child<QLineEdit>(Login(), "txtPassword")->setText(password);
        QTest::mouseClick(Child<QPushButton>(Login(), "cmdOk"), Qt::LeftButton);
    }

    void LogIn() {
        TypeAndOk(QString::fromStdString(m_sim.state.password()));
        QTRY_VERIFY(m_window->isEnabled());
        QVERIFY(!Login()->isVisible());
        QTRY_VERIFY(!m_window->link().AnyPending() &&
                    Groups()->topLevelItemCount() == Demo().groups.userGroupCount);
    }

    void CheckGroupsShown() {
        QCOMPARE(Groups()->topLevelItemCount(), Demo().groups.userGroupCount);
        for (int i = 0; i < Demo().groups.userGroupCount; ++i) {
            QCOMPARE(Groups()->topLevelItem(i)->text(0).trimmed(),
                     Trimmed(Demo().groups.userGroupNames[static_cast<size_t>(i)]));
        }
    }

    void ClickItem(QTreeWidget* view, int row, Qt::MouseButton button = Qt::LeftButton) {
        QTreeWidgetItem* item = view->topLevelItem(row);
        QVERIFY(item);
        const QPoint at = view->visualItemRect(item).center();
        QTest::mousePress(view->viewport(), button, {}, at);
        QTest::mouseRelease(view->viewport(), button, {}, at);
    }

private slots:
    void init() {
        BeginSession();
        QVERIFY(m_home->isValid());
        QVERIFY(StartEmulator());
    }
    void cleanup() { EndSession(); }

    void startUpReachesTheLoginOverADisabledWindow() {
        StartWindow();
        QCOMPARE(m_window->windowTitle(), QString("KOV Lumeth EX Administrator"));
        QVERIFY(!m_window->isEnabled());
        QVERIFY(Login()->isEnabled());
        QVERIFY(Login()->isModal());
        QCOMPARE(Login()->windowTitle(), QString("KOV Admin Panel Login"));
        QCOMPARE(Child<QLineEdit>(Login(), "txtAddress")->text(), QString("127.0.0.1"));
        QCOMPARE(Child<QLineEdit>(Login(), "txtPort")->text(), QString::number(m_sim.port()));
        QCOMPARE(Child<QLineEdit>(Login(), "txtPassword")->echoMode(), QLineEdit::Password);
        QCOMPARE(Login()->focusWidget(), Child<QLineEdit>(Login(), "txtPassword"));
        // A character the link cannot carry cannot be typed.
        TypeAccented(Child<QLineEdit>(Login(), "txtPassword"), "s");
        QCOMPARE(Child<QLineEdit>(Login(), "txtPassword")->text(), QString("s"));
        QTRY_COMPARE(Child<QLabel>(m_window, "stbStatus_1")->text(),
                     QString("Server Module Connected"));
    }

    void refusedLoginsKeepTheDialogOpen() {
        StartWindow();
        MessageBox::setNextAnswer(QMessageBox::Ok);
        TypeAndOk("Studio"); // the comparison is case-sensitive
        QCOMPARE(MessageBox::history().size(), size_t(1));
        CheckLastMessage("Password Error", "Incorrect password, Please try again");
        QCOMPARE(MessageBox::history().back().icon, QMessageBox::Critical);
        QVERIFY(Login()->isVisible());
        QCOMPARE(Child<QLineEdit>(Login(), "txtPassword")->text(), QString("Studio"));
        QVERIFY(m_window->link().enteredPassword.empty());
        QVERIFY(!m_window->isEnabled());
        // The poll timer does not stack a second login on top.
        QTest::qWait(700);
        QCOMPARE(m_window->findChildren<QDialog*>("frmLogin").size(), qsizetype(1));

        for (const char* port : {"0", "70000", ""}) {
            MessageBox::setNextAnswer(QMessageBox::Ok);
            Child<QLineEdit>(Login(), "txtPort")->setText(port);
            TypeAndOk("studio");
            CheckLastMessage("Port Error", "Invalid Server IP Port #. Please reenter a number "
                                           "between 1 and 65535");
            QVERIFY(Login()->isVisible());
            QCOMPARE(m_window->link().serverPort, int32_t(m_sim.port()));
        }

        // A port where nobody listens: reconnect, wait, then "Server not connected."
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        const quint16 absent = probe.serverPort();
        probe.close();
        MessageBox::setNextAnswer(QMessageBox::Ok);
        Child<QLineEdit>(Login(), "txtPort")->setText(QString::number(absent));
        TypeAndOk("studio");
        CheckLastMessage("Connection Error", "Server not connected.\nPlease verify IP Address "
                                             "and Port of KOV Server Module");
        QCOMPARE(m_window->link().serverPort, int32_t(absent));
        QVERIFY(Login()->isVisible());

        // Back to the emulator's port: logs in.
        Child<QLineEdit>(Login(), "txtPort")->setText(QString::number(m_sim.port()));
        LogIn();
    }

    void cancellingTheLoginEndsTheProgramAndWritesTheSettings() {
        StartWindow();
        QFile::remove(Folder() + "kovadmin.ini");
        QTest::mouseClick(Child<QPushButton>(Login(), "cmdCancel"), Qt::LeftButton);
        QTRY_VERIFY(!m_window->isVisible());
        QVERIFY(!m_window->link().connected);
        const QString text = Ini();
        QVERIFY2(text.contains(QStringLiteral("Server IP Port=%1").arg(m_sim.port())),
                 qPrintable(text));
        QVERIFY(text.contains("Server IP Address=127.0.0.1"));
        QVERIFY(text.contains("Maintain Log Files="));
    }

    void drillDownFromGroupToChannels() {
        StartWindow();
        LogIn();
        // A group with lists: its sub type follows its content.
        int g = 0;
        while (g < Demo().groups.userGroupCount &&
               Demo().groups.userGroups[static_cast<size_t>(g)].listCount == 0)
            ++g;
        QVERIFY(g < Demo().groups.userGroupCount);
        const UserGroup& group = Demo().groups.userGroups[static_cast<size_t>(g)];
        ClickItem(Groups(), g);
        QCOMPARE(m_window->store().currentUserGroup, int16_t(g));
        QCOMPARE(m_window->store().editorListType, kUserGroupListType);
        const int16_t type = m_window->store().currentListType;
        QVERIFY(EntriesOfType(group, type) > 0);
        QCOMPARE(Lists()->topLevelItemCount(), EntriesOfType(group, type));
        QVERIFY(
            Child<QRadioButton>(m_window, QStringLiteral("optSubType_%1").arg(type))->isChecked());
        QCOMPARE(Items()->topLevelItemCount(), 0);

        // Its first list shows its channels.
        ClickItem(Lists(), 0);
        const int position = KeyNumber(MainViews::ItemKey(Lists()->topLevelItem(0)).toStdString());
        const DisplayList& list =
            Demo().lists(*SubTypeFromListCode(type))[static_cast<size_t>(position)];
        QCOMPARE(m_window->store().currentList, int16_t(position));
        QCOMPARE(Items()->topLevelItemCount(), int(list.channelCount));
        QCOMPARE(Child<QLabel>(m_window, "lblLists_2")->text().trimmed(),
                 "Items in " + Trimmed(list.name));

        // Another sub type button refilters the group and empties the channels.
        const int16_t other = type == 11 ? 21 : 11;
        QTest::mouseClick(Child<QRadioButton>(m_window, QStringLiteral("optSubType_%1").arg(other)),
                          Qt::LeftButton);
        QCOMPARE(m_window->store().currentListType, other);
        QCOMPARE(Lists()->topLevelItemCount(), EntriesOfType(group, other));
        QCOMPARE(Items()->topLevelItemCount(), 0);
    }

    void saveAllThenLoadAllRoundTrips() {
        StartWindow();
        LogIn();
        const QString path = Folder() + "LumethEX.dat";
        auto* saveAll = Child<QAction>(m_window, "mnuSaveAll");
        auto* loadAll = Child<QAction>(m_window, "mnuLoadAll");

        FileDialog::setNextFileName(QString()); // cancelled: nothing written
        saveAll->trigger();
        QVERIFY(!QFile::exists(path));

        FileDialog::setNextFileName(path);
        saveAll->trigger();
        QVERIFY(QFile::exists(path));
        const auto request = FileDialog::lastRequest();
        QVERIFY(request.has_value());
        QCOMPARE(request->title, QString("Specify File Name"));
        QCOMPARE(request->folder, Folder());
        QCOMPARE(request->presetName, QString("LumethEX.dat"));
        QCOMPARE(request->nameFilters, QStringList({"(*.dat)", "All Files (*.*)"}));

        // Lose the groups locally, then load them back from the file.
        PanelStore& store = m_window->store();
        store.groups.userGroupCount = 1;
        store.groups.userGroupNames[0] = "Scratch";
        m_window->views().DisplayUserGroups();
        QCOMPARE(Groups()->topLevelItemCount(), 1);

        FileDialog::setNextFileName(path);
        loadAll->trigger();
        CheckGroupsShown();
        QCOMPARE(store.listCount(SubType::Output), Demo().listCount(SubType::Output));
        // The file holds what the server module holds: nothing to apply, as
        // Review Changes says; an edit shows, and undone it is gone again.
        QCOMPARE(Progress(), QString());
        QCOMPARE(m_window->ChangeLines(), std::vector<std::string>{});
        store.groups.userGroupNames[0] = "Scratch";
        FileDialog::setNextFileName(path);
        loadAll->trigger();
        QCOMPARE(Progress(), QString());
        WhenModal("frmDisplayListView", [&](QWidget* editor) {
            QTest::mouseClick(Child<QPushButton>(editor, "cmdRemoveAll"), Qt::LeftButton);
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdEditLists"), Qt::LeftButton);
        QCOMPARE(Progress(), QString("Unapplied changes"));
        QVERIFY(!m_window->ChangeLines().empty());
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(Progress(), QString());
        QCOMPARE(m_window->ChangeLines(), std::vector<std::string>{});

        // A name that does not exist loads nothing and changes nothing.
        store.groups.userGroupNames[0] = "Kept";
        FileDialog::setNextFileName(Folder() + "missing.dat");
        loadAll->trigger();
        QCOMPARE(store.groups.userGroupNames[0], std::string("Kept"));
    }

    void applySendsTheEditsToTheEmulatorAndCancelFetchesAgain() {
        StartWindow();
        LogIn();
        PanelStore& store = m_window->store();
        store.lists(SubType::Input)[0].name = "Renamed On Air";
        store.groups.userGroupNames[0] = "Morning Show";
        m_window->setUnappliedChanges(true);
        QCOMPARE(Progress(), QString("Unapplied changes"));

        QTest::mouseClick(Child<QPushButton>(m_window, "cmdSend"), Qt::LeftButton);
        QTRY_COMPARE(Trimmed(m_sim.state.store().lists(SubType::Input)[0].name),
                     QString("Renamed On Air"));
        QTRY_COMPARE(Trimmed(m_sim.state.store().groups.userGroupNames[0]),
                     QString("Morning Show"));
        QCOMPARE(Progress(), QString());
        // Saved and loaded back, the names come padded to their width: the
        // server module holds them all the same, and Review agrees.
        const QString path = Folder() + "applied.dat";
        for (const char* action : {"mnuSaveAll", "mnuLoadAll"}) {
            FileDialog::setNextFileName(path);
            Child<QAction>(m_window, action)->trigger();
        }
        QCOMPARE(store.groups.userGroupNames[0].size(), kNameWidth);
        QCOMPARE(Progress(), QString());
        QCOMPARE(m_window->ChangeLines(), std::vector<std::string>{});

        // Cancel throws local edits away by downloading everything again.
        store.groups.userGroupNames[0] = "Local Only";
        m_window->setUnappliedChanges(true);
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdCancel"), Qt::LeftButton);
        QTRY_COMPARE(Trimmed(store.groups.userGroupNames[0]), QString("Morning Show"));
        QTRY_COMPARE(Groups()->topLevelItem(0)->text(0).trimmed(), QString("Morning Show"));
        QCOMPARE(Progress(), QString());
    }

    void setupPortErrorsReconnectRuleAndPassword() {
        StartWindow();
        LogIn();
        auto* setup = Child<QAction>(m_window, "mnuSetup");
        bool ran = false;
        WhenModal("frmSetup", [&](QWidget* dialog) {
            ran = true;
            for (const char* port : {"0", "65536", ""}) {
                MessageBox::setNextAnswer(QMessageBox::Ok);
                Child<QLineEdit>(dialog, "txtIPPort")->setText(port);
                QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
                QCOMPARE(MessageBox::history().back().title, QString("Port Error"));
                QVERIFY(dialog->isVisible());
            }
            // Only a log option changes: no reconnect.
            Child<QLineEdit>(dialog, "txtIPPort")->setText(QString::number(m_sim.port()));
            Child<QCheckBox>(dialog, "chkError")->setChecked(false);
            Child<QLineEdit>(dialog, "txtMaxErrorLog")->setText("");
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        setup->trigger();
        QVERIFY(ran);
        QCOMPARE(MessageBox::history().size(), size_t(3));
        QVERIFY(!m_window->settings().maintainErrorFiles);
        QCOMPARE(m_window->settings().maxErrorLog, 0);
        QVERIFY(m_window->link().connected);
        QVERIFY(!m_window->link().enteredPassword.empty()); // still logged in

        // A new password is stored in the emulator and read back; an edit not
        // yet applied survives it (only the password is asked for again).
        m_window->store().lists(SubType::Input)[0].name = "LOCAL EDIT";
        WhenModal("frmSetup", [&](QWidget* dialog) {
            QCOMPARE(Child<QLineEdit>(dialog, "txtPassword")->text(), QString("studio"));
            TypeAccented(Child<QLineEdit>(dialog, "txtPassword"), "!");
            // Typing replaces the shown password (echo on edit).
            QCOMPARE(Child<QLineEdit>(dialog, "txtPassword")->text(), QString("!"));
            Child<QLineEdit>(dialog, "txtPassword")->setText("onair");
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        setup->trigger();
        QTRY_COMPARE(QString::fromStdString(m_sim.state.password()), QString("onair"));
        QTRY_VERIFY(!m_window->link().AnyPending());
        QCOMPARE(m_window->link().serverPassword, std::string("onair"));
        QCOMPARE(m_window->store().lists(SubType::Input)[0].name, std::string("LOCAL EDIT"));
        QVERIFY(!m_window->link().enteredPassword.empty());

        // A second emulator on another port: changing the port reconnects, which
        // logs the operator out until the login is passed again.
        Emulator second;
        QVERIFY(second.Start());
        WhenModal("frmSetup", [&](QWidget* dialog) {
            Child<QLineEdit>(dialog, "txtIpAddress")->setText("127.0.0.001");
            Child<QLineEdit>(dialog, "txtIPPort")->setText(QString::number(second.port()));
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        setup->trigger();
        QCOMPARE(m_window->link().serverPort, int32_t(second.port()));
        QCOMPARE(m_window->link().serverAddress, std::string("127.0.0.1"));
        QTRY_VERIFY(Login()->isVisible());
        QVERIFY(!m_window->isEnabled());
        // Logged out means the password is asked for again, not filled in.
        QCOMPARE(Child<QLineEdit>(Login(), "txtPassword")->text(), QString());
        QCOMPARE(Child<QLineEdit>(Login(), "txtPort")->text(), QString::number(second.port()));
        QTRY_COMPARE(second.server->clientCount(), 1);
        TypeAndOk("studio");
        QTRY_VERIFY(m_window->isEnabled());
    }
};

QTEST_MAIN(AdminFlowsTest)
#include "test_admin_flows.moc"
