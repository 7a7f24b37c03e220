// The backups folder: what WriteBackup keeps and how the list reads it back.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "files/backup_files.h"
#include "files/backup_list.h"
#include "files/panel_data_file.h"
#include "model/limits.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

std::vector<BackupEntry> Backups(const std::string& folder) {
    std::vector<BackupEntry> entries;
    EXPECT_TRUE(ListBackups(folder + kBackupFolder, entries));
    return entries;
}

std::vector<std::string> Times(const std::vector<BackupEntry>& backups) {
    std::vector<std::string> times;
    for (const BackupEntry& b : backups)
        times.push_back(b.when);
    return times;
}

TEST(BackupList, NewestFirstOnlyBackupsWithTheirSizes) {
    test::TempFolder folder;
    std::vector<BackupEntry> none;
    EXPECT_FALSE(ListBackups(folder.path() + kBackupFolder, none)) << "no backups folder yet";

    PanelStore store;
    store.groups.userGroupCount = 1;
    store.groups.Resize(1);
    store.groups.userGroupNames[0] = "Studio";
    for (const char* stamp : {"20261124-090000", "20261124-110000", "20261124-100000"})
        ASSERT_TRUE(WriteBackup(folder.path(), stamp, store, nullptr, 2));
    folder.Write("backups/notes.txt", "not a backup");
    folder.Write("backups/LumethEX-.dat", "no stamp");

    const std::vector<BackupEntry> backups = Backups(folder.path());
    EXPECT_EQ(Times(backups),
              (std::vector<std::string>{"2026-11-24 11:00:00", "2026-11-24 10:00:00"}))
        << "the oldest beyond the two kept is gone";
    for (const BackupEntry& b : backups) {
        EXPECT_TRUE(b.status);
        EXPECT_EQ(b.bytes, std::filesystem::file_size(b.path));
        EXPECT_EQ(b.groups, 1);
        PanelStore read;
        EXPECT_EQ(LoadPanelDataFile(b.path, read).outcome, LoadOutcome::Loaded);
        ASSERT_EQ(read.groups.userGroupCount, 1);
        EXPECT_EQ(TrimTrailingBlanks(read.groups.userGroupNames[0]), "Studio");
    }
}

} // namespace
} // namespace lumeth
