#include "app/main_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

#include "app/edit_recovery.h"
#include "app/main_views.h"
#include "app/safe_apply.h"
#include "app/window_layout.h"
#include "files/backup_files.h"
#include "files/check_report.h"
#include "files/panel_data_file.h"
#include "link/connection.h"
#include "link/protocol.h"
#include "model/store_counts.h"
#include "ui/about_dialog.h"
#include "ui/button_editor.h"
#include "ui/changes_dialog.h"
#include "ui/channel_list_models.h"
#include "ui/display_list_editor.h"
#include "ui/elided_label.h"
#include "ui/file_dialog.h"
#include "ui/login_dialog.h"
#include "ui/message_box.h"
#include "ui/named_widgets.h"
#include "ui/qt_text.h"
#include "ui/setup_dialog.h"

namespace lumeth {

namespace {

// The largest part of the status bar the progress panel takes; the rest is
// the link panel and the message area.
constexpr double kProgressPanelShare = 0.45;
// The counts panel's largest share: it gives way to the link and progress.
constexpr double kCountsPanelShare = 0.35;

// A menu of the menu bar; the menu and its entry in the bar are both `name`.
QMenu* AddMenu(QMenuBar* bar, const QString& title, const char* name) {
    QMenu* menu = bar->addMenu(title);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    return menu;
}

QAction* MakeSeparator(QMenu* menu, const char* name) {
    QAction* separator = menu->addSeparator();
    separator->setObjectName(name);
    return separator;
}

constexpr const char* kUnappliedText = "Unapplied changes";
constexpr const char* kReplacedText = "The server module's configuration replaced the unapplied "
                                      "changes; Undo brings them back.";

// "A", "A and B", "A, B and C"
QString JoinParts(const QStringList& names) {
    if (names.size() < 2)
        return names.value(0);
    return QStringList(names.mid(0, names.size() - 1)).join(", ") + " and " + names.last();
}

// The status line after Apply: what went out, or what went out before the
// link was lost.
QString ApplyOutcome(bool connectedBefore, bool connectedAfter, PartSet sent) {
    if (!connectedBefore)
        return "Not connected to the server module: nothing was sent.";
    const QString names = QString::fromStdString(JoinPartNames(sent));
    if (!connectedAfter)
        return sent.empty() ? QString("The link to the server module was lost during Apply: "
                                      "nothing was sent.")
                            : "The link to the server module was lost during Apply; sent "
                              "before it was lost: " +
                                  names + ".";
    const PartSet left = kUploadParts - sent;
    QString text =
        "Sent the " + (sent.empty() ? QString("nothing") : names) + " to the server module.";
    if (!left.empty())
        text +=
            " Not sent: " + QString::fromStdString(JoinPartNames(left)) + " (see the error log).";
    return text;
}

} // namespace

MainWindow::MainWindow(const std::string& folder, QWidget* parent)
    : QMainWindow(parent), m_folder(folder), m_log(folder), m_mirror(m_store), m_steps(m_store) {
    setObjectName("frmMain");
    setWindowTitle("KOV Lumeth EX Administrator");

    m_connection = new Connection(m_store, m_link, m_log, this);
    m_connection->setObjectName("scktServer");
    m_connection->decodeTimer()->setObjectName("tmrDecode");
    m_connection->pollTimer()->setObjectName("tmrPoll");

    m_views = new MainViews(m_store, Reporter(), this);
    m_views->setListEditor([this] { ShowListEditor(); });
    m_channelModels = new ChannelListModels(this);
    m_recovery = new EditRecovery(m_store, m_folder, Reporter(), this);
    m_recoveryOffered = !m_recovery->Load();

    BuildMenus();
    BuildLayout();

    connect(m_connection, &Connection::statusTextChanged, m_linkPanel, &QLabel::setText);
    // Direct: the store still holds what the download is about to replace.
    connect(m_connection, &Connection::partArriving, this, &MainWindow::OnPartArriving,
            Qt::DirectConnection);
    // The kept edits see each download before anything reacts to it.
    connect(m_connection, &Connection::partReceived, this, [this](Part part) {
        m_recovery->Received(part, m_store);
        if (!m_recoveryOffered)
            QTimer::singleShot(0, this, &MainWindow::OfferRecoveredEdits);
    });
    connect(m_connection, &Connection::partReceived, this, &MainWindow::OnPartReceived);
    connect(m_connection, &Connection::linkConnected, this, &MainWindow::OnLinkConnected);
    connect(m_connection, &Connection::linkDisconnected, this, &MainWindow::OnLinkLost);

    // Pending masks change as requests go out and answers come in; the
    // progress panel follows them.
    m_progressTimer = new QTimer(this);
    m_progressTimer->setInterval(200);
    connect(m_progressTimer, &QTimer::timeout, this, &MainWindow::RefreshProgress);
}

MainWindow::~MainWindow() = default;

void MainWindow::BuildMenus() {
    BuildFileMenu(AddMenu(menuBar(), "&File", "mnuFile"));
    BuildEditMenu(AddMenu(menuBar(), "&Edit", "mnuEditMenu"));
    QMenu* help = AddMenu(menuBar(), "&Help", "mnuHelp");
    connect(MakeMenuAction(help, "mnuAbout", "About"), &QAction::triggered, this,
            &MainWindow::ShowAbout);
    BuildPopup();
}

void MainWindow::BuildFileMenu(QMenu* file) {
    connect(MakeMenuAction(file, "mnuSetup", "Setup"), &QAction::triggered, this,
            &MainWindow::ShowSetup);
    MakeSeparator(file, "mnuSep1");
    connect(MakeMenuAction(file, "munUserGroups", "Edit &User Groups"), &QAction::triggered, this,
            &MainWindow::EditGroups);
    connect(MakeMenuAction(file, "mnuDisplayLists", "Edit &Dsiplay Lists"), &QAction::triggered,
            this, &MainWindow::EditLists);
    connect(MakeMenuAction(file, "mnuButtons", "Program &Button Templates"), &QAction::triggered,
            this, &MainWindow::EditButtons);
    MakeSeparator(file, "mnuSep2");
    connect(MakeMenuAction(file, "mnuSaveAll", "&Save All"), &QAction::triggered, this,
            &MainWindow::SaveAll);
    connect(MakeMenuAction(file, "mnuLoadAll", "&Load All"), &QAction::triggered, this,
            &MainWindow::LoadAll);
    connect(MakeMenuAction(file, "mnuExportCsv", "Export CSV..."), &QAction::triggered, this,
            &MainWindow::ExportCsvFiles);
    connect(MakeMenuAction(file, "mnuImportCsv", "Import CSV..."), &QAction::triggered, this,
            &MainWindow::ImportCsvFiles);
    MakeSeparator(file, "mnuSep3");
    connect(MakeMenuAction(file, "mnuExit", "E&xit"), &QAction::triggered, this, &QWidget::close);
}

void MainWindow::BuildEditMenu(QMenu* edit) {
    m_undo = MakeMenuAction(edit, "mnuUndo", "&Undo");
    m_undo->setShortcut(QKeySequence("Ctrl+Z"));
    connect(m_undo, &QAction::triggered, this, &MainWindow::Undo);
    m_redo = MakeMenuAction(edit, "mnuRedo", "&Redo");
    m_redo->setShortcut(QKeySequence("Ctrl+Shift+Z"));
    connect(m_redo, &QAction::triggered, this, &MainWindow::Redo);
    MakeSeparator(edit, "mnuEditSep1");
    QAction* changes = MakeMenuAction(edit, "mnuChanges", "&Review Changes...");
    changes->setShortcut(QKeySequence("Ctrl+D"));
    connect(changes, &QAction::triggered, this, &MainWindow::ReviewChanges);
    connect(MakeMenuAction(edit, "mnuCheck", "&Check Configuration..."), &QAction::triggered, this,
            &MainWindow::ShowCheck);
    m_safeApply = new SafeApply(*this);
    m_safeApply->AddMenuItems(edit);
    RefreshEditMenu();
}

void MainWindow::BuildPopup() {
    // Not on the menu bar: shown only as the views' context menu.
    m_popup = new QMenu("Popup", this);
    m_popup->setObjectName("mnuPopup");
    connect(MakeMenuAction(m_popup, "mnuEdit", "Edit List"), &QAction::triggered, this,
            &MainWindow::EditFromPopup);
    connect(m_popup, &QMenu::aboutToHide, this, [this] {
        // After the menu's action (if any) has run.
        QTimer::singleShot(0, this, &MainWindow::RefreshAfterPopup);
    });
    BuildWhereUsed();
}

void MainWindow::BuildLayout() {
    auto* central = new QWidget(this);
    central->setObjectName("frmMainClient");
    setCentralWidget(central);
    // The views were created on the window; move them onto the client area.
    for (QWidget* w : std::initializer_list<QWidget*>{
             m_views->groups(), m_views->displayLists(), m_views->items(), m_views->caption(0),
             m_views->caption(1), m_views->caption(2), m_views->subTypeFrame()})
        w->setParent(central);

    for (QTreeWidget* view : {m_views->groups(), m_views->displayLists()}) {
        view->setContextMenuPolicy(Qt::NoContextMenu);
        view->viewport()->installEventFilter(this);
    }

    auto* grid = new QGridLayout;
    grid->addWidget(m_views->caption(0), 0, 0);
    grid->addWidget(m_views->caption(1), 0, 1);
    grid->addWidget(m_views->caption(2), 0, 2);
    grid->addWidget(m_views->groups(), 1, 0, 2, 1);
    grid->addWidget(m_views->subTypeFrame(), 1, 1);
    grid->addWidget(m_views->displayLists(), 2, 1);
    grid->addWidget(m_views->items(), 1, 2, 2, 1);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 4);
    grid->setColumnStretch(2, 5);
    grid->setRowStretch(2, 1);

    auto* editLists = MakeButton(central, "cmdEditLists", "Edit &Lists", "Edit Display Lists");
    auto* editButtons =
        MakeButton(central, "cmdEditButtons", "Edit &Buttons", "Edit Button programming");
    auto* editGroups = MakeButton(central, "cmdEditGroups", "Edit &Groups", "Edit User Groups");
    m_send = MakeButton(central, "cmdSend", "Apply",
                        "Send the display lists, user groups and button templates to the "
                        "server module");
    auto* cancel = MakeButton(central, "cmdCancel", "&Cancel",
                              "Discard local changes and download everything again");
    connect(editLists, &QPushButton::clicked, this, &MainWindow::EditLists);
    connect(editButtons, &QPushButton::clicked, this, &MainWindow::EditButtons);
    connect(editGroups, &QPushButton::clicked, this, &MainWindow::EditGroups);
    connect(m_send, &QPushButton::clicked, this, &MainWindow::Apply);
    connect(cancel, &QPushButton::clicked, this, &MainWindow::CancelEdits);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(editGroups);
    buttons->addWidget(editLists);
    buttons->addWidget(editButtons);
    buttons->addStretch(1);
    buttons->addWidget(m_send);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(central);
    layout->addLayout(grid, 1);
    layout->addLayout(buttons);
    SetTabOrder({editGroups, editLists, editButtons, m_send, cancel});

    BuildStatusBar();

    // Until a remembered layout says otherwise: comfortable, and within the screen.
    QSize size(1200, 780);
    if (const QScreen* shown = screen())
        size = size.boundedTo(shown->availableGeometry().size() * 0.95);
    resize(size);
}

// Tab walks the window in reading order: the three views left to right (the
// sub type buttons above the lists), then the buttons below them.
void MainWindow::SetTabOrder(const std::vector<QWidget*>& buttons) {
    std::vector<QWidget*> order{m_views->groups()};
    for (QRadioButton* button : m_views->subTypeButtons())
        order.push_back(button);
    order.push_back(m_views->displayLists());
    order.push_back(m_views->items());
    order.insert(order.end(), buttons.begin(), buttons.end());
    for (QWidget* w : order)
        w->setFocusPolicy(Qt::StrongFocus);
    for (size_t i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void MainWindow::BuildStatusBar() {
    QStatusBar* status = statusBar();
    status->setObjectName("stbStatus");
    // Messages appear in the room left of the two panels: the link panel is
    // as wide as its longer text, the progress panel no wider than its text
    // and its share of the bar (cut with "...", whole in its tooltip).
    m_linkPanel = new QLabel(status);
    m_linkPanel->setMinimumWidth(
        m_linkPanel->fontMetrics().horizontalAdvance("Server Module Not Connected") + 8);
    m_linkPanel->setObjectName("stbStatus_1");
    m_linkPanel->setProperty("controlArray", "stbStatus");
    m_linkPanel->setProperty("controlIndex", 1);
    m_progressPanel = new ElidedLabel(status, kProgressPanelShare);
    m_progressPanel->setObjectName("stbStatus_2");
    m_progressPanel->setProperty("controlArray", "stbStatus");
    m_progressPanel->setProperty("controlIndex", 2);
    // The records the window holds, for the sub type shown (all of them in
    // its tooltip); cut first when the bar is narrow.
    m_countsPanel = new ElidedLabel(status, kCountsPanelShare);
    m_countsPanel->setObjectName("lblCounts");
    status->addPermanentWidget(m_countsPanel);
    for (QRadioButton* button : m_views->subTypeButtons())
        connect(button, &QRadioButton::toggled, this, &MainWindow::RefreshCounts);
    status->addPermanentWidget(m_linkPanel);
    status->addPermanentWidget(m_progressPanel);
    // A click on "Unapplied changes" reviews them.
    m_progressPanel->installEventFilter(this);
}

void MainWindow::Start() {
    m_views->ClearAll();
    m_link = LinkState{};
    m_store.editorListType = kUserGroupListType;
    m_store.currentListType = ListTypeCode(SubType::Input);
    m_settings = Settings{};
    m_settings.packetSize = 16383;
    // A failed read leaves the values read so far; it is logged, not shown.
    const Status read = ReadSettings(m_folder, m_settings);
    if (!read)
        ReportError("Error Reading ini file", "File Error", read.failure());
    m_linkPanel->setText("Server Module Not Connected");
    RestoreWindowLayout(*this, {m_views->groups(), m_views->displayLists(), m_views->items()},
                        QString::fromStdString(m_folder));
    if (m_settings.serverPort == 0)
        m_settings.serverPort = 1250;
    m_link.serverAddress = m_settings.serverAddress;
    m_link.serverPort = m_settings.serverPort;

    m_connection->Connect();
    setEnabled(false);

    m_connection->setLoginHook([this] { ShowLogin(); });
    m_connection->StartPolling();
    m_progressTimer->start();
}

void MainWindow::ShowLogin() {
    if (m_shutDown || (m_login && m_login->isVisible()))
        return;
    setEnabled(false);
    if (!m_login) {
        m_login = new LoginDialog(m_link, *m_connection, m_normalisedAddress, this);
        connect(m_login, &QDialog::finished, this, &MainWindow::OnLoginFinished);
    }
    // Modal for the operator, without a nested event loop: the link keeps
    // running and the poll timer sees the dialog is already up.
    m_login->setEnabled(true);
    m_login->open();
}

void MainWindow::OnLoginFinished() {
    if (m_link.enteredPassword.empty()) {
        close();
        return;
    }
    setEnabled(true);
    m_views->groups()->setFocus();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (m_shutDown) {
        event->accept();
        return;
    }
    if (!ConfirmQuit()) {
        event->ignore();
        return;
    }
    m_shutDown = true;
    m_connection->StopPolling();
    m_progressTimer->stop();
    m_connection->Disconnect();

    m_settings.serverAddress = m_link.serverAddress;
    m_settings.serverPort = m_link.serverPort;
    const Status written = WriteSettings(m_folder, m_settings);
    if (!written)
        ReportError("Error Writing ini file", "File Error", written.failure());
    const Status layout =
        SaveWindowLayout(*this, {m_views->groups(), m_views->displayLists(), m_views->items()},
                         QString::fromStdString(m_folder));
    if (!layout)
        ReportError("Error Writing window layout", "File Error", layout.failure());

    m_recovery->Flush();

    // Unload every other window, the most recent first.
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (qsizetype i = windows.size() - 1; i >= 0; --i) {
        QWidget* window = windows[i];
        if (window != this && window->isVisible())
            window->close();
    }
    event->accept();
}

ErrorReporter MainWindow::Reporter() {
    return [this](std::string_view location, std::string_view category, const Failure& failure) {
        ReportError(location, category, failure);
    };
}

void MainWindow::ReportError(std::string_view location, std::string_view category,
                             const Failure& failure) {
    m_log.ReportError(location, category, failure);
}

void MainWindow::OnPartArriving(Part part) {
    // An open editor's pending changes are part of what the download replaces.
    if (m_listEditor)
        m_listEditor->PartArriving(part);
    m_steps.Arriving(part, m_store);
}

void MainWindow::OnPartReceived(Part part) {
    const bool upload = kUploadParts.has(part);
    if (upload)
        KeepReplacedEdits(part);
    m_mirror.Received(part, m_store, m_link.serverPassword);
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::UserGroups:
        m_views->DisplayUserGroups();
        m_views->ShowGroupData(m_store.currentUserGroup);
        break;
    case PartKind::DisplayLists:
        m_views->ShowDisplayListData(m_store.currentList);
        break;
    case PartKind::Alphas:
        m_channelModels->Rebuild(m_store, *info.subType);
        break;
    case PartKind::Password:
    case PartKind::Templates:
        break;
    }
    if (m_listEditor)
        m_listEditor->PartReplaced(part);
    if (m_buttonEditor)
        m_buttonEditor->PartReplaced(part);
    // A download is no step of its own (beyond the edits it replaced), and
    // neither is what an editor does to show it: later steps start from it.
    if (upload)
        m_steps.Rebase(m_store, PartSet{part});
    if (upload && !m_applying)
        RefreshUnapplied();
    RefreshProgress();
}

void MainWindow::KeepReplacedEdits(Part part) {
    if (!m_steps.Arrived(part, m_store, m_mirror.uploadParts()))
        return;
    RefreshEditMenu();
    statusBar()->showMessage(kReplacedText);
}

void MainWindow::RefreshUnapplied() {
    setUnappliedChanges(!m_mirror.Unapplied(m_store).empty());
}

void MainWindow::OnLinkLost() {
    if (m_shutDown)
        return;
    m_linkLost = true;
    statusBar()->showMessage(m_unapplied ? "Lost the link to the server module; the unapplied "
                                           "changes are kept."
                                         : "Lost the link to the server module.");
    RefreshProgress();
}

QString MainWindow::ProgressText() const {
    const PartSet waiting = PartsIn({m_link.pendingA, m_link.pendingB, m_link.pendingC});
    // Requests still marked pending while the link is down are not being
    // answered: nothing is being received.
    if (!waiting.empty() && m_link.connected)
        return "Receiving: " + QString::fromStdString(JoinPartNames(waiting)) + "...";
    if (m_applying)
        return "Sending...";
    if (m_linkLost && !m_link.connected)
        return m_unapplied ? QString("Link lost - ") + kUnappliedText : QString("Link lost");
    return m_unapplied ? kUnappliedText : QString();
}

void MainWindow::RefreshProgress() {
    const QString text = ProgressText();
    if (m_progressPanel->text() != text)
        m_progressPanel->setText(text);
    RefreshCounts();
}

void MainWindow::RefreshCounts() {
    const StoreCounts counts = CountRecords(m_store);
    const SubType shown = SubTypeFromListCode(m_store.currentListType).value_or(SubType::Input);
    const QString line = ToQt(CountsLine(counts, shown));
    if (m_countsPanel->text() != line)
        m_countsPanel->setText(line);
    m_countsPanel->setToolTip(ToQt(CountsDetail(counts)));
}

void MainWindow::setUnappliedChanges(bool unapplied) {
    m_unapplied = unapplied;
    RefreshProgress();
}

void MainWindow::ShowListEditor() {
    if (!m_listEditor) {
        m_listEditor = new DisplayListEditor(m_store, m_folder, Reporter(), this);
        m_listEditor->setStepHook([this] { RecordStep(); });
    }
    m_listEditor->exec();
    RecordStep();
    if (m_listEditor->storeChanged())
        RefreshUnapplied();
    if (m_listEditor->recordsMoved())
        RedrawAfterMoves();
}

void MainWindow::EditGroups() {
    if (m_store.editorListType != kUserGroupListType) {
        m_store.editorListType = kUserGroupListType;
        m_store.currentListType = ListTypeCode(SubType::Input);
        m_store.currentUserGroup = 0;
    }
    ShowListEditor();
    m_views->DisplayUserGroups();
    m_views->SelectFirstGroup();
    m_store.currentUserGroup = 0;
    m_views->ShowGroupData(m_store.currentUserGroup);
    m_views->groups()->setFocus();
}

void MainWindow::EditLists() {
    if (m_store.editorListType == kUserGroupListType) {
        m_store.currentList = 0;
        m_store.editorListType = ListTypeCode(SubType::Input);
        m_store.currentListType = ListTypeCode(SubType::Input);
    }
    ShowListEditor();
    m_views->SelectFirstGroup();
    m_views->ShowGroupData(m_store.currentUserGroup);
    m_views->groups()->setFocus();
}

void MainWindow::EditButtons() {
    if (!m_buttonEditor) {
        m_buttonEditor = new ButtonEditor(m_store, *m_channelModels, Reporter(), m_folder, this);
        m_buttonEditor->setStepHook([this] { RecordStep(); });
    }
    // Compared by the parts Apply sends: anything the editor changed
    // (including a template grown to 32 buttons) is waiting for Apply; an
    // edit undone before closing is not.
    const PanelSnapshot before = TakeSnapshot(m_store, &m_steps.base());
    m_buttonEditor->exec();
    RecordStep();
    if (!(m_steps.base() == before))
        RefreshUnapplied();
}

void MainWindow::EditFromPopup() {
    // The menu has already closed and queued its refresh; the editor keeps
    // events flowing, so that refresh would run while it is still open. Take
    // it over and run it once the editor has committed.
    QObject* source = std::exchange(m_popupSource, nullptr);
    ShowListEditor();
    m_views->DisplayUserGroups();
    m_popupSource = source;
    RefreshAfterPopup();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_progressPanel && event->type() == QEvent::MouseButtonRelease) {
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton &&
            m_progressPanel->text().endsWith(kUnappliedText))
            QTimer::singleShot(0, this, &MainWindow::ReviewChanges);
        return false;
    }
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        // The views would move their selection to the item under a right
        // press, but "Edit List" acts on the item the last click chose: the
        // selection stays on that one.
        const bool overViews = watched == m_views->groups()->viewport() ||
                               watched == m_views->displayLists()->viewport();
        if (overViews && static_cast<QMouseEvent*>(event)->button() == Qt::RightButton)
            return true;
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        const bool overGroups = watched == m_views->groups()->viewport();
        const bool overLists = watched == m_views->displayLists()->viewport();
        if (mouse->button() == Qt::RightButton && (overGroups || overLists)) {
            // No context menu while a download is outstanding.
            if (!m_link.AnyPending() && !m_popup->isVisible()) {
                m_popupSource = overGroups ? static_cast<QObject*>(m_views->groups())
                                           : static_cast<QObject*>(m_views->displayLists());
                m_popup->popup(mouse->globalPosition().toPoint());
            }
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::RefreshAfterPopup() {
    QObject* source = m_popupSource;
    m_popupSource = nullptr;
    if (source == m_views->displayLists()) {
        m_views->ShowDisplayListData(m_store.currentList);
        m_views->ShowGroupData(m_store.currentUserGroup);
    } else if (source == m_views->groups()) {
        m_views->DisplayUserGroups();
        m_views->ShowGroupData(m_store.currentUserGroup);
    }
}

void MainWindow::Apply() {
    if (m_applying)
        return;
    // Without a link nothing goes out, so there is nothing to confirm or keep.
    const bool connected = m_link.connected;
    if (connected && !ConfirmUnreceivedParts())
        return;
    m_applying = true;
    if (connected)
        WriteApplyBackup();
    m_send->setEnabled(false);
    RefreshEditMenu();
    RefreshProgress();
    const PartSet sent = m_connection->Apply();
    m_applying = false;
    m_send->setEnabled(true);
    RefreshEditMenu();
    // Sent only when the link stayed up for the whole upload.
    if (connected && m_link.connected)
        m_mirror.Applied(m_store);
    statusBar()->showMessage(ApplyOutcome(connected, m_link.connected, sent));
    RefreshUnapplied();
}

void MainWindow::CancelEdits() {
    // The download replaces the local edits: one step, undone to the edits.
    m_steps.RecordFrom(TakeSnapshot(m_store, &m_steps.base()), m_store);
    // The parts the download replaces join this step.
    m_steps.StartDownloadStep();
    RefreshEditMenu();
    m_recovery->Discard();
    m_mirror.RequestedEverything();
    m_connection->RequestEverything();
    // The edits stay unapplied until the download has replaced them.
    RefreshUnapplied();
}

void MainWindow::SaveAll() {
    const QString path =
        ChooseFileName(this, QString::fromStdString(m_folder), kDefaultPanelDataFileName, "dat");
    if (path.isEmpty())
        return;
    const Status saved = SavePanelDataFile(path.toStdString(), m_store);
    if (saved) {
        statusBar()->showMessage("Saved " + QDir::toNativeSeparators(path), kStatusMessageMs);
        return;
    }
    ReportError("Error Writing LumethEX File", "File Error", saved.failure());
    // Stays until the next message: the file on disk is not what the window shows.
    statusBar()->showMessage("Could not save " + QDir::toNativeSeparators(path) + ": " +
                             QString::fromStdString(saved.failure().detail));
}

void MainWindow::LoadAll() {
    const QString path =
        ChooseFileName(this, QString::fromStdString(m_folder), kDefaultPanelDataFileName, "dat");
    if (!path.isEmpty())
        LoadFile(path);
}

void MainWindow::LoadFile(const QString& path) {
    const PanelSnapshot before = TakeSnapshot(m_store);
    const LoadResult result = LoadPanelDataFile(path.toStdString(), m_store);
    RecordStep();
    if (result.outcome == LoadOutcome::Loaded)
        m_mirror.Loaded();
    switch (result.outcome) {
    case LoadOutcome::NoFile:
        return;
    case LoadOutcome::NotPanelData:
        // The store is back at its defaults; the views are left as they were.
        LoadStopped(path, before, result.status.failure());
        return;
    case LoadOutcome::Failed:
        ReportError("Error Loading LumethEX File", "File Error", result.status.failure());
        LoadStopped(path, before, result.status.failure());
        return;
    case LoadOutcome::Loaded:
        break;
    }
    // Redrawn as a group download is: the groups, then the current group's
    // lists. What the server module holds is left as it was: the file's
    // groups were not received from it.
    m_views->DisplayUserGroups();
    m_views->ShowGroupData(m_store.currentUserGroup);
    // A file equal to what the server module holds leaves nothing to apply.
    RefreshUnapplied();
    statusBar()->showMessage("Loaded " + QDir::toNativeSeparators(path), kStatusMessageMs);
}

void MainWindow::LoadStopped(const QString& path, const PanelSnapshot& before,
                             const Failure& failure) {
    const QString shown = QDir::toNativeSeparators(path);
    m_mirror.LoadStopped(shown.toStdString(), before, m_store);
    RefreshUnapplied();
    // Stays until the next message: Apply asks about this load until it is replaced.
    statusBar()->showMessage("Could not load " + shown + ": " +
                             QString::fromStdString(failure.detail));
}

void MainWindow::ShowSetup() {
    SetupDialog dialog(m_settings, m_link, *m_connection, m_normalisedAddress, this);
    dialog.exec();
}

void MainWindow::ShowAbout() {
    AboutDialog dialog(m_link, this);
    dialog.exec();
}

void MainWindow::OnLinkConnected() {
    m_mirror.LinkUp();
    m_linkLost = false;
    m_steps.EndDownloadStep();
    RefreshProgress();
}

std::vector<std::string> MainWindow::ChangeLines() const {
    return m_mirror.ChangeLines(m_store);
}

void MainWindow::ReviewChanges() {
    if (!m_changes)
        m_changes = new ChangesDialog(this);
    m_changes->setLines(ChangeLines());
    m_changes->exec();
}

void MainWindow::ShowCheck() {
    // Channel numbers are checked against the names the store holds.
    const bool names = std::any_of(kAllSubTypes.begin(), kAllSubTypes.end(),
                                   [this](SubType s) { return m_store.alpha(s).count > 0; });
    const std::vector<CheckFinding> findings = CheckStore(m_store, names);
    std::vector<std::string> lines = CheckReportLines(findings, m_store);
    lines.push_back(CheckSummary(findings));
    ChangesDialog dialog(this, ChangesDialog::Report::Check);
    dialog.setLines(lines);
    dialog.exec();
}

bool MainWindow::ConfirmUnreceivedParts() {
    // Edited parts are those that differ now: an edit undone leaves the part
    // as it was never received.
    QStringList names;
    ForEachPart(m_mirror.Unconfirmed(m_store),
                [&](Part p) { names << QString::fromStdString(std::string(PartName(p))); });
    QStringList sentences;
    if (const std::string damaged = m_mirror.damagedLoad().file(); !damaged.empty())
        sentences << "Loading " + QString::fromStdString(damaged) +
                         " failed part way: the configuration holds only what was read before "
                         "the failure, on top of the defaults. Apply would replace the server "
                         "module's configuration with it.";
    if (!names.isEmpty()) {
        const QString parts = JoinParts(names);
        sentences << "The " + parts +
                         " were not received from the server module. Apply would replace the "
                         "server module's " +
                         parts + " with the ones shown here.";
    }
    if (sentences.isEmpty())
        return true;
    const QString text = sentences.join(' ') + " Send anyway?";
    return MessageBox::Show(this, text, "Apply", QMessageBox::Question,
                            QMessageBox::Yes | QMessageBox::No,
                            QMessageBox::No) == QMessageBox::Yes;
}

void MainWindow::WriteApplyBackup(const PanelStore* held) {
    if (!held && !m_mirror.full())
        return;
    const std::string stamp =
        QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss").toStdString();
    const Status written = WriteBackup(m_folder, stamp, held ? *held : *m_mirror.full());
    if (!written)
        ReportError("Error Saving Backup", "File Error", written.failure());
}

void MainWindow::RecordStep() {
    if (!m_steps.Record(m_store))
        return;
    RefreshEditMenu();
}

void MainWindow::Undo() {
    if (m_steps.Undo(m_store))
        AfterRestore();
}

void MainWindow::Redo() {
    if (m_steps.Redo(m_store))
        AfterRestore();
}

void MainWindow::AfterRestore() {
    m_mirror.Restored(m_store);
    m_views->DisplayUserGroups();
    m_views->ShowGroupData(m_store.currentUserGroup);
    m_views->ShowDisplayListData(m_store.currentList);
    RefreshUnapplied();
    RefreshEditMenu();
}

void MainWindow::RefreshEditMenu() {
    // The upload keeps the window running between its messages; an undo then
    // would send a mix of two configurations.
    m_undo->setEnabled(!m_applying && m_steps.history().canUndo());
    m_redo->setEnabled(!m_applying && m_steps.history().canRedo());
    // Called after every step: the kept edits follow the store.
    m_recovery->Changed(m_store);
}

bool MainWindow::ConfirmQuit() {
    // Nobody logged in (the login closed after a lost link): the program ends
    // without a question; the recovery file keeps the edits.
    if (!m_unapplied || m_link.enteredPassword.empty())
        return true;
    const QString text = "The changes have not been applied to the server module. Quit anyway?\n\n"
                         "They are kept and offered back the next time the program starts.";
    return MessageBox::Show(this, text, "Exit", QMessageBox::Question,
                            QMessageBox::Yes | QMessageBox::No,
                            QMessageBox::No) == QMessageBox::Yes;
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // The login enables the window: the offer may have waited for it.
    if (event->type() == QEvent::EnabledChange && isEnabled() && !m_recoveryOffered)
        QTimer::singleShot(0, this, &MainWindow::OfferRecoveredEdits);
}

void MainWindow::OfferRecoveredEdits() {
    if (m_recoveryOffered || m_shutDown || !isEnabled() || !m_mirror.missing().empty())
        return;
    m_recoveryOffered = true;
    // Parts a download showed the server module to hold are no longer kept.
    const PartSet parts = m_recovery->kept().parts();
    if (parts.empty())
        return;
    const QString text =
        "Changes that were not applied to the server module were kept from the last session "
        "(" +
        QString::fromStdString(JoinPartNames(parts)) +
        "). Put them back over the configuration just received?";
    if (MessageBox::Show(this, text, "Unapplied changes", QMessageBox::Question,
                         QMessageBox::Yes | QMessageBox::No,
                         QMessageBox::Yes) != QMessageBox::Yes) {
        m_recovery->Discard();
        return;
    }
    RestoreParts(m_recovery->kept().edits(), parts, m_store);
    RecordStep();
    AfterRestore();
}

} // namespace lumeth
