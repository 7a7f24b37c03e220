#pragma once

#include <QDialog>
#include <QString>

#include <string>
#include <vector>

#include "files/backup_list.h"
#include "model/panel_store.h"

class QTreeWidget;
class QPushButton;

namespace lumeth {

// frmBackups, "Backups": the backups kept before each Apply (lvBackups:
// date, size, what differs from the configuration shown). cmdCompare shows
// the chosen backup against the configuration shown; cmdLoad closes the
// dialog with the backup to load (loadPath()).
class BackupsDialog : public QDialog {
    Q_OBJECT
public:
    // `folder` is the program's folder; `current` the configuration shown.
    BackupsDialog(const std::string& folder, const PanelStore& current, QWidget* parent = nullptr);

    // The backup chosen with Load; empty otherwise.
    const QString& loadPath() const { return m_loadPath; }

private:
    void Fill();
    void RefreshButtons();
    // The chosen row's backup, read over `current`; false when it cannot be read.
    bool ReadChosen(PanelStore& backup);
    void Compare();
    void Load();

    const PanelStore& m_current;
    std::vector<BackupEntry> m_backups;
    std::vector<bool> m_readable; // per row: the file reads as panel data
    QTreeWidget* m_list = nullptr;
    QPushButton* m_compare = nullptr;
    QPushButton* m_load = nullptr;
    QString m_loadPath;
};

// The differences column: "No changes." or "3 changes: User groups, Button
// templates", from `current` to `backup`.
QString BackupDifferenceText(const PanelStore& current, const PanelStore& backup);

} // namespace lumeth
