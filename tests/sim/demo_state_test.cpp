#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <unistd.h>

#include "tests/sim/sim_loop.h"
#include "tests/sim/store_dump.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::sim;
using lumeth::testing::DumpStore;

namespace {

class TempDir {
public:
    TempDir() {
        m_path = std::filesystem::temp_directory_path() /
                 ("lumeth-sim-test-" + std::to_string(::getpid()) + "-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempDir() { std::filesystem::remove_all(m_path); }
    std::string File(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace

TEST(DemoConfig, TheBuiltInDemoIsACompleteConfiguration) {
    const DemoResult demo = MakeDemo("demo");
    ASSERT_TRUE(demo.status) << demo.status.failure().detail;
    EXPECT_EQ(demo.password, "studio");
    for (SubType s : kAllSubTypes) {
        EXPECT_GT(demo.store.alpha(s).count, 0) << SubTypeName(s);
        EXPECT_EQ(demo.store.alpha(s).channelNames.size(), size_t(demo.store.alpha(s).count));
        EXPECT_GT(demo.store.listCount(s), 0) << SubTypeName(s);
    }
    EXPECT_GT(demo.store.userGroupCount, 0);
    EXPECT_GT(demo.store.templateCount, 0);
}

TEST(DemoConfig, LargeAndMaxHaveTheBenchmarkShapes) {
    for (const char* name : {"large", "max"}) {
        const DemoResult demo = MakeDemo(name);
        ASSERT_TRUE(demo.status) << name;
        const int channels = std::string(name) == "max" ? 16383 : 1024;
        for (SubType s : kAllSubTypes) {
            EXPECT_EQ(demo.store.alpha(s).count, channels);
            ASSERT_EQ(demo.store.listCount(s), 500);
            for (int l = 0; l < 500; ++l) {
                const DisplayList& list = demo.store.lists(s)[size_t(l)];
                ASSERT_EQ(list.channelCount, 64);
                for (int16_t c : list.channels) {
                    ASSERT_LT(c, channels);
                }
            }
        }
        ASSERT_EQ(demo.store.userGroupCount, 200);
        for (int g = 0; g < 200; ++g) {
            const UserGroup& group = demo.store.userGroups[size_t(g)];
            ASSERT_EQ(group.listCount, 40);
            for (int k = 0; k < 40; ++k) {
                ASSERT_LT(group.listIndexes[size_t(k)], 500);
                ASSERT_TRUE(SubTypeFromListCode(group.listTypes[size_t(k)]));
            }
        }
        ASSERT_EQ(demo.store.templateCount, 500);
        for (const ButtonTemplate& tpl : demo.store.buttonTemplates) {
            ASSERT_EQ(tpl.buttonCount, 32);
            for (const PanelButton& b : tpl.buttons) {
                ASSERT_LE(b.label.size(), 8u);
            }
        }
        // Generated the same way every time.
        EXPECT_EQ(DumpStore(MakeDemo(name).store), DumpStore(demo.store));
    }
}

TEST(DemoConfig, MaxTablesHoldBlankAndDuplicateNames) {
    const DemoResult demo = MakeDemo("max");
    const auto& names = demo.store.alpha(SubType::Output).channelNames;
    size_t blank = 0;
    std::set<std::string> distinct;
    for (const auto& n : names) {
        blank += n.empty() ? 1 : 0;
        distinct.insert(n);
    }
    EXPECT_GT(blank, 1000u);
    EXPECT_LT(distinct.size() + blank, names.size()) << "some names repeat";
    EXPECT_FALSE(MakeDemo("huge").status);
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
    TempDir dir;
    const std::string path = dir.File("state.json");
    const DemoResult demo = MakeDemo("demo");
    SimState state(demo.store, "s3cret");
    ASSERT_EQ(SaveStateFile(path, state), "");
    EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));

    SimState loaded;
    const Status status = LoadStateFile(path, loaded);
    ASSERT_TRUE(status) << status.failure().detail;
    EXPECT_EQ(loaded.password(), "s3cret");
    EXPECT_EQ(DumpStore(loaded.store()), DumpStore(state.store()));

    // Saving again replaces the file in one step.
    SimState other(MakeDemo("large").store, "x");
    ASSERT_EQ(SaveStateFile(path, other), "");
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "x");
    EXPECT_EQ(loaded.store().templateCount, 500);
}

TEST(StateFile, ABadFileIsRefusedWithAReasonAndLeavesTheStateAlone) {
    TempDir dir;
    const DemoResult demo = MakeDemo("demo");
    SimState state(demo.store, "keep");
    const std::string before = DumpStore(state.store());

    struct Case {
        std::string name, text, reason;
    };
    const std::vector<Case> cases = {
        {"not-json", "{ this is not json", ""},
        {"wrong-format", R"({"format":"something","version":1})", "format"},
        {"no-password", R"({"format":"lumeth-panel-data","version":1})", "password"},
    };
    for (const Case& c : cases) {
        const std::string path = dir.File(c.name + ".json");
        Write(path, c.text);
        const Status status = LoadStateFile(path, state);
        EXPECT_FALSE(status) << c.name;
        EXPECT_FALSE(status.failure().detail.empty());
        EXPECT_EQ(status.failure().detail.find('\n'), std::string::npos) << c.name;
        EXPECT_NE(status.failure().detail.find(c.reason), std::string::npos)
            << c.name << ": " << status.failure().detail;
    }
    EXPECT_FALSE(LoadStateFile(dir.File("missing.json"), state));
    EXPECT_EQ(state.password(), "keep");
    EXPECT_EQ(DumpStore(state.store()), before);
}

TEST(StateFile, AFailedWriteKeepsTheOldFile) {
    TempDir dir;
    const std::string path = dir.File("state.json");
    SimState state(MakeDemo("demo").store, "one");
    ASSERT_EQ(SaveStateFile(path, state), "");
    // The temporary file cannot be created where a directory stands.
    std::filesystem::create_directory(path + ".tmp");
    state.ReplacePassword("two");
    EXPECT_NE(SaveStateFile(path, state), "");
    SimState loaded;
    ASSERT_TRUE(LoadStateFile(path, loaded));
    EXPECT_EQ(loaded.password(), "one");
    EXPECT_NE(SaveStateFile(dir.File("no/such/dir/state.json"), state), "");
}
