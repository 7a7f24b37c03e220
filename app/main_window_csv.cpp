// File > Export CSV... and Import CSV...: the editable parts as three CSV
// files in a folder the operator picks.
#include <QDir>
#include <QStatusBar>

#include "app/main_views.h"
#include "app/main_window.h"
#include "files/csv_configuration.h"
#include "ui/file_dialog.h"

namespace lumeth {

namespace {

QString ChooseCsvFolder(QWidget* parent, const QString& title, const std::string& start) {
    FileDialog::Request request;
    request.title = title;
    request.folder = QString::fromStdString(start);
    request.chooseFolder = true;
    return FileDialog::GetFileName(parent, request);
}

} // namespace

void MainWindow::ExportCsvFiles() {
    const QString folder = ChooseCsvFolder(this, "Export CSV", m_folder);
    if (folder.isEmpty())
        return;
    CsvTexts texts;
    Status written = ExportCsv(m_store, texts);
    if (written)
        written = WriteCsvFolder(folder.toStdString(), texts);
    if (!written) {
        ReportError("Error Exporting CSV Files", "File Error", written.failure());
        statusBar()->showMessage("Could not export CSV: " +
                                 QString::fromStdString(written.failure().detail));
        return;
    }
    statusBar()->showMessage("Exported CSV to " + QDir::toNativeSeparators(folder),
                             kStatusMessageMs);
}

void MainWindow::ImportCsvFiles() {
    const QString folder = ChooseCsvFolder(this, "Import CSV", m_folder);
    if (folder.isEmpty())
        return;
    // All or nothing: a bad row leaves the store as it was.
    const Status imported = ImportCsvFolder(folder.toStdString(), m_store);
    if (!imported) {
        ReportError("Error Importing CSV Files", "File Error", imported.failure());
        statusBar()->showMessage("Could not import CSV: " +
                                 QString::fromStdString(imported.failure().detail));
        return;
    }
    // One undo step; unapplied until Apply sends it, as after Load All.
    RecordStep();
    m_mirror.Loaded();
    m_views->DisplayUserGroups();
    m_views->ShowGroupData(m_store.currentUserGroup);
    RefreshUnapplied();
    statusBar()->showMessage("Imported CSV from " + QDir::toNativeSeparators(folder),
                             kStatusMessageMs);
}

} // namespace lumeth
