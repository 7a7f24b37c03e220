// Compare with Server Module, Apply Selected and Backups in the window, with
// the emulator as the server module on loopback and a second administrator's
// changes made in the emulator's state.
#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "app/safe_apply.h"
#include "files/backup_files.h"
#include "tests/gui/window_session.h"
#include "ui/qt_text.h"

using namespace lumeth;
using test::Child;
using test::WhenModal;

class SafeApplyTest : public QObject, private test::EmulatorSession {
    Q_OBJECT

private:
    static QString Trimmed(const std::string& name) { return ToQt(name).trimmed(); }

    // The emulator with the demo set and the window logged in to it; returns
    // once everything has been received.
    void Connect() {
        QVERIFY(StartEmulator());
        OpenWindow();
        test::AnswerLogin(m_window, QString::fromStdString(m_sim.state.password()));
        QTRY_VERIFY(m_window->received().has_value() && !m_window->link().AnyPending());
    }

    // What the window and a second administrator each change: the first
    // user group here, list 0 of `subType` on the server module.
    void RenameGroupHere(const std::string& name) {
        m_window->store().groups.userGroupNames[0] = name;
        m_window->setUnappliedChanges(true);
    }
    void RenameListThere(SubType subType, const std::string& name) {
        DisplayListTable table = m_sim.state.store().listTable(subType);
        table.displayLists[0].name = name;
        m_sim.state.Replace(ListsPart(subType), table);
    }

private slots:
    void init() { BeginSession(); }
    void cleanup() { EndSession(); }

    // The comparison shows both sides' changes apart and touches neither
    // the window's store nor the server module.
    void compareShowsWhatEachSideChanged() {
        Connect();
        RenameGroupHere("Mine");
        RenameListThere(SubType::Output, "Theirs");
        const PanelStore before = m_window->store();
        const uint64_t version = m_sim.state.version();

        const QStringList lines =
            test::ReadOnlyReport([this] { Child<QAction>(m_window, "mnuCompare")->trigger(); },
                                 "frmCompare", "txtCompare");
        const qsizetype since =
            lines.indexOf("Changed on the server module since this window received it:");
        QVERIFY2(lines.value(0) == "What Apply would change on the server module:" && since > 0,
                 qPrintable(lines.join('\n')));
        const QString applyPart = lines.mid(0, since).join('\n');
        const QString sincePart = lines.mid(since).join('\n');
        QVERIFY2(applyPart.contains("renamed to \"Mine\"") && applyPart.contains("\"Theirs\""),
                 qPrintable(applyPart));
        QVERIFY2(sincePart.contains("renamed to \"Theirs\"") && !sincePart.contains("Mine"),
                 qPrintable(sincePart));

        QCOMPARE(m_window->store().displayLists, before.displayLists);
        QCOMPARE(m_window->store().groups, before.groups);
        QCOMPARE(m_sim.state.version(), version);
        QVERIFY(m_window->link().connected && m_window->hasUnappliedChanges());
    }

    // Parts changed only on the server module start unticked, parts changed
    // on both sides are marked; only the ticked parts go out, and the
    // read-back says so.
    void applySelectedSendsOnlyTheTickedParts() {
        Connect();
        RenameGroupHere("Mine");
        m_window->store().listTable(SubType::Input).displayLists[0].name = "Mine In";
        RenameListThere(SubType::Input, "Theirs In");
        RenameListThere(SubType::Output, "Theirs Out");

        QStringList texts;
        QList<bool> ticked;
        WhenModal("frmApplySelected", [&](QWidget* dialog) {
            for (int i = 0; i < 6; ++i) {
                auto* box = Child<QCheckBox>(dialog, QString("chkPart_%1").arg(i));
                texts << box->text();
                ticked << box->isChecked();
            }
            // The operator keeps the other administrator's Input lists.
            Child<QCheckBox>(dialog, "chkPart_0")->setChecked(false);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        Child<QAction>(m_window, "mnuApplySelected")->trigger();

        QVERIFY2(texts.value(0).startsWith("Input display lists (1 change) - conflict"),
                 qPrintable(texts.join('\n')));
        QVERIFY2(texts.value(1).startsWith("Output display lists (1 change) - changed only on "
                                           "the server module"),
                 qPrintable(texts.value(1)));
        QCOMPARE(texts.value(4), QString("user groups (1 change)"));
        QCOMPARE(texts.value(2), QString("Opto display lists (0 changes)"));
        QCOMPARE(ticked, QList<bool>({true, false, false, false, true, false}));

        QCOMPARE(StatusText(),
                 QString("Sent the user groups to the server module; read back: verified."));
        const PanelStore& held = m_sim.state.store();
        QCOMPARE(Trimmed(held.groups.userGroupNames[0]), QString("Mine"));
        QCOMPARE(Trimmed(held.listTable(SubType::Input).displayLists[0].name),
                 QString("Theirs In"));
        QCOMPARE(Trimmed(held.listTable(SubType::Output).displayLists[0].name),
                 QString("Theirs Out"));
        // The Input edit is still waiting; what the server module held is kept.
        QVERIFY(m_window->hasUnappliedChanges());
        QCOMPARE(QDir(Folder() + "backups").entryList({"LumethEX-*.dat"}).size(), 1);

        // Another administrator changes the groups again before the read-back.
        RenameGroupHere("Mine Again");
        WhenModal("frmApplySelected", [this](QWidget* dialog) {
            QTimer::singleShot(250, [this] {
                UserGroupTable groups = m_sim.state.store().groups;
                groups.userGroupNames[0] = "Overtaken";
                m_sim.state.Replace(Part::UserGroups, groups);
            });
            Child<QCheckBox>(dialog, "chkPart_0")->setChecked(false);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        Child<QAction>(m_window, "mnuApplySelected")->trigger();
        QCOMPARE(StatusText(), QString("Sent the user groups to the server module; read back: "
                                       "the user groups differ from what was sent."));
    }

    // A server module that takes the connection and never answers: a bounded
    // wait, the reason, nothing sent, the window still linked and usable, and
    // the password nowhere in the error log.
    void aServerThatNeverAnswersIsGivenUpOn() {
        Connect();
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        m_window->findChild<SafeApply*>()->setReadLimitMs(1500);
        RenameGroupHere("Mine");
        const uint64_t version = m_sim.state.version();
        const QString reason = "Could not read the server module's configuration: The server "
                               "module did not send its configuration within 1.5 s.";
        struct Case {
            const char* action;
            QString title;
            QString text;
        } const cases[] = {
            {"mnuCompare", "Compare with Server Module", reason},
            {"mnuApplySelected", "Apply Selected", reason + " Nothing was sent."},
        };
        for (const Case& c : cases) {
            MessageBox::clearHistory();
            const quint16 port = static_cast<quint16>(m_window->link().serverPort);
            m_window->link().serverPort = silent.serverPort();
            MessageBox::setNextAnswer(QMessageBox::Ok);
            Child<QAction>(m_window, c.action)->trigger();
            m_window->link().serverPort = port;
            QCOMPARE(MessageBox::history().size(), size_t(1));
            QCOMPARE(MessageBox::history().front().title, c.title);
            QCOMPARE(MessageBox::history().front().text, c.text);
            QCOMPARE(StatusText(), c.text);
            QVERIFY(!m_window->findChild<QDialog*>("frmApplySelected"));
        }
        // Cancel stops the wait without a message box.
        MessageBox::clearHistory();
        m_window->link().serverPort = silent.serverPort();
        WhenModal("frmReading", [](QWidget* progress) {
            QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        });
        Child<QAction>(m_window, "mnuApplySelected")->trigger();
        m_window->link().serverPort = m_sim.server->port();
        QCOMPARE(StatusText(), QString("Apply Selected cancelled. Nothing was sent."));
        QVERIFY(MessageBox::history().empty());

        QCOMPARE(m_sim.state.version(), version);
        QVERIFY(m_window->link().connected && m_window->isEnabled());
        QVERIFY(m_window->hasUnappliedChanges());
        QVERIFY(!ErrorLog().contains(QByteArray::fromStdString(m_sim.state.password())));

        // The same window compares with the real server module afterwards.
        const QStringList lines =
            test::ReadOnlyReport([this] { Child<QAction>(m_window, "mnuCompare")->trigger(); },
                                 "frmCompare", "txtCompare");
        QVERIFY2(lines.join('\n').contains("renamed to \"Mine\""), qPrintable(lines.join('\n')));
    }

    // The backups listed newest first with what differs; Load replaces the
    // configuration as Load All does, undone in one step.
    void aBackupIsComparedAndLoadedAsOneUndoStep() {
        Connect();
        PanelStore older = m_window->store();
        PanelStore newer = older;
        newer.groups.userGroupNames[0] = "From Backup";
        QVERIFY(WriteBackup(Folder().toStdString(), "20261120-080000", older));
        QVERIFY(WriteBackup(Folder().toStdString(), "20261121-093000", newer));

        QStringList rows;
        QStringList compared;
        WhenModal("frmBackups", [&](QWidget* dialog) {
            auto* list = Child<QTreeWidget>(dialog, "lvBackups");
            for (int i = 0; i < list->topLevelItemCount(); ++i)
                rows << list->topLevelItem(i)->text(0) + " | " + list->topLevelItem(i)->text(2);
            WhenModal("frmCompare", [&](QWidget* report) {
                compared = Child<QPlainTextEdit>(report, "txtCompare")->toPlainText().split('\n');
                qobject_cast<QDialog*>(report)->reject();
            });
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdCompare"), Qt::LeftButton);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdLoad"), Qt::LeftButton);
        });
        Child<QAction>(m_window, "mnuBackups")->trigger();

        QCOMPARE(rows, QStringList({"2026-11-21 09:30:00 | 1 change: user groups",
                                    "2026-11-20 08:00:00 | No changes."}));
        QCOMPARE(compared.size(), 1);
        QVERIFY2(compared.value(0).endsWith("renamed to \"From Backup\""),
                 qPrintable(compared.join('\n')));
        QCOMPARE(FirstGroupShown(), QString("From Backup"));
        QVERIFY(m_window->hasUnappliedChanges());
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(FirstGroupShown(), Trimmed(m_sim.demo.groups.userGroupNames[0]));
        QVERIFY(!m_window->hasUnappliedChanges());
    }
};

QTEST_MAIN(SafeApplyTest)
#include "test_safe_apply.moc"
