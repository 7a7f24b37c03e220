#include "model/panel_store.h"

#include <gtest/gtest.h>

namespace lumeth {
namespace {

// A store with several entries of everything, as after a download.
PanelStore FilledStore() {
    PanelStore s;
    for (size_t t = 0; t < 4; ++t) {
        s.displayLists[t].displayListCount = 3;
        s.displayLists[t].displayLists.assign(3, DisplayList{2, "L", {4, 9}});
    }
    s.groups.userGroupCount = 2;
    s.groups.Resize(2);
    s.groups.userGroupNames = {"Studio A", "News"};
    s.templates.templateCount = 3;
    s.templates.Resize(3);
    s.templates.buttonTemplates[2].number = 7;
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
        EXPECT_EQ(s.displayLists[t].displayListCount, 1);
        ASSERT_EQ(s.displayLists[t].displayLists.size(), 1u);
        EXPECT_EQ(s.displayLists[t].displayLists[0].name, listNames[t]);
        EXPECT_EQ(s.displayLists[t].displayLists[0].channelCount, 0);
        EXPECT_EQ(s.displayLists[t].displayLists[0].channels.size(), 1u) << "spare element kept";
    }
    EXPECT_EQ(s.groups.userGroupCount, 1);
    EXPECT_EQ(s.groups.userGroupNames, std::vector<std::string>{"No Users"});
    EXPECT_EQ(s.groups.userGroups.at(0).listCount, 0);
    EXPECT_EQ(s.groups.userGroupIndex.size(), 1u);
    EXPECT_EQ(s.templates.templateCount, 1);
    EXPECT_EQ(s.templates.templateNames, std::vector<std::string>{"None"});
    EXPECT_EQ(s.templates.buttonTemplates.at(0).number, 0);
    EXPECT_EQ(s.templates.buttonTemplates[0].buttonCount, 0);
    EXPECT_EQ(s.templates.templatePosition.size(), 1u);
    // Alpha tables come from the server module only.
    EXPECT_EQ(s.alpha(SubType::Input).channelNames[1], "MIC 2");
}

TEST(PanelStore, ResizeKeepsAtLeastOneElementAndParallelArraysAligned) {
    PanelStore s = FilledStore();
    for (int count : {0, -1, 1, 5, 2}) {
        s.groups.Resize(count);
        s.templates.Resize(count);
        const size_t n = ArraySizeFor(count);
        EXPECT_EQ(n, count < 1 ? 1u : static_cast<size_t>(count));
        for (size_t size :
             {s.groups.userGroupNames.size(), s.groups.userGroups.size(), s.groups.userGroupIndex.size(),
              s.groups.userGroupNumber.size(), s.templates.templateNames.size(), s.templates.buttonTemplates.size(),
              s.templates.templateIndex.size(), s.templates.templatePosition.size()}) {
            EXPECT_EQ(size, n) << count;
        }
    }
    // Growing keeps what was there.
    PanelStore g = FilledStore();
    g.groups.Resize(4);
    g.templates.Resize(6);
    EXPECT_EQ(g.groups.userGroupNames[1], "News");
    EXPECT_EQ(g.templates.buttonTemplates[2].number, 7);
}

} // namespace
} // namespace lumeth
