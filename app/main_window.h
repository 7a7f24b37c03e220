#pragma once

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/error_log.h"
#include "files/settings.h"
#include "link/link_state.h"
#include "model/edit_steps.h"
#include "model/panel_store.h"
#include "model/server_mirror.h"
#include "ui/error_reporter.h"

class QAction;
class QLabel;
class QMenu;
class QPushButton;
class QTimer;

namespace lumeth {

// How long a status bar message that reports success stays.
inline constexpr int kStatusMessageMs = 6000;

class AboutDialog;
class ChangesDialog;
class ButtonEditor;
class ChannelListModels;
class Connection;
class DisplayListEditor;
class EditRecovery;
class LoginDialog;
class MainViews;
class SafeApply;

// frmMain, "KOV Lumeth EX Administrator": the views of the panel
// configuration, the commands and menus, and the program's start-up and
// shut-down. It owns the process-wide state: the store, the link, the
// settings and the error log.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // `folder` is the program's folder, ending in a separator.
    explicit MainWindow(const std::string& folder, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Form load: views emptied, link reset, settings read, "Server Module Not
    // Connected", connect, window disabled, polling (and so the login) started.
    void Start();

    // Commands, as the buttons and menu items call them.
    void EditGroups();
    void EditLists();
    void EditButtons();
    void EditFromPopup();
    // "Where Used..." on the views' context menus: the user groups holding the
    // display list the last click chose, the lists and template keys holding
    // the channel of lvItems' current item.
    void WhereUsedFromPopup();
    void WhereUsedOfChannel();
    void Apply();
    void CancelEdits();
    void SaveAll();
    void LoadAll();
    // File > Export CSV... / Import CSV...: the display lists, user groups and
    // templates as three CSV files in a folder; the import is one undo step.
    void ExportCsvFiles();
    void ImportCsvFiles();
    // Load All of the file `path`, chosen already: one undo step.
    void LoadFile(const QString& path);
    void ShowSetup();
    void ShowAbout();
    // Edit menu: undo and redo a step, review what Apply would change, check.
    void Undo();
    void Redo();
    void ReviewChanges();
    // The problems check finds in the configuration shown, read-only.
    void ShowCheck();
    // The poll timer's login: disable the window and show the login dialog.
    void ShowLogin();

    // The second status panel: download progress or unapplied changes.
    QString ProgressText() const;
    // Marks the store as changed locally (file load, edit) until Apply sends it.
    void setUnappliedChanges(bool unapplied);
    bool hasUnappliedChanges() const { return m_unapplied; }
    // The report of Review Changes: how the store differs from each part as
    // last received or applied; empty exactly when nothing is unapplied.
    std::vector<std::string> ChangeLines() const;
    // The configuration as last received in full from the server module.
    const std::optional<PanelStore>& received() const { return m_mirror.full(); }
    UndoHistory& history() { return m_steps.history(); }

    PanelStore& store() { return m_store; }
    LinkState& link() { return m_link; }
    Settings& settings() { return m_settings; }
    ErrorLog& errorLog() { return m_log; }
    Connection& connection() { return *m_connection; }
    MainViews& views() { return *m_views; }
    const std::string& folder() const { return m_folder; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Compare with Server Module, Apply Selected and Backups work on the
    // window's store, link and mirror as Apply does.
    friend class SafeApply;

    void BuildMenus();
    void BuildFileMenu(QMenu* file);
    void BuildEditMenu(QMenu* edit);
    // The views' context menu.
    void BuildPopup();
    void BuildLayout();
    void BuildStatusBar();
    void SetTabOrder(const std::vector<QWidget*>& buttons);
    void OnPartArriving(Part part);
    void OnPartReceived(Part part);
    // When a download replaced a part that held edits not yet applied, they
    // are kept as an undo step.
    void KeepReplacedEdits(Part part);
    void OnLinkLost();
    // "Unapplied changes" exactly when Review Changes lists something: the
    // store differs, as sent, from what the server module holds.
    void RefreshUnapplied();
    void OnLoginFinished();
    void RefreshProgress();
    // The counts panel follows the store and the sub type shown.
    void RefreshCounts();
    void RefreshAfterPopup();
    void ShowListEditor();
    void BuildWhereUsed();
    // Lists or groups were deleted or moved: the views show them as they are.
    void RedrawAfterMoves();
    void ReportError(std::string_view location, std::string_view category, const Failure& failure);
    ErrorReporter Reporter();
    void OnLinkConnected();
    // Apply's safeguards: ask before replacing parts never received or a
    // configuration a load left damaged, and keep what the server module held
    // as a backup.
    bool ConfirmUnreceivedParts();
    // Load All stopped part way through `path`: say so, and let Apply ask.
    void LoadStopped(const QString& path, const PanelSnapshot& before, const Failure& failure);
    // `held`: what the server module holds, when read just now; otherwise
    // the configuration as last received in full.
    void WriteApplyBackup(const PanelStore* held = nullptr);
    // Records an undo step when the store has moved on since the last one.
    void RecordStep();
    void AfterRestore();
    void RefreshEditMenu();
    // Quitting with unapplied changes asks first; false: the operator stays.
    bool ConfirmQuit();
    // Once the configuration has been received in full after the start, the
    // edits an earlier run kept are offered back.
    void OfferRecoveredEdits();

    std::string m_folder;
    PanelStore m_store;
    LinkState m_link;
    Settings m_settings;
    ErrorLog m_log;
    std::string m_normalisedAddress;
    Connection* m_connection = nullptr;
    MainViews* m_views = nullptr;

    QMenu* m_popup = nullptr;
    QObject* m_popupSource = nullptr;
    QLabel* m_linkPanel = nullptr;
    QLabel* m_progressPanel = nullptr;
    QLabel* m_countsPanel = nullptr;
    QTimer* m_progressTimer = nullptr;
    QPushButton* m_send = nullptr;
    LoginDialog* m_login = nullptr;

    DisplayListEditor* m_listEditor = nullptr; // created on first use
    // The channel lists of the button editor, rebuilt when channel names arrive.
    ChannelListModels* m_channelModels = nullptr;
    ButtonEditor* m_buttonEditor = nullptr;
    bool m_unapplied = false;
    // What the server module holds: the store last received in full (to
    // review changes, and the backup written before Apply), the parts held,
    // each upload part as last received or applied (so that after an undo or
    // redo the unapplied indicator shows whether the store still differs from
    // the server module, even before everything has been received).
    ServerMirror m_mirror;
    EditSteps m_steps;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    ChangesDialog* m_changes = nullptr;
    SafeApply* m_safeApply = nullptr;
    bool m_applying = false;
    // The link went down and has not come back.
    bool m_linkLost = false;
    bool m_shutDown = false;
    // The unapplied edits kept on disk; `m_recoveryOffered` once an earlier
    // run's edits have been offered back (or there were none).
    EditRecovery* m_recovery = nullptr;
    bool m_recoveryOffered = true;
};

} // namespace lumeth
