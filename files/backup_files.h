#pragma once

#include <string>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

inline constexpr const char* kBackupFolder = "backups";
inline constexpr int kBackupsKept = 30;

// backups/LumethEX-<stamp>.dat in `folder` (the program's folder, ending in a
// separator); `stamp` is yyyyMMdd-HHmmss.
std::string BackupPath(const std::string& folder, const std::string& stamp);

// True for a file name WriteBackup writes: LumethEX-<stamp>.dat.
bool IsBackupName(const std::string& name);

// Write `store` as a panel data file to BackupPath (the folder is created
// when missing, the file replaced atomically), then delete the oldest
// backups beyond `keep`. `path` receives the file written.
Status WriteBackup(const std::string& folder, const std::string& stamp, const PanelStore& store,
                   std::string* path = nullptr, int keep = kBackupsKept);

} // namespace lumeth
