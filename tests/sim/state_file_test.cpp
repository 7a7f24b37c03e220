#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/sim/store_dump.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/temp_folder.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::sim;
using lumeth::test::TempFolder;
using lumeth::testing::DumpStore;

TEST(StateFile, ABadFileIsRefusedWithAReasonAndLeavesTheStateAlone) {
    TempFolder dir;
    SimState state(MakeDemo("demo").store, "keep");
    const std::string before = DumpStore(state.store());

    struct Case {
        std::string name, text, reason;
    };
    const Case cases[] = {
        {"not-json", "{ this is not json", ""},
        {"wrong-format", R"({"format":"something","version":1})", "format"},
        {"no-password", R"({"format":"lumeth-panel-data","version":1})", "password"},
    };
    for (const Case& c : cases) {
        dir.Write(c.name, c.text);
        const Status status = LoadStateFile(dir.file(c.name), state);
        ASSERT_FALSE(status) << c.name;
        const std::string& detail = status.failure().detail;
        EXPECT_FALSE(detail.empty());
        EXPECT_EQ(detail.find('\n'), std::string::npos) << c.name;
        EXPECT_NE(detail.find(c.reason), std::string::npos) << c.name << ": " << detail;
    }
    EXPECT_FALSE(LoadStateFile(dir.file("missing.json"), state));
    EXPECT_EQ(state.password(), "keep");
    EXPECT_EQ(DumpStore(state.store()), before);
}

// The whole state survives a save and a load; the file is its owner's alone
// (it holds the password), and a failed write keeps the old one.
TEST(StateFile, SavesTheWholeStateForItsOwnerAndAFailedWriteKeepsTheOldFile) {
    TempFolder dir;
    const std::string path = dir.file("state.json");
    SimState state(MakeDemo("demo").store, "one");
    ASSERT_EQ(SaveStateFile(path, state), "");
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    SimState loaded;
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "one");
    EXPECT_EQ(DumpStore(loaded.store()), DumpStore(state.store()));

    state.Replace(Part::Password, std::string("two"));
    {
        const lumeth::test::FileSizeLimit limit(100);
        EXPECT_EQ(SaveStateFile(path, state), "cannot write " + path + ": File too large");
    }
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "one");
    EXPECT_EQ(dir.EntryCount(), 1u);
    EXPECT_NE(SaveStateFile(dir.file("no/such/dir/state.json"), state), "");
}
