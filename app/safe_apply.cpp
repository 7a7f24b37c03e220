#include "app/safe_apply.h"

#include <QAction>
#include <QEventLoop>
#include <QMenu>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>

#include "app/main_window.h"
#include "link/connection.h"
#include "model/merge_plan.h"
#include "model/panel_snapshot.h"
#include "model/store_diff.h"
#include "ui/apply_selected_dialog.h"
#include "ui/backups_dialog.h"
#include "ui/changes_dialog.h"
#include "ui/message_box.h"

namespace lumeth {

namespace {

constexpr const char* kCompareTitle = "Compare with Server Module";
constexpr const char* kApplySelectedTitle = "Apply Selected";
constexpr const char* kNothingSent = "Nothing was sent.";
constexpr const char* kNotConnected = "Not connected to the server module: nothing was sent.";

QString Names(PartSet parts) {
    return QString::fromStdString(JoinPartNames(parts));
}

// `lines` under `heading`, indented; "No changes." for none.
void AddSection(std::vector<std::string>& out, const char* heading,
                const std::vector<std::string>& lines) {
    if (!out.empty())
        out.emplace_back();
    out.emplace_back(heading);
    if (lines.empty())
        out.push_back(std::string("  ") + kNoChangesLine);
    for (const std::string& line : lines)
        out.push_back("  " + line);
}

} // namespace

SafeApply::SafeApply(MainWindow& window) : QObject(&window), m_window(window) {}

void SafeApply::AddMenuItems(QMenu* edit) {
    const auto add = [&](const char* name, const char* caption, void (SafeApply::*slot)()) {
        QAction* action = edit->addAction(caption);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, slot);
    };
    add("mnuCompare", "Compare with Server &Module...", &SafeApply::Compare);
    add("mnuApplySelected", "Apply &Selected...", &SafeApply::ApplySelected);
    add("mnuBackups", "&Backups...", &SafeApply::ShowBackups);
}

std::vector<std::string> SafeApply::CompareLines(const PanelStore& base, PartSet received,
                                                 const PanelStore& server, const PanelStore& mine) {
    std::vector<std::string> lines;
    AddSection(lines, "What Apply would change on the server module:", DiffStores(server, mine));
    std::vector<std::string> since;
    ForEachPart(received & kUploadParts, [&](Part part) {
        for (std::string& line : DiffPart(base, server, part))
            since.push_back(std::move(line));
    });
    if (const PartSet unknown = kUploadParts - received; !unknown.empty())
        since.push_back("Not received from the server module before: " + JoinPartNames(unknown));
    AddSection(lines, "Changed on the server module since this window received it:", since);
    return lines;
}

PanelStore SafeApply::Base() const {
    PanelStore base = m_window.m_store;
    RestoreSnapshot(m_window.m_mirror.uploadParts(), base);
    return base;
}

void SafeApply::Say(const QString& text) {
    m_window.statusBar()->showMessage(text);
}

std::optional<PanelStore> SafeApply::ReadServer(const QString& during, const QString& consequence) {
    const LinkState& link = m_window.m_link;
    ServerReader reader(m_window.m_log);
    QProgressDialog progress("Reading the server module's configuration...", "Cancel", 0,
                             kAllParts.size(), &m_window);
    progress.setObjectName("frmReading");
    progress.setWindowTitle(during);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.setAutoClose(false);
    progress.setAutoReset(false);
    connect(&reader, &ServerReader::progress, &progress,
            [&progress](int received, int) { progress.setValue(received); });
    connect(&progress, &QProgressDialog::canceled, &reader, &ServerReader::Cancel);
    bool ok = false;
    QString reason;
    QEventLoop loop;
    connect(&reader, &ServerReader::finished, &loop, [&](bool done, const QString& why) {
        ok = done;
        reason = why;
        loop.quit();
    });
    reader.Start(link.serverAddress, link.serverPort, link.enteredPassword, m_readLimitMs);
    progress.show();
    if (reader.running())
        loop.exec();
    progress.hide();
    if (ok)
        return reader.store();
    if (progress.wasCanceled()) {
        Say((during + " cancelled. " + consequence).trimmed());
        return std::nullopt;
    }
    const QString text =
        ("Could not read the server module's configuration: " + reason + " " + consequence)
            .trimmed();
    Say(text);
    MessageBox::Show(&m_window, text, during, QMessageBox::Warning);
    return std::nullopt;
}

void SafeApply::Compare() {
    if (m_busy)
        return;
    m_busy = true;
    const std::optional<PanelStore> server = ReadServer(kCompareTitle, {});
    m_busy = false;
    if (!server)
        return;
    const ServerMirror& mirror = m_window.m_mirror;
    ChangesDialog dialog(&m_window, ChangesDialog::Report::Compare);
    dialog.setLines(CompareLines(Base(), mirror.held(), *server, m_window.m_store));
    dialog.exec();
}

void SafeApply::ApplySelected() {
    if (m_busy || m_window.m_applying)
        return;
    if (!m_window.m_link.connected) {
        Say(kNotConnected);
        return;
    }
    m_busy = true;
    const std::optional<PanelStore> server = ReadServer(kApplySelectedTitle, kNothingSent);
    if (!server) {
        m_busy = false;
        return;
    }
    const PanelStore& mine = m_window.m_store;
    const MergePlan plan = PlanMerge(Base(), *server, mine);
    std::vector<ApplyPartRow> rows;
    ForEachPart(kUploadParts, [&](Part part) {
        rows.push_back({part, static_cast<int>(DiffPart(*server, mine, part).size()),
                        plan.conflicts.has(part), plan.keptServer.has(part)});
    });
    ApplySelectedDialog dialog(&m_window);
    dialog.setRows(rows);
    if (dialog.exec() == QDialog::Accepted) {
        const PartSet sent = Send(dialog.chosen(), *server);
        if (!sent.empty())
            Verify(sent, dialog.chosen() - sent);
    }
    m_busy = false;
}

PartSet SafeApply::Send(PartSet parts, const PanelStore& server) {
    MainWindow& w = m_window;
    if (!w.m_link.connected) {
        Say(kNotConnected);
        return {};
    }
    w.WriteApplyBackup(&server);
    w.m_applying = true;
    w.m_send->setEnabled(false);
    w.RefreshEditMenu();
    const PartSet sent = w.m_connection->Apply(parts);
    if (w.m_link.connected) {
        w.m_mirror.Applied(w.m_store, sent);
        w.RefreshUnapplied();
        // As between two messages: the server module has taken the last
        // one before the read-back asks.
        w.m_connection->Wait(kApplySpacingMs, true);
    }
    w.m_applying = false;
    w.m_send->setEnabled(true);
    w.RefreshEditMenu();
    w.RefreshProgress();
    if (!w.m_link.connected) {
        Say(sent.empty() ? QString("The link to the server module was lost during Apply "
                                   "Selected: nothing was sent.")
                         : "The link to the server module was lost during Apply Selected; sent "
                           "before it was lost: " +
                               Names(sent) + ".");
        return {};
    }
    return sent;
}

void SafeApply::Verify(PartSet sent, PartSet unsent) {
    QString done = "Sent the " + Names(sent) + " to the server module";
    if (!unsent.empty())
        done += " (not sent: the " + Names(unsent) + ", see the error log)";
    const std::optional<PanelStore> back =
        ReadServer(kApplySelectedTitle, done + "; they were not read back.");
    if (!back)
        return;
    const PartSet differ = DifferingParts(*back, m_window.m_store) & sent;
    Say(done + (differ.empty()
                    ? QString("; read back: verified.")
                    : "; read back: the " + Names(differ) + " differ from what was sent."));
}

void SafeApply::ShowBackups() {
    BackupsDialog dialog(m_window.m_folder, m_window.m_store, &m_window);
    if (dialog.exec() == QDialog::Accepted && !dialog.loadPath().isEmpty())
        m_window.LoadFile(dialog.loadPath());
}

} // namespace lumeth
