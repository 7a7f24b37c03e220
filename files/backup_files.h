#pragma once

#include <string>
#include <string_view>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

inline constexpr const char* kBackupFolder = "backups";
inline constexpr int kBackupsKept = 30;

// backups/LumethEX-<stamp>.dat in `folder` (the program's folder, ending in a
// separator); `stamp` is yyyyMMdd-HHmmss.
std::string BackupPath(const std::string& folder, const std::string& stamp);

// LumethEX-<stamp>.dat: the names WriteBackup gives and prunes.
std::string BackupFileName(std::string_view stamp);
bool IsBackupName(std::string_view name);
// The stamp part of a backup's file name.
std::string_view BackupStamp(std::string_view name);

// Write `store` as a panel data file to BackupPath (the folder is created
// when missing, the file replaced atomically), then delete the oldest
// backups beyond `keep`. `path` receives the file written.
Status WriteBackup(const std::string& folder, const std::string& stamp, const PanelStore& store,
                   std::string* path = nullptr, int keep = kBackupsKept);

// The same into the backups folder `backupDir` itself (created when missing), for
// a folder chosen by the user rather than the program's own.
Status WriteBackupInto(const std::string& backupDir, const std::string& stamp,
                       const PanelStore& store, std::string* path = nullptr,
                       int keep = kBackupsKept);

} // namespace lumeth
