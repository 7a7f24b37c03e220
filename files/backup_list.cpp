#include "files/backup_list.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "files/backup_files.h"
#include "files/panel_data_file.h"
#include "model/panel_store.h"

namespace lumeth {

namespace fs = std::filesystem;

namespace {

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// yyyyMMdd-HHmmss as "yyyy-MM-dd HH:mm:ss".
std::string StampTime(std::string_view stamp) {
    if (stamp.size() != 15 || stamp[8] != '-' || !AllDigits(stamp.substr(0, 8)) ||
        !AllDigits(stamp.substr(9))) {
        return "unknown time";
    }
    std::string when;
    when.append(stamp.substr(0, 4)).append("-").append(stamp.substr(4, 2));
    when.append("-").append(stamp.substr(6, 2)).append(" ").append(stamp.substr(9, 2));
    when.append(":").append(stamp.substr(11, 2)).append(":").append(stamp.substr(13, 2));
    return when;
}

BackupEntry ReadBackup(const fs::path& file) {
    BackupEntry entry;
    entry.path = file.string();
    entry.when = StampTime(BackupStamp(file.filename().string()));
    std::error_code error;
    entry.bytes = fs::file_size(file, error);
    PanelStore store;
    const LoadResult loaded = LoadPanelDataFile(entry.path, store);
    if (loaded.outcome != LoadOutcome::Loaded) {
        entry.status = loaded.status ? Status::Fail(ErrorCode::InvalidFileFormat, "cannot be read")
                                     : loaded.status;
        return entry;
    }
    if (!loaded.damage.empty()) {
        entry.status = Status::Fail(ErrorCode::InvalidFileFormat, loaded.damage.front().message);
        return entry;
    }
    for (SubType s : kAllSubTypes) {
        entry.lists[Index(s)] = ValidCount(store.listCount(s));
    }
    entry.groups = ValidCount(store.groups.userGroupCount);
    entry.templates = ValidCount(store.templates.templateCount);
    return entry;
}

} // namespace

Status ListBackups(const std::string& backupDir, std::vector<BackupEntry>& entries) {
    std::error_code error;
    std::vector<fs::path> files;
    for (const fs::directory_entry& item : fs::directory_iterator(backupDir, error)) {
        if (item.is_regular_file() && IsBackupName(item.path().filename().string())) {
            files.push_back(item.path());
        }
    }
    if (error) {
        return Status::Fail(ErrorCode::PathNotFound,
                            backupDir + ": cannot list the folder: " + error.message());
    }
    std::sort(files.begin(), files.end(),
              [](const fs::path& a, const fs::path& b) { return a.filename() > b.filename(); });
    entries.clear();
    for (const fs::path& file : files) {
        entries.push_back(ReadBackup(file));
    }
    return Status::Ok();
}

std::string DescribeBackup(const BackupEntry& entry) {
    if (!entry.status) {
        return "damaged: " + entry.status.failure().detail;
    }
    std::string text;
    for (SubType s : kAllSubTypes) {
        text += std::to_string(entry.lists[Index(s)]) + " " + SubTypeName(s) +
                (s == SubType::Relay ? " display lists, " : ", ");
    }
    return text + std::to_string(entry.groups) + " user groups, " +
           std::to_string(entry.templates) + " button templates";
}

} // namespace lumeth
