#include "model/record_moves.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/store_check.h"
#include "model/where_used.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

constexpr int16_t kIn = 11;
constexpr int16_t kOut = 21;

// Input lists A B C D, Output lists X Y; groups G0 {In A, In C, Out Y, In D},
// G1 {In C}, G2 {Out X}; templates T0 T1 T2. Every reference is good.
PanelStore Facility() {
    PanelStore store;
    store.ResetToDefaults();
    store.listCount(SubType::Input) = 4;
    store.lists(SubType::Input) = {test::List("A", {0}), test::List("B", {1}),
                                   test::List("C", {2}), test::List("D", {3})};
    store.listCount(SubType::Output) = 2;
    store.lists(SubType::Output) = {test::List("X", {0}), test::List("Y", {1})};
    UserGroupTable& groups = store.groups;
    groups.Resize(3);
    groups.userGroupCount = 3;
    groups.userGroupNames = {"G0", "G1", "G2"};
    groups.userGroups = {test::Group({{0, kIn}, {2, kIn}, {1, kOut}, {3, kIn}}),
                         test::Group({{2, kIn}}), test::Group({{0, kOut}})};
    groups.userGroupIndex = {0, 1, 2};
    groups.userGroupNumber = {0, 1, 2};
    TemplateTable& templates = store.templates;
    templates.Resize(3);
    templates.templateCount = 3;
    templates.templateNames = {"T0", "T1", "T2"};
    templates.templateIndex = {0, 1, 2};
    templates.templatePosition = {0, 1, 2};
    return store;
}

std::string ListNames(const PanelStore& store, SubType s) {
    std::string names;
    for (int p = 0; p < store.listCount(s); ++p)
        names += store.lists(s)[size_t(p)].name;
    return names;
}

// Each group's entries by the names of the lists they point at ("In A").
std::vector<std::vector<std::string>> GroupContents(const PanelStore& store) {
    std::vector<std::vector<std::string>> contents;
    for (int g = 0; g < store.groups.userGroupCount; ++g) {
        const UserGroup& group = store.groups.userGroups[size_t(g)];
        auto& names = contents.emplace_back();
        for (int k = 0; k < group.listCount; ++k) {
            const SubType s = SubTypeFromListCode(group.listTypes[size_t(k)]).value();
            names.push_back(std::string(s == SubType::Input ? "In " : "Out ") +
                            store.lists(s).at(size_t(group.listIndexes[size_t(k)])).name);
        }
    }
    return contents;
}

void ExpectNothingDangling(const PanelStore& store, const std::string& what) {
    for (const CheckFinding& finding : CheckStore(store, false))
        EXPECT_NE(finding.severity, CheckFinding::Severity::Error) << what << ": " << finding.message;
}

// Deleting or moving a display list: the group entries keep pointing at the
// same lists (those of a deleted list go), nothing dangles, counts agree.
TEST(RecordMoves, DisplayListsKeepGroupReferencesRight) {
    struct Case {
        const char* what;
        std::function<RecordEdit(PanelStore&)> edit;
        SubType subType;
        std::string listsAfter;
        std::string deleted; // "In C": entries of that list go
        std::vector<int> groupsChanged;
        int entriesRemoved;
    };
    const Case cases[] = {
        {"delete In C", [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 2); },
         SubType::Input, "ABD", "In C", {0, 1}, 2},
        {"delete In A", [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 0); },
         SubType::Input, "BCD", "In A", {0, 1}, 1},
        {"delete the last In", [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 3); },
         SubType::Input, "ABC", "In D", {0}, 1},
        {"delete Out X", [](PanelStore& s) { return DeleteDisplayList(s, SubType::Output, 0); },
         SubType::Output, "Y", "Out X", {0, 2}, 1},
        {"move In A last", [](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 0, 3); },
         SubType::Input, "BCDA", "", {0, 1}, 0},
        {"move In D second", [](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 3, 1); },
         SubType::Input, "ADBC", "", {0, 1}, 0},
        {"move In B down one", [](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 1, 2); },
         SubType::Input, "ACBD", "", {0, 1}, 0},
        {"move onto itself", [](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 2, 2); },
         SubType::Input, "ABCD", "", {}, 0},
    };
    for (const Case& c : cases) {
        PanelStore store = Facility();
        auto expected = GroupContents(store);
        for (auto& names : expected)
            std::erase(names, c.deleted);
        const PanelStore before = store;

        const RecordEdit edit = c.edit(store);
        ASSERT_TRUE(edit) << c.what << ": " << edit.status.failure().detail;
        EXPECT_EQ(ListNames(store, c.subType), c.listsAfter) << c.what;
        EXPECT_EQ(store.lists(c.subType).size(), c.listsAfter.size()) << c.what;
        EXPECT_EQ(GroupContents(store), expected) << c.what;
        EXPECT_EQ(edit.groupsChanged, c.groupsChanged) << c.what;
        EXPECT_EQ(edit.entriesRemoved, c.entriesRemoved) << c.what;
        for (const UserGroup& g : store.groups.userGroups)
            EXPECT_GE(g.listIndexes.size(), 1u) << c.what;
        ExpectNothingDangling(store, c.what);
        // The other sub type's lists are untouched.
        const SubType other = c.subType == SubType::Input ? SubType::Output : SubType::Input;
        EXPECT_EQ(store.listTable(other), before.listTable(other)) << c.what;
    }
}

// Groups and templates reorder whole; their index fields and the current
// group follow their records.
TEST(RecordMoves, GroupsAndTemplatesFollowTheirPositions) {
    struct Case {
        const char* what;
        std::function<RecordEdit(PanelStore&)> edit;
        std::string groupsAfter;
        std::string templatesAfter;
        int16_t currentGroupAfter; // current group G1 before
    };
    const Case cases[] = {
        {"delete G0", [](PanelStore& s) { return DeleteUserGroup(s, 0); }, "G1G2", "T0T1T2", 0},
        {"delete G1 (current)", [](PanelStore& s) { return DeleteUserGroup(s, 1); }, "G0G2",
         "T0T1T2", 1},
        {"move G0 last", [](PanelStore& s) { return MoveUserGroup(s, 0, 2); }, "G1G2G0", "T0T1T2",
         0},
        {"move G2 first", [](PanelStore& s) { return MoveUserGroup(s, 2, 0); }, "G2G0G1", "T0T1T2",
         2},
        {"delete T1", [](PanelStore& s) { return DeleteTemplate(s, 1); }, "G0G1G2", "T0T2", 1},
        {"move T2 first", [](PanelStore& s) { return MoveTemplate(s, 2, 0); }, "G0G1G2", "T2T0T1",
         1},
    };
    for (const Case& c : cases) {
        PanelStore store = Facility();
        store.currentUserGroup = 1;
        const auto contentsOf = [](const PanelStore& s) {
            std::map<std::string, std::vector<std::string>> byName;
            const auto contents = GroupContents(s);
            for (size_t g = 0; g < contents.size(); ++g)
                byName[s.groups.userGroupNames[g]] = contents[g];
            return byName;
        };
        auto expected = contentsOf(store);
        ASSERT_TRUE(c.edit(store)) << c.what;
        std::string groups, templates;
        for (int g = 0; g < store.groups.userGroupCount; ++g) {
            groups += store.groups.userGroupNames[size_t(g)];
            EXPECT_EQ(store.groups.userGroupIndex[size_t(g)], g) << c.what;
            EXPECT_EQ(store.groups.userGroupNumber[size_t(g)], g) << c.what;
        }
        for (int t = 0; t < store.templates.templateCount; ++t) {
            templates += store.templates.templateNames[size_t(t)];
            EXPECT_EQ(store.templates.templateIndex[size_t(t)], t) << c.what;
            EXPECT_EQ(store.templates.templatePosition[size_t(t)], t) << c.what;
        }
        EXPECT_EQ(groups, c.groupsAfter) << c.what;
        EXPECT_EQ(templates, c.templatesAfter) << c.what;
        EXPECT_EQ(store.groups.userGroups.size(), size_t(store.groups.userGroupCount)) << c.what;
        EXPECT_EQ(store.templates.buttonTemplates.size(), size_t(store.templates.templateCount))
            << c.what;
        EXPECT_EQ(store.currentUserGroup, c.currentGroupAfter) << c.what;
        // Each remaining group holds what it held.
        for (const auto& [name, names] : contentsOf(store))
            EXPECT_EQ(names, expected[name]) << c.what << " " << name;
        ExpectNothingDangling(store, c.what);
    }
}

// What cannot be done changes nothing.
TEST(RecordMoves, RefusesWhatIsNotThere) {
    PanelStore single;
    single.ResetToDefaults();
    struct Case {
        const char* what;
        PanelStore store;
        std::function<RecordEdit(PanelStore&)> edit;
    };
    const Case cases[] = {
        {"the only list", single, [](PanelStore& s) { return DeleteDisplayList(s, SubType::Relay, 0); }},
        {"the only group", single, [](PanelStore& s) { return DeleteUserGroup(s, 0); }},
        {"the only template", single, [](PanelStore& s) { return DeleteTemplate(s, 0); }},
        {"list past the count", Facility(),
         [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 4); }},
        {"move past the end", Facility(),
         [](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 3, 4); }},
        {"move from before the start", Facility(), [](PanelStore& s) { return MoveUserGroup(s, -1, 0); }},
        {"template past the count", Facility(), [](PanelStore& s) { return MoveTemplate(s, 3, 0); }},
    };
    for (const Case& c : cases) {
        PanelStore store = c.store;
        const RecordEdit edit = c.edit(store);
        EXPECT_FALSE(edit) << c.what;
        EXPECT_EQ(store.groups, c.store.groups) << c.what;
        EXPECT_EQ(store.displayLists, c.store.displayLists) << c.what;
        EXPECT_EQ(store.templates, c.store.templates) << c.what;
    }
    // Arrays shorter than their count: refused, not read past.
    PanelStore damaged = Facility();
    damaged.groups.userGroupCount = 5;
    EXPECT_FALSE(DeleteUserGroup(damaged, 4));
}

// Where a channel is used: lists holding it, and template keys whose function
// draws that channel (or second channel) from its sub type.
TEST(WhereUsed, FindsListsTemplateKeysAndGroups) {
    PanelStore store = Facility();
    store.lists(SubType::Input)[1] = test::List("B", {2, 5, 2});
    store.listCount(SubType::Relay) = 1;
    store.lists(SubType::Relay) = {test::List("R", {2})};
    ButtonTemplate& t1 = store.templates.buttonTemplates[1];
    t1.buttonCount = 4;
    t1.buttons.assign(4, PanelButton::Cleared());
    t1.buttons[0].type = 40; // Source Select: Input
    t1.buttons[0].channel = 2;
    t1.buttons[1].type = 810; // Output Select W/Listen: Output, listen Input
    t1.buttons[1].channel = 2;
    t1.buttons[1].channel2 = 2;
    t1.buttons[2].type = 1010; // Relay Toggle - Opto Tally
    t1.buttons[2].channel = 2;
    t1.buttons[3].type = 16383; // Inactive: its channel means nothing
    t1.buttons[3].channel = 2;

    EXPECT_EQ(ChannelUses(store, SubType::Input, 2),
              (std::vector<StoreLocation>{{Part::InputLists, 1},
                                          {Part::InputLists, 2},
                                          {Part::Templates, 1, StoreField::ButtonChannel, 0},
                                          {Part::Templates, 1, StoreField::ButtonChannel2, 1}}));
    EXPECT_EQ(ChannelUses(store, SubType::Relay, 2),
              (std::vector<StoreLocation>{{Part::RelayLists, 0},
                                          {Part::Templates, 1, StoreField::ButtonChannel, 2}}));
    EXPECT_TRUE(ChannelUses(store, SubType::Opto, 2).empty());
    EXPECT_TRUE(ChannelUses(store, SubType::Output, kNoChannel).empty());
    // A button past the template's count is not a use.
    t1.buttonCount = 1;
    EXPECT_EQ(ChannelUses(store, SubType::Input, 2).size(), 3u);

    EXPECT_EQ(GroupsUsingList(store, SubType::Input, 2), (std::vector<int>{0, 1}));
    EXPECT_EQ(GroupsUsingList(store, SubType::Output, 0), (std::vector<int>{2}));
    EXPECT_TRUE(GroupsUsingList(store, SubType::Input, 1).empty());

    EXPECT_EQ(WhereUsedLines(store, "Input Lst.002 \"C\"", ListUses(store, SubType::Input, 2)),
              (std::vector<std::string>{"Input Lst.002 \"C\" is used in 2 places:",
                                        "  Gr.001 \"G0\"", "  Gr.002 \"G1\""}));
    EXPECT_EQ(UseName(store, {Part::Templates, 1, StoreField::ButtonChannel2, 1}),
              "template 02 \"T1\" Btn 2 (second channel)");
    EXPECT_EQ(WhereUsedLines(store, "x", {}), std::vector<std::string>{"x is not used."});
}

} // namespace
} // namespace lumeth
