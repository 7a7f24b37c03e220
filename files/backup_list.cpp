#include "files/backup_list.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "files/backup_files.h"

namespace lumeth {

namespace fs = std::filesystem;

std::vector<BackupEntry> ListBackups(const std::string& folder) {
    std::vector<BackupEntry> backups;
    std::error_code error;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::path(folder) / kBackupFolder, error)) {
        const fs::path& path = entry.path();
        if (!entry.is_regular_file(error) || !IsBackupName(path.filename().string()))
            continue;
        BackupEntry backup;
        backup.path = path.string();
        // LumethEX-<stamp>.dat
        const std::string stem = path.stem().string();
        backup.stamp = stem.substr(stem.find('-') + 1);
        backup.size = entry.file_size(error);
        backups.push_back(std::move(backup));
    }
    // The stamp sorts by time.
    std::sort(backups.begin(), backups.end(),
              [](const BackupEntry& a, const BackupEntry& b) { return a.stamp > b.stamp; });
    return backups;
}

} // namespace lumeth
