#include "files/backup_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "files/panel_data_file.h"

namespace lumeth {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPrefix = "LumethEX-";
constexpr std::string_view kExtension = ".dat";

} // namespace

bool IsBackupName(const std::string& name) {
    return name.size() > kPrefix.size() + kExtension.size() && name.starts_with(kPrefix) &&
           name.ends_with(kExtension);
}

std::string BackupPath(const std::string& folder, const std::string& stamp) {
    return folder + kBackupFolder + "/" + std::string(kPrefix) + stamp + std::string(kExtension);
}

Status WriteBackup(const std::string& folder, const std::string& stamp, const PanelStore& store,
                   std::string* path, int keep) {
    const fs::path dir = fs::path(folder) / kBackupFolder;
    std::error_code error;
    fs::create_directories(dir, error);
    if (error)
        return Status::Fail(ErrorCode::PathNotFound,
                            dir.string() + ": cannot create the folder: " + error.message());
    const std::string file = BackupPath(folder, stamp);
    if (const Status saved = SavePanelDataFile(file, store); !saved)
        return saved;
    if (path)
        *path = file;

    // The stamp sorts by time, so the oldest come first by name.
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir, error)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_regular_file() && IsBackupName(name))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    const size_t excess = names.size() > static_cast<size_t>(std::max(keep, 1))
                              ? names.size() - static_cast<size_t>(std::max(keep, 1))
                              : 0;
    for (size_t i = 0; i < excess; ++i) {
        if (!fs::remove(dir / names[i], error) && error)
            return Status::Fail(ErrorCode::PermissionDenied,
                                (dir / names[i]).string() + ": cannot delete: " + error.message());
    }
    return {};
}

} // namespace lumeth
