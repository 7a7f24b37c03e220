#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "tests/sim/sim_loop.h"
#include "tests/sim/store_dump.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/temp_folder.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::sim;
using lumeth::test::TempFolder;
using lumeth::testing::DumpStore;

// The large and max shapes feed the benchmarks; every reference in them must
// point inside the tables, and they are generated the same way every time.
TEST(DemoConfig, LargeAndMaxAreConsistentAndRepeatable) {
    for (const char* name : {"large", "max"}) {
        SCOPED_TRACE(name);
        const DemoResult demo = MakeDemo(name);
        ASSERT_TRUE(demo.status);
        const int channels = std::string(name) == "max" ? 16383 : 1024;
        EXPECT_EQ(demo.store.userGroupCount, 200);
        EXPECT_EQ(demo.store.templateCount, 500);
        for (SubType s : kAllSubTypes) {
            EXPECT_EQ(demo.store.alpha(s).count, channels);
            EXPECT_EQ(demo.store.listCount(s), 500);
            for (int l = 0; l < demo.store.listCount(s); ++l) {
                for (int16_t c : demo.store.lists(s)[size_t(l)].channels) {
                    ASSERT_LT(c, channels);
                }
            }
        }
        for (int g = 0; g < demo.store.userGroupCount; ++g) {
            const UserGroup& group = demo.store.userGroups[size_t(g)];
            for (int k = 0; k < group.listCount; ++k) {
                const auto type = SubTypeFromListCode(group.listTypes[size_t(k)]);
                ASSERT_TRUE(type);
                ASSERT_LT(group.listIndexes[size_t(k)], demo.store.listCount(*type));
            }
        }
        EXPECT_EQ(DumpStore(MakeDemo(name).store), DumpStore(demo.store));
    }
    EXPECT_FALSE(MakeDemo("huge").status);
    // The max tables hold blank and repeated names.
    const DemoResult max = MakeDemo("max");
    const auto& names = max.store.alpha(SubType::Output).channelNames;
    const std::set<std::string> distinct(names.begin(), names.end());
    const auto blank = size_t(std::count(names.begin(), names.end(), std::string()));
    EXPECT_GT(blank, 1000u);
    EXPECT_LT(distinct.size() + blank, names.size()) << "some names repeat";
}

TEST(DemoConfig, TheLargeDemoSurvivesAFetch) {
    const DemoResult demo = MakeDemo("large");
    SimState state(demo.store, demo.password);
    lumeth::testing::SimLoop loop(state);
    loop.sim.Start();
    loop.Run();
    EXPECT_FALSE(loop.link.AnyPending());
    EXPECT_EQ(DumpStore(loop.clientStore), DumpStore(demo.store));
}

TEST(StateFile, SavesAndLoadsTheWholeState) {
    TempFolder dir;
    const std::string path = dir.file("state.json");
    SimState state(MakeDemo("demo").store, "s3cret");
    ASSERT_EQ(SaveStateFile(path, state), "");
    EXPECT_EQ(dir.EntryCount(), 1u) << "no temporary file left behind";

    SimState loaded;
    const Status status = LoadStateFile(path, loaded);
    ASSERT_TRUE(status) << status.failure().detail;
    EXPECT_EQ(loaded.password(), "s3cret");
    EXPECT_EQ(DumpStore(loaded.store()), DumpStore(state.store()));

    // Saving again replaces the file.
    SimState other(MakeDemo("large").store, "x");
    ASSERT_EQ(SaveStateFile(path, other), "");
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "x");
    EXPECT_EQ(DumpStore(loaded.store()), DumpStore(other.store()));
}

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

TEST(StateFile, IsTheOwnersAloneAndAFailedWriteKeepsTheOldFile) {
    TempFolder dir;
    const std::string path = dir.file("state.json");
    SimState state(MakeDemo("demo").store, "one");
    ASSERT_EQ(SaveStateFile(path, state), "");
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    state.ReplacePassword("two");
    {
        const lumeth::test::FileSizeLimit limit(100);
        EXPECT_EQ(SaveStateFile(path, state), "cannot write " + path + ": File too large");
    }
    SimState loaded;
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "one");
    EXPECT_EQ(dir.EntryCount(), 1u);
    EXPECT_NE(SaveStateFile(dir.file("no/such/dir/state.json"), state), "");
}
