#include "model/panel_store.h"

#include <gtest/gtest.h>

namespace lumeth {
namespace {

// A store with several entries of everything, as after a download.
PanelStore FilledStore() {
    PanelStore s;
    for (size_t t = 0; t < 4; ++t) {
        s.displayListCount[t] = 3;
        s.displayLists[t].assign(3, DisplayList{2, "L", {4, 9}});
    }
    s.userGroupCount = 2;
    s.ResizeUserGroups(2);
    s.userGroupNames = {"Studio A", "News"};
    s.templateCount = 3;
    s.ResizeTemplates(3);
    s.buttonTemplates[2].number = 7;
    s.alpha(SubType::Input).count = 2;
    s.alpha(SubType::Input).channelNames = {"MIC 1", "MIC 2"};
    return s;
}

TEST(PanelStore, ResetToDefaultsLeavesOneDefaultEntryOfEachButKeepsAlphas) {
    PanelStore s = FilledStore();
    s.ResetToDefaults();

    const char* listNames[4] = {"First In List", "First Out List", "First Opto List",
                                "First Relay List"};
    for (size_t t = 0; t < 4; ++t) {
        EXPECT_EQ(s.displayListCount[t], 1);
        ASSERT_EQ(s.displayLists[t].size(), 1u);
        EXPECT_EQ(s.displayLists[t][0].name, listNames[t]);
        EXPECT_EQ(s.displayLists[t][0].channelCount, 0);
        EXPECT_EQ(s.displayLists[t][0].channels.size(), 1u) << "spare element kept";
    }
    EXPECT_EQ(s.userGroupCount, 1);
    EXPECT_EQ(s.userGroupNames, std::vector<std::string>{"No Users"});
    EXPECT_EQ(s.userGroups.at(0).listCount, 0);
    EXPECT_EQ(s.userGroupIndex.size(), 1u);
    EXPECT_EQ(s.templateCount, 1);
    EXPECT_EQ(s.templateNames, std::vector<std::string>{"None"});
    EXPECT_EQ(s.buttonTemplates.at(0).number, 0);
    EXPECT_EQ(s.buttonTemplates[0].buttonCount, 0);
    EXPECT_EQ(s.templatePosition.size(), 1u);
    // Alpha tables come from the server module only.
    EXPECT_EQ(s.alpha(SubType::Input).channelNames[1], "MIC 2");
}

TEST(PanelStore, ResizeKeepsAtLeastOneElementAndParallelArraysAligned) {
    PanelStore s = FilledStore();
    for (int count : {0, -1, 1, 5, 2}) {
        s.ResizeUserGroups(count);
        s.ResizeTemplates(count);
        const size_t n = ArraySizeFor(count);
        EXPECT_EQ(n, count < 1 ? 1u : static_cast<size_t>(count));
        for (size_t size :
             {s.userGroupNames.size(), s.userGroups.size(), s.userGroupIndex.size(),
              s.userGroupNumber.size(), s.templateNames.size(), s.buttonTemplates.size(),
              s.templateIndex.size(), s.templatePosition.size()}) {
            EXPECT_EQ(size, n) << count;
        }
    }
    // Growing keeps what was there.
    PanelStore g = FilledStore();
    g.ResizeUserGroups(4);
    g.ResizeTemplates(6);
    EXPECT_EQ(g.userGroupNames[1], "News");
    EXPECT_EQ(g.buttonTemplates[2].number, 7);
}

} // namespace
} // namespace lumeth
