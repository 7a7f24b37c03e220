#include "ui/backups_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "files/backup_files.h"
#include "files/panel_data_file.h"
#include "model/store_diff.h"
#include "ui/changes_dialog.h"
#include "ui/named_widgets.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

enum Column { kDate, kSize, kDifferences };

// The backups in the program folder's backups folder, newest first; none
// when there is no such folder yet.
std::vector<BackupEntry> BackupsIn(const std::string& folder) {
    std::vector<BackupEntry> entries;
    if (!ListBackups(folder + kBackupFolder, entries))
        entries.clear();
    return entries;
}

} // namespace

QString BackupDifferenceText(const PanelStore& current, const PanelStore& backup) {
    const size_t changes = DiffStores(current, backup).size();
    if (changes == 0)
        return kNoChangesLine;
    return (changes == 1 ? QString("1 change: ") : QString("%1 changes: ").arg(changes)) +
           QString::fromStdString(JoinPartNames(DifferingParts(current, backup)));
}

BackupsDialog::BackupsDialog(const std::string& folder, const PanelStore& current, QWidget* parent)
    : QDialog(parent), m_current(current), m_backups(BackupsIn(folder)) {
    setObjectName("frmBackups");
    setWindowTitle("Backups");
    m_list = new QTreeWidget(this);
    m_list->setObjectName("lvBackups");
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels({"Date", "Size", "Differences"});
    m_compare = MakeButton(this, "cmdCompare", "&Compare");
    m_load = MakeButton(this, "cmdLoad", "&Load");
    QPushButton* close = MakeButton(this, "cmdClose", "Close");
    connect(m_compare, &QPushButton::clicked, this, &BackupsDialog::Compare);
    connect(m_load, &QPushButton::clicked, this, &BackupsDialog::Load);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &BackupsDialog::RefreshButtons);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_compare);
    buttons->addWidget(m_load);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    resize(700, 360);
    Fill();
}

void BackupsDialog::Fill() {
    const QLocale locale;
    for (const BackupEntry& backup : m_backups) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(kDate, QString::fromStdString(backup.when));
        item->setText(kSize, locale.toString(static_cast<qulonglong>(backup.bytes)) + " bytes");
        item->setTextAlignment(kSize, Qt::AlignRight | Qt::AlignVCenter);
        PanelStore read = m_current;
        const LoadResult result = LoadPanelDataFile(backup.path, read);
        m_readable.push_back(result.outcome == LoadOutcome::Loaded);
        item->setText(kDifferences, result.outcome == LoadOutcome::Loaded
                                        ? BackupDifferenceText(m_current, read)
                                        : "Cannot be read: " + QString::fromStdString(
                                                                   result.status.failure().detail));
    }
    if (m_list->topLevelItemCount() > 0)
        m_list->setCurrentItem(m_list->topLevelItem(0));
    m_list->header()->resizeSections(QHeaderView::ResizeToContents);
    RefreshButtons();
}

void BackupsDialog::RefreshButtons() {
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    const bool chosen = row >= 0 && m_readable[static_cast<size_t>(row)];
    m_compare->setEnabled(chosen);
    m_load->setEnabled(chosen);
}

bool BackupsDialog::ReadChosen(PanelStore& backup) {
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (row < 0)
        return false;
    backup = m_current;
    // The list says why a backup cannot be read.
    return LoadPanelDataFile(m_backups[static_cast<size_t>(row)].path, backup).outcome ==
           LoadOutcome::Loaded;
}

void BackupsDialog::Compare() {
    PanelStore backup;
    if (!ReadChosen(backup))
        return;
    ChangesDialog dialog(this, ChangesDialog::Report::Compare);
    dialog.setWindowTitle("Compare Backup");
    dialog.setLines(DiffStores(m_current, backup));
    dialog.exec();
}

void BackupsDialog::Load() {
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (row < 0)
        return;
    m_loadPath = QString::fromStdString(m_backups[static_cast<size_t>(row)].path);
    accept();
}

} // namespace lumeth
