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

std::vector<std::string> Stamps(const std::vector<BackupEntry>& backups) {
    std::vector<std::string> stamps;
    for (const BackupEntry& b : backups)
        stamps.push_back(b.stamp);
    return stamps;
}

TEST(BackupList, NewestFirstOnlyBackupsWithTheirSizes) {
    test::TempFolder folder;
    EXPECT_TRUE(ListBackups(folder.path()).empty()) << "no backups folder yet";

    PanelStore store;
    store.groups.userGroupCount = 1;
    store.groups.Resize(1);
    store.groups.userGroupNames[0] = "Studio";
    for (const char* stamp : {"20261124-090000", "20261124-110000", "20261124-100000"})
        ASSERT_TRUE(WriteBackup(folder.path(), stamp, store, nullptr, 2));
    folder.Write("backups/notes.txt", "not a backup");
    folder.Write("backups/LumethEX-.dat", "no stamp");

    const std::vector<BackupEntry> backups = ListBackups(folder.path());
    EXPECT_EQ(Stamps(backups), (std::vector<std::string>{"20261124-110000", "20261124-100000"}))
        << "the oldest beyond the two kept is gone";
    for (const BackupEntry& b : backups) {
        EXPECT_EQ(b.size, std::filesystem::file_size(b.path));
        EXPECT_EQ(b.path, BackupPath(folder.path(), b.stamp));
        PanelStore read;
        EXPECT_EQ(LoadPanelDataFile(b.path, read).outcome, LoadOutcome::Loaded);
        ASSERT_EQ(read.groups.userGroupCount, 1);
        EXPECT_EQ(TrimTrailingBlanks(read.groups.userGroupNames[0]), "Studio");
    }
}

} // namespace
} // namespace lumeth
