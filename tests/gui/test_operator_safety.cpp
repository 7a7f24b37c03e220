// Review Changes, the backup before Apply, the guard for parts never
// received, undo/redo, the quit question and the recovery file, in the window
// against the emulator on loopback.
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

#include <sys/stat.h>

#include "app/edit_recovery.h"
#include "files/csv_configuration.h"
#include "files/panel_data_file.h"
#include "files/recovery_file.h"
#include "link/connection.h"
#include "tests/gui/window_session.h"
#include "ui/qt_text.h"

using namespace lumeth;
using test::Child;
using test::ReadOnlyReport;
using test::WhenModal;

class OperatorSafetyTest : public QObject, private test::EmulatorSession {
    Q_OBJECT

private:
    QString DemoGroup() const { return ToQt(m_sim.demo.groups.userGroupNames[0]).trimmed(); }

    // Start the emulator (templates answered with a bad checksum when asked)
    // and the window, and log in; returns once the user groups are shown.
    void Connect(bool badTemplates = false,
                 const std::function<void(PanelStore&)>& serverHolds = {}) {
        sim::SimServerOptions options;
        if (badTemplates)
            options.faults.checksumCommand = 0xFD;
        QVERIFY(StartEmulator(options, serverHolds));
        StartWindow(badTemplates);
    }

    // A window over the folder, logged in; returns once the user groups are shown.
    void StartWindow(bool badTemplates = false) {
        OpenWindow();
        LogIn();
        QTRY_VERIFY(m_window->views().groups()->topLevelItemCount() ==
                        m_sim.demo.groups.userGroupCount &&
                    !(m_window->link().pendingC & ~uint32_t(badTemplates ? 0x08 : 0)) &&
                    !m_window->link().pendingA);
        if (!badTemplates)
            QTRY_VERIFY(m_window->received().has_value());
    }

    void LogIn() { test::AnswerLogin(m_window, QString::fromStdString(m_sim.state.password())); }

    // The server module goes away (the window says so before the login
    // returns) and comes back on the same port; returns once everything has
    // been received again.
    void DropAndReconnect() {
        const quint16 port = m_sim.server->port();
        m_sim.server.reset();
        QTRY_COMPARE(m_window->statusBar()->currentMessage(),
                     QString("Lost the link to the server module; the unapplied changes are "
                             "kept."));
        QCOMPARE(Progress(), QString("Link lost - Unapplied changes"));
        m_sim.server = std::make_unique<sim::SimServer>(m_sim.state, sim::SimServerOptions{});
        QString error;
        bool inUse = false;
        QVERIFY2(m_sim.server->Listen("127.0.0.1", port, error, inUse), qPrintable(error));
        LogIn();
        QTRY_VERIFY(m_window->link().connected && !m_window->link().AnyPending() &&
                    m_window->received().has_value());
    }

    // Rename the first user group in the group editor.
    void RenameFirstGroup(const QString& name) {
        WhenModal("frmDisplayListView", [name](QWidget* editor) {
            auto* text = Child<QLineEdit>(editor, "txtListAlpha");
            text->setText(name);
            QTest::keyClick(text, Qt::Key_Return);
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdEditGroups"), Qt::LeftButton);
        QCOMPARE(FirstGroupShown(), name);
    }

    QString RecoveryFile() const { return Folder() + kRecoveryFileName; }
    // The title of every message box shown or answered so far.
    QStringList BoxTitles() const {
        QStringList titles;
        for (const MessageBox::Shown& box : MessageBox::history())
            titles << box.title;
        return titles;
    }
    // The window ends as a killed process does: no close, no shut-down.
    void Kill() {
        delete m_window;
        m_window = nullptr;
    }

    QStringList Backups() {
        return QDir(Folder() + "backups").entryList({"LumethEX-*.dat"}, QDir::Files, QDir::Name);
    }

private slots:
    void init() { BeginSession(); }
    void cleanup() { EndSession(); }

    void anEditIsReviewedLineByLine() {
        Connect();
        // The Edit menu sits between File and Help.
        QStringList menus;
        for (QAction* action : m_window->menuBar()->actions())
            menus << action->objectName();
        for (QAction* action : Child<QMenu>(m_window, "mnuEditMenu")->actions())
            menus << action->text() + " " + action->shortcut().toString();
        QCOMPARE(menus, QStringList({"mnuFile", "mnuEditMenu", "mnuHelp", "&Undo Ctrl+Z",
                                     "&Redo Ctrl+Shift+Z", " ", "&Review Changes... Ctrl+D",
                                     "&Check Configuration... ", "Compare with Server &Module... ",
                                     "Apply &Selected... ", "&Backups... "}));
        QCOMPARE(ReadOnlyReport([this] { Child<QAction>(m_window, "mnuChanges")->trigger(); }),
                 QStringList({"No changes."}));

        RenameFirstGroup("Renamed");
        // A click on "Unapplied changes" opens the review too.
        QCOMPARE(ReadOnlyReport([this] {
                     QTest::mouseClick(Child<QLabel>(m_window, "stbStatus_2"), Qt::LeftButton);
                 }),
                 QStringList({QString("Gr.001 \"%1\" renamed to \"Renamed\"").arg(DemoGroup())}));
    }

    // Check Configuration lists check's lines read-only, repeated findings
    // grouped, and ends with the count.
    void checkConfigurationListsTheFindings() {
        // From key 5 on, the first template's keys select a source, none set.
        Connect(false, [](PanelStore& store) {
            ButtonTemplate& tpl = store.templates.buttonTemplates[0];
            for (int k = 4; k < tpl.buttonCount; ++k) {
                tpl.buttons[static_cast<size_t>(k)].type = 40; // Source Select
                tpl.buttons[static_cast<size_t>(k)].channel = kNoChannel;
            }
        });
        const int keys = m_sim.demo.templates.buttonTemplates[0].buttonCount;
        QVERIFY(keys > 5);
        const QString name = ToQt(m_sim.demo.templates.templateNames[0]).trimmed();
        QCOMPARE(ReadOnlyReport([this] { Child<QAction>(m_window, "mnuCheck")->trigger(); },
                                "frmCheck", "txtCheck"),
                 QStringList({QString("warning: template 01 \"%1\" Btn 5-%2: Source Select "
                                      "without a channel (%3 keys)")
                                  .arg(name)
                                  .arg(keys)
                                  .arg(keys - 4),
                              QString("0 errors, %1 warnings").arg(keys - 4)}));
    }

    void theGrowthTo32ButtonsIsOneLine() {
        // The server module holds a template of one button.
        Connect(false, [](PanelStore& store) {
            ButtonTemplate& tpl = store.templates.buttonTemplates[0];
            tpl.buttonCount = 1;
            tpl.buttons.resize(1);
        });
        WhenModal("frmButtons",
                  [](QWidget* editor) { Child<QAction>(editor, "mnuExit")->trigger(); });
        Child<QAction>(m_window, "mnuButtons")->trigger();
        // The growth is a change that Apply sends, said once.
        QCOMPARE(Progress(), QString("Unapplied changes"));
        QCOMPARE(ReadOnlyReport([&] { m_window->ReviewChanges(); }),
                 QStringList({QString("template 01 \"%1\": grown from 1 to 32 buttons")
                                  .arg(ToQt(m_sim.demo.templates.templateNames[0]).trimmed())}));
    }

    void applyKeepsWhatTheServerHeldAndPrunesTo30() {
        Connect();
        QDir().mkpath(Folder() + "backups");
        for (int i = 0; i < 30; ++i) {
            QFile old(Folder() +
                      QString("backups/LumethEX-20200101-0000%1.dat").arg(i, 2, 10, QChar('0')));
            QVERIFY(old.open(QIODevice::WriteOnly));
        }
        RenameFirstGroup("After Apply");
        auto* undo = Child<QAction>(m_window, "mnuUndo");
        bool undoWhileSending = true;
        QTimer::singleShot(100, [&] { undoWhileSending = undo->isEnabled(); });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdSend"), Qt::LeftButton);
        QTRY_COMPARE(HeldGroup(), QString("After Apply"));
        QVERIFY(!undoWhileSending && undo->isEnabled());
        QTRY_COMPARE(m_window->statusBar()->currentMessage(),
                     QString("Sent the Input display lists, Output display lists, Opto display "
                             "lists, Relay display lists, user groups, button templates to the "
                             "server module."));

        const QStringList backups = Backups();
        QCOMPARE(backups.size(), 30);
        QCOMPARE(backups.first(), QString("LumethEX-20200101-000001.dat"));
        QVERIFY(!backups.last().startsWith("LumethEX-2020"));
        PanelStore held;
        QCOMPARE(
            LoadPanelDataFile((Folder() + "backups/" + backups.last()).toStdString(), held).outcome,
            LoadOutcome::Loaded);
        QCOMPARE(ToQt(held.groups.userGroupNames[0]).trimmed(), DemoGroup());
        QCOMPARE(held.templates.templateCount, m_sim.demo.templates.templateCount);
        // What was sent is now what the server module holds.
        QCOMPARE(Progress(), QString());
        QCOMPARE(ReadOnlyReport([&] { m_window->ReviewChanges(); }), QStringList({"No changes."}));
    }

    void applyThatLosesTheLinkSaysWhatWentOutBefore() {
        Connect();
        RenameFirstGroup("Not Sent");
        // Gone between the second and the third of the six messages.
        QTimer::singleShot(750, [this] { m_sim.server.reset(); });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdSend"), Qt::LeftButton);
        QTRY_VERIFY(!m_sim.server);
        const QString said = m_window->statusBar()->currentMessage();
        QVERIFY2(said.startsWith("The link to the server module was lost during Apply; sent "
                                 "before it was lost: Input display lists, Output display lists"),
                 qPrintable(said));
        QVERIFY2(!said.contains("user groups"), qPrintable(said));
        QVERIFY(m_window->hasUnappliedChanges());
    }

    void templatesNeverReceivedAreOnlySentWhenConfirmed() {
        Connect(true);
        // A template edit undone leaves the templates as never received.
        WhenModal("frmButtons", [](QWidget* editor) {
            QTest::mouseClick(Child<QPushButton>(editor, "CmdAdd"), Qt::LeftButton);
            Child<QAction>(editor, "mnuExit")->trigger();
        });
        Child<QAction>(m_window, "mnuButtons")->trigger();
        Child<QAction>(m_window, "mnuUndo")->trigger();
        RenameFirstGroup("Guarded");
        auto* send = Child<QPushButton>(m_window, "cmdSend");
        MessageBox::setNextAnswer(QMessageBox::No);
        QTest::mouseClick(send, Qt::LeftButton);
        QCOMPARE(MessageBox::history().size(), size_t(1));
        const MessageBox::Shown box = MessageBox::history().back();
        QCOMPARE(box.title, QString("Apply"));
        QCOMPARE(box.text, QString("The button templates were not received from the server "
                                   "module. Apply would replace the server module's button "
                                   "templates with the ones shown here. Send anyway?"));
        QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box.defaultButton, QMessageBox::No);
        QTest::qWait(300);
        QCOMPARE(HeldGroup(), DemoGroup());
        QVERIFY(m_window->hasUnappliedChanges());
        QVERIFY(Backups().isEmpty());
        // Not everything was received, yet the indicator follows undo and redo.
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QVERIFY(!m_window->hasUnappliedChanges());
        Child<QAction>(m_window, "mnuRedo")->trigger();
        QVERIFY(m_window->hasUnappliedChanges());

        MessageBox::setNextAnswer(QMessageBox::Yes);
        QTest::mouseClick(send, Qt::LeftButton);
        QTRY_COMPARE(HeldGroup(), QString("Guarded"));
    }

    // A cut panel data file is named in the status bar, and Apply asks first
    // until an undo or a good load replaces what it left; a failed Save All
    // is named there too.
    void aLoadCutShortGuardsApplyUntilReplaced() {
        Connect();
        PanelStore cut = m_sim.demo;
        cut.groups.userGroupNames[0] = "From Cut";
        const std::string bytes = EncodePanelData(cut);
        const QString path = Folder() + "cut.dat";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size() / 2));
        file.close();
        FileDialog::setNextFileName(path);
        Child<QAction>(m_window, "mnuLoadAll")->trigger();
        const QString shown = QDir::toNativeSeparators(path);
        QVERIFY2(StatusText().startsWith("Could not load " + shown + ": truncated at byte "),
                 qPrintable(StatusText()));

        auto* send = Child<QPushButton>(m_window, "cmdSend");
        const QString question =
            "Loading " + shown +
            " failed part way: the configuration holds only what was read before the "
            "failure, on top of the defaults. Apply would replace the server module's "
            "configuration with it. Send anyway?";
        const auto refused = [&](size_t asked) {
            const PanelStore held = m_sim.state.store();
            MessageBox::setNextAnswer(QMessageBox::No);
            QTest::mouseClick(send, Qt::LeftButton);
            QCOMPARE(MessageBox::history().size(), asked);
            const MessageBox::Shown box = MessageBox::history().back();
            QCOMPARE(box.title, QString("Apply"));
            QCOMPARE(box.text, question);
            QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
            QCOMPARE(box.defaultButton, QMessageBox::No);
            QTest::qWait(300);
            QCOMPARE(m_sim.state.store().templates, held.templates);
            QCOMPARE(m_sim.state.store().groups, held.groups);
            QCOMPARE(m_sim.state.store().displayLists, held.displayLists);
        };
        refused(1);
        // Redone, it asks again; undone, Apply asks nothing.
        Child<QAction>(m_window, "mnuUndo")->trigger();
        Child<QAction>(m_window, "mnuRedo")->trigger();
        refused(2);
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QTest::mouseClick(send, Qt::LeftButton);
        QCOMPARE(MessageBox::history().size(), size_t(2));

        // A good load replaces it: sent without a question.
        const QString whole = Folder() + "whole.dat";
        QVERIFY(SavePanelDataFile(whole.toStdString(), cut).ok());
        FileDialog::setNextFileName(whole);
        Child<QAction>(m_window, "mnuLoadAll")->trigger();
        QTest::mouseClick(send, Qt::LeftButton);
        QTRY_COMPARE(HeldGroup(), QString("From Cut"));
        QCOMPARE(MessageBox::history().size(), size_t(2));

        const QString fifo = Folder() + "fifo.dat";
        QVERIFY(::mkfifo(fifo.toLocal8Bit().constData(), 0600) == 0);
        FileDialog::setNextFileName(fifo);
        Child<QAction>(m_window, "mnuSaveAll")->trigger();
        QCOMPARE(StatusText(),
                 "Could not save " + QDir::toNativeSeparators(fifo) + ": not a regular file");
        QVERIFY(QFileInfo(fifo).exists() && !QFileInfo(fifo).isFile());
        const QByteArray logged = ErrorLog();
        QVERIFY(logged.contains("Error Loading LumethEX File"));
        QVERIFY(logged.contains("Error Writing LumethEX File"));
    }

    // Export CSV writes the three files of a folder; an import with a bad row
    // changes nothing and names file and line; a good one is one undo step
    // that Review Changes shows, unapplied until Apply.
    void csvExportAndImportThroughAFolder() {
        Connect();
        const QString dir = Folder() + "csv";
        FileDialog::setNextFileName(dir);
        Child<QAction>(m_window, "mnuExportCsv")->trigger();
        QVERIFY(FileDialog::lastRequest()->chooseFolder);
        QCOMPARE(StatusText(), "Exported CSV to " + QDir::toNativeSeparators(dir));
        const QString groupsPath =
            QString::fromStdString(CsvPath(dir.toStdString(), CsvFile::UserGroups));
        QFile file(groupsPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray groups = file.readAll();
        file.close();
        const QByteArray first =
            "Gr.001," + ToQt(m_sim.demo.groups.userGroupNames[0]).trimmed().toUtf8() + ",";
        QVERIFY(groups.contains(first));
        groups.replace(first, "Gr.001,From CSV,");
        const auto writeGroups = [&](const QByteArray& bytes) {
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(bytes);
            file.close();
        };

        const size_t depth = m_window->history().undoDepth();
        writeGroups(groups + "Gr.001,From CSV,1,Input,Lst.000,\r\n");
        FileDialog::setNextFileName(dir);
        Child<QAction>(m_window, "mnuImportCsv")->trigger();
        const int lines = static_cast<int>(groups.count('\n')) + 1;
        QCOMPARE(StatusText(), "Could not import CSV: " + groupsPath + ":" +
                                   QString::number(lines) +
                                   ": Gr.001 again after other rows: a record's rows go together");
        QCOMPARE(FirstGroupShown(), DemoGroup());
        QCOMPARE(m_window->history().undoDepth(), depth);
        QVERIFY(!m_window->hasUnappliedChanges());

        writeGroups(groups);
        FileDialog::setNextFileName(dir);
        Child<QAction>(m_window, "mnuImportCsv")->trigger();
        QCOMPARE(FirstGroupShown(), QString("From CSV"));
        QVERIFY(m_window->hasUnappliedChanges());
        QCOMPARE(m_window->history().undoDepth(), depth + 1);
        const QStringList reviewed = ReadOnlyReport([&] { m_window->ReviewChanges(); });
        QCOMPARE(reviewed.filter("renamed to \"From CSV\"").size(), 1);
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(FirstGroupShown(), DemoGroup());
        QVERIFY(!m_window->hasUnappliedChanges());

        QVERIFY(ErrorLog().contains("Error Importing CSV Files"));
    }

    void undoAndRedoAcrossAnEditorSessionLoadAllAndCancel() {
        Connect();
        auto* undo = Child<QAction>(m_window, "mnuUndo");
        auto* redo = Child<QAction>(m_window, "mnuRedo");
        RenameFirstGroup("Edited");

        PanelStore file = m_sim.demo;
        file.groups.userGroupNames[0] = "From File";
        const QString path = Folder() + "other.dat";
        QVERIFY(SavePanelDataFile(path.toStdString(), file).ok());
        FileDialog::setNextFileName(path);
        Child<QAction>(m_window, "mnuLoadAll")->trigger();
        QCOMPARE(FirstGroupShown(), QString("From File"));

        QTest::mouseClick(Child<QPushButton>(m_window, "cmdCancel"), Qt::LeftButton);
        QTRY_COMPARE(FirstGroupShown(), DemoGroup());
        QTRY_VERIFY(!m_window->link().AnyPending());

        // Back through the three steps, then forward again; the views and the
        // unapplied indicator follow each.
        const struct {
            QAction* action;
            QString shown;
            QString progress;
        } steps[] = {
            {undo, "From File", "Unapplied changes"},
            {undo, "Edited", "Unapplied changes"},
            {undo, DemoGroup(), ""},
            {redo, "Edited", "Unapplied changes"},
            {redo, "From File", "Unapplied changes"},
            {redo, DemoGroup(), ""},
        };
        for (const auto& step : steps) {
            QVERIFY(step.action->isEnabled());
            step.action->trigger();
            QCOMPARE(FirstGroupShown(), step.shown);
            QCOMPARE(Progress(), step.progress);
        }
        QVERIFY(!redo->isEnabled());
    }

    void aReconnectDownloadOverEditsIsOneUndoStep() {
        Connect();
        RenameFirstGroup("Edited");
        // A second part edited in a session of its own.
        WhenModal("frmDisplayListView", [](QWidget* editor) {
            Child<QLineEdit>(editor, "txtListAlpha")->setText("Edited List");
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdEditLists"), Qt::LeftButton);
        const PanelStore edited = m_window->store();
        QCOMPARE(ToQt(edited.lists(SubType::Input)[0].name), QString("Edited List"));
        const size_t depth = m_window->history().undoDepth();

        DropAndReconnect();
        QTRY_COMPARE(FirstGroupShown(), DemoGroup());
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QString("The server module's configuration replaced the unapplied changes; "
                         "Undo brings them back."));
        // The indicator and Review Changes agree.
        QCOMPARE(Progress(), QString());
        QCOMPARE(ReadOnlyReport([&] { m_window->ReviewChanges(); }), QStringList({"No changes."}));

        // One step for the whole download: one undo brings both edits back.
        QCOMPARE(m_window->history().undoDepth(), depth + 1);
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(FirstGroupShown(), QString("Edited"));
        QVERIFY(ChangedParts(m_window->store(), edited).empty());
        QCOMPARE(Progress(), QString("Unapplied changes"));
    }

    // A download arrives while an editor is open with work pending in it:
    // the editor shows the download, closing it keeps the download, and one
    // undo brings the pending work back.
    void aDownloadUnderAnOpenEditorReloadsIt() {
        const auto name = [](const std::string& text) { return ToQt(text).trimmed(); };
        const struct {
            const char* command;
            const char* editor;
            std::function<void(QWidget*)> pend;         // leaves work pending in the editor
            std::function<void(PanelStore&)> elsewhere; // another administrator's change
            std::function<QString(QWidget*)> shown;
            std::function<QString(const PanelStore&)> held;
            QString pending;
        } cases[] = {
            {"cmdEditLists", "frmDisplayListView",
             [](QWidget* e) { Child<QLineEdit>(e, "txtListAlpha")->setText("Pending"); },
             [](PanelStore& s) { s.lists(SubType::Input)[0].name = "Server Side"; },
             [](QWidget* e) { return Child<QComboBox>(e, "cmbListAlphas")->itemText(0); },
             [name](const PanelStore& s) { return name(s.lists(SubType::Input)[0].name); },
             "Pending"},
            {"cmdEditGroups", "frmDisplayListView",
             [](QWidget* e) { Child<QLineEdit>(e, "txtListAlpha")->setText("Pending"); },
             [](PanelStore& s) { s.groups.userGroupNames[0] = "Server Side"; },
             [](QWidget* e) { return Child<QComboBox>(e, "cmbListAlphas")->itemText(0); },
             [name](const PanelStore& s) { return name(s.groups.userGroupNames[0]); }, "Pending"},
            {"cmdEditButtons", "frmButtons",
             [](QWidget* e) { QTest::mouseClick(Child<QPushButton>(e, "CmdAdd"), Qt::LeftButton); },
             [](PanelStore& s) { s.templates.templateNames.back() = "Server Side"; },
             [](QWidget* e) { return Child<QLineEdit>(e, "txtTemplateName")->text(); },
             [name](const PanelStore& s) {
                 return QString::number(s.templates.templateCount) + " " +
                        name(s.templates.templateNames.back());
             },
             ""},
        };
        for (const auto& c : cases) {
            cleanup();
            init();
            Connect();
            const PanelStore before = m_window->store();
            PanelStore server = m_sim.state.store();
            c.elsewhere(server);
            bool reloaded = false;
            WhenModal(c.editor, [&](QWidget* editor) {
                c.pend(editor);
                m_sim.state.Reset(server, m_sim.state.password());
                m_window->connection().RequestEverything();
                reloaded =
                    QTest::qWaitFor([&] { return c.shown(editor).trimmed() == "Server Side"; });
                if (auto* exit = editor->findChild<QAction*>("mnuExit"))
                    exit->trigger();
                else
                    QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
            });
            QTest::mouseClick(Child<QPushButton>(m_window, c.command), Qt::LeftButton);
            QVERIFY2(reloaded, c.command);
            // Closing the editor did not write its older copy back.
            QCOMPARE(c.held(m_window->store()), c.held(server));
            QCOMPARE(m_window->store().lists(SubType::Input)[0].channelCount,
                     server.lists(SubType::Input)[0].channelCount);
            Child<QAction>(m_window, "mnuUndo")->trigger();
            if (!c.pending.isEmpty())
                QCOMPARE(c.held(m_window->store()), c.pending);
            else
                QCOMPARE(m_window->store().templates.templateCount,
                         before.templates.templateCount + 1);
        }
    }

    void eachCopyIsAStepOfItsOwn() {
        Connect();
        WhenModal("frmDisplayListView", [](QWidget* editor) {
            WhenModal("frmDuplicateDisplayList", [](QWidget* dialog) {
                auto* to = Child<QComboBox>(dialog, "cmbListAlphas_1");
                for (int i = 0; i < 2; ++i) {
                    to->setCurrentIndex(to->count() - 1); // "New Group"
                    QTest::mouseClick(Child<QPushButton>(dialog, "cmdCopy"), Qt::LeftButton);
                }
                qobject_cast<QDialog*>(dialog)->reject();
            });
            Child<QAction>(editor, "mnuCopy")->trigger();
            QTest::mouseClick(Child<QPushButton>(editor, "cmdClose"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdEditGroups"), Qt::LeftButton);
        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(m_window->views().groups()->topLevelItemCount(),
                 m_sim.demo.groups.userGroupCount + 1);
    }

    void quittingWithUnappliedChangesAsks() {
        Connect();
        auto* exit = Child<QAction>(m_window, "mnuExit");
        exit->trigger();
        QVERIFY2(!m_window->isVisible(), "nothing unapplied: no question");
        QVERIFY(MessageBox::history().empty());

        m_window->deleteLater();
        m_window = nullptr;
        StartWindow();
        RenameFirstGroup("Edited");
        MessageBox::setNextAnswer(QMessageBox::No);
        Child<QAction>(m_window, "mnuExit")->trigger();
        QVERIFY2(m_window->isVisible(), "No stays");
        QCOMPARE(MessageBox::history().size(), size_t(1));
        const MessageBox::Shown asked = MessageBox::history().back();
        QCOMPARE(asked.icon, QMessageBox::Question);
        QCOMPARE(asked.defaultButton, QMessageBox::No);
        QCOMPARE(FirstGroupShown(), QString("Edited"));

        MessageBox::setNextAnswer(QMessageBox::Yes);
        QVERIFY(m_window->close()); // the close box
        QVERIFY(!m_window->isVisible());
        QCOMPARE(MessageBox::history().size(), size_t(2));
        QVERIFY2(QFile::exists(RecoveryFile()), "the edits are kept when the program quits");
    }

    void closingTheLoginAfterALostLinkEndsWithoutAQuestionAndKeepsTheEdits() {
        Connect();
        RenameFirstGroup("Lost");
        m_sim.server.reset(); // the server module goes away: the login comes back
        auto* login = Child<QDialog>(m_window, "frmLogin");
        QTRY_VERIFY(login->isVisible());
        QTest::mouseClick(Child<QPushButton>(login, "cmdCancel"), Qt::LeftButton);
        QTRY_VERIFY(!m_window->isVisible());
        QVERIFY(MessageBox::history().empty());

        RecoveredEdits kept;
        QVERIFY(ReadRecoveryFile(RecoveryFile().toStdString(), kept).ok());
        QCOMPARE(kept.parts, PartSet{Part::UserGroups});
        QCOMPARE(QString::fromStdString(kept.edits.groups->userGroupNames[0]), QString("Lost"));
    }

    void aKilledProcessLosesNoEditAndTheRestoreIsOneStep() {
        Connect();
        RenameFirstGroup("Kept");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(RecoveryFile()), 3 * EditRecovery::kDelayMs);
        Kill();

        MessageBox::setNextAnswer(QMessageBox::Yes);
        StartWindow();
        QTRY_COMPARE(FirstGroupShown(), QString("Kept"));
        QCOMPARE(BoxTitles(), QStringList{"Unapplied changes"});
        QCOMPARE(Progress(), QString("Unapplied changes"));
        const QStringList lines = ReadOnlyReport([this] { m_window->ReviewChanges(); });
        QVERIFY2(lines.join('\n').contains("Kept"), qPrintable(lines.join('\n')));

        Child<QAction>(m_window, "mnuUndo")->trigger();
        QCOMPARE(FirstGroupShown(), DemoGroup());
        QCOMPARE(Progress(), QString());
        // Undone back to what the server module holds: nothing is kept.
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(RecoveryFile()), 3 * EditRecovery::kDelayMs);
    }

    void noToTheRestoreQuestionDiscardsTheEdits() {
        Connect();
        // A file as a process killed after its edits leaves it.
        PanelStore edited = m_window->store();
        edited.groups.userGroupNames[0] = "Not wanted";
        Kill();
        QVERIFY(WriteRecoveryFile(RecoveryFile().toStdString(),
                                  {PartSet{Part::UserGroups}, TakeSnapshot(edited)})
                    .ok());
        MessageBox::setNextAnswer(QMessageBox::No);
        StartWindow();
        QTRY_VERIFY(!MessageBox::hasQueuedAnswers());
        QCOMPARE(BoxTitles(), QStringList{"Unapplied changes"});
        QCOMPARE(FirstGroupShown(), DemoGroup());
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(RecoveryFile()), 3 * EditRecovery::kDelayMs);
        QCOMPARE(Progress(), QString());
    }

    // Edits the server module already holds (applied) are not offered again:
    // the download confirms them and the file goes.
    void applyAloneKeepsTheFileUntilADownloadShowsTheEdits() {
        Connect();
        RenameFirstGroup("Sent");
        QTest::mouseClick(Child<QPushButton>(m_window, "cmdSend"), Qt::LeftButton);
        QTRY_COMPARE(HeldGroup(), QString("Sent"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(RecoveryFile()), 3 * EditRecovery::kDelayMs);
        m_window->close();
        delete m_window;
        m_window = nullptr;
        QVERIFY(QFile::exists(RecoveryFile()));

        StartWindow();
        QCOMPARE(FirstGroupShown(), QString("Sent"));
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(RecoveryFile()), 3 * EditRecovery::kDelayMs);
        QTest::qWait(50); // a question would be asked from the event loop
        QVERIFY2(MessageBox::history().empty(), "the download showed the edits held");
        QCOMPARE(Progress(), QString());
    }
};

QTEST_MAIN(OperatorSafetyTest)
#include "test_operator_safety.moc"
