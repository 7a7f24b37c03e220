#include <filesystem>
#include <iostream>

#include "files/backup_files.h"
#include "files/backup_list.h"
#include "files/user_data_folder.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// backups [DIR]: one line per backup apply kept, newest first: when it was
// taken, its size and what it holds; a damaged one says so and the listing
// goes on.
int RunBackups(const std::vector<std::string>& args) {
    if (args.size() > 1 || (args.size() == 1 && args[0].starts_with("-"))) {
        return UsageError("backups takes at most one DIR");
    }
    const std::string dir = args.empty() ? UserDataFolder() + kBackupFolder : args[0];
    std::error_code error;
    if (!std::filesystem::is_directory(dir, error)) {
        return Error(ExitCode::BadInput, dir + ": no such folder");
    }
    std::vector<BackupEntry> entries;
    if (const Status listed = ListBackups(dir, entries); !listed) {
        return InputError(dir, listed);
    }
    if (entries.empty()) {
        std::cout << dir << ": no backups\n";
    }
    for (const BackupEntry& entry : entries) {
        std::cout << entry.when << "  " << std::filesystem::path(entry.path).filename().string()
                  << "  " << entry.bytes << " bytes  " << DescribeBackup(entry) << "\n";
    }
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
