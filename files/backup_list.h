#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/failure.h"
#include "model/sub_type.h"

namespace lumeth {

// What one backup (a panel data file written before an Apply) holds, as read
// back from the file.
struct BackupEntry {
    std::string path;
    std::string when; // "2026-11-24 09:30:05" from the file's name, or "unknown time"
    uintmax_t bytes = 0;
    // Ok, or why the file cannot be read whole (the counts are then zero).
    Status status;
    std::array<int, kSubTypeCount> lists{};
    int groups = 0;
    int templates = 0;
};

// The backups in the folder `backupDir`, newest first (their names sort by
// time). Fails only when the folder cannot be listed; a damaged file is an
// entry with `status` saying why.
Status ListBackups(const std::string& backupDir, std::vector<BackupEntry>& entries);

// "3 Input, 2 Output, 0 Opto, 1 Relay display lists, 4 user groups, 2 button
// templates", or "damaged: <why>".
std::string DescribeBackup(const BackupEntry& entry);

} // namespace lumeth
