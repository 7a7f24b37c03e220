#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lumeth {

// One backup WriteBackup left in the backups folder.
struct BackupEntry {
    std::string path;
    // yyyyMMdd-HHmmss, from the file name.
    std::string stamp;
    uint64_t size = 0;
};

// The backups in the backups folder of `folder` (the program's folder,
// ending in a separator), newest first; none when the folder is missing.
std::vector<BackupEntry> ListBackups(const std::string& folder);

} // namespace lumeth
