#include "model/record_moves.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "model/store_check.h"
#include "model/where_used.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

constexpr int kDelete = -1; // a case's `to` for a delete

// Input lists A B C D, Output lists X Y; groups G0 {In A, In C, Out Y, In D},
// G1 {In C}, G2 {Out X}; templates T0 T1 T2. Every reference is good.
PanelStore Facility() {
    PanelStore store;
    store.ResetToDefaults();
    store.listCount(SubType::Input) = 4;
    store.lists(SubType::Input) = {test::List("A", {0}), test::List("B", {1}), test::List("C", {2}),
                                   test::List("D", {3})};
    store.listCount(SubType::Output) = 2;
    store.lists(SubType::Output) = {test::List("X", {0}), test::List("Y", {1})};
    UserGroupTable& groups = store.groups;
    groups.Resize(3);
    groups.userGroupCount = 3;
    groups.userGroupNames = {"G0", "G1", "G2"};
    groups.userGroups = {test::Group({{0, 11}, {2, 11}, {1, 21}, {3, 11}}), test::Group({{2, 11}}),
                         test::Group({{0, 21}})};
    groups.userGroupIndex = groups.userGroupNumber = {0, 1, 2};
    TemplateTable& templates = store.templates;
    templates.Resize(3);
    templates.templateCount = 3;
    templates.templateNames = {"T0", "T1", "T2"};
    templates.templateIndex = templates.templatePosition = {0, 1, 2};
    return store;
}

std::string Names(const std::vector<std::string>& names, int count) {
    std::string joined;
    for (int i = 0; i < count; ++i)
        joined += names[size_t(i)];
    return joined;
}

std::string ListNames(const PanelStore& store, SubType s) {
    std::vector<std::string> names;
    for (const DisplayList& list : store.lists(s))
        names.push_back(list.name);
    return Names(names, store.listCount(s));
}

// Each group's entries by the names of the lists they point at ("In A"),
// keyed by the group's name.
std::map<std::string, std::vector<std::string>> GroupContents(const PanelStore& store) {
    std::map<std::string, std::vector<std::string>> contents;
    for (int g = 0; g < store.groups.userGroupCount; ++g) {
        const UserGroup& group = store.groups.userGroups[size_t(g)];
        auto& names = contents[store.groups.userGroupNames[size_t(g)]];
        for (int k = 0; k < group.listCount; ++k) {
            const SubType s = SubTypeFromListCode(group.listTypes[size_t(k)]).value();
            names.push_back(std::string(s == SubType::Input ? "In " : "Out ") +
                            store.lists(s).at(size_t(group.listIndexes[size_t(k)])).name);
        }
    }
    return contents;
}

// Deleting or moving a display list: group entries keep pointing at the same
// lists (those of a deleted list go), nothing dangles, counts agree.
TEST(RecordMoves, DisplayListsKeepGroupReferencesRight) {
    struct Case {
        SubType s;
        int from, to;
        std::string listsAfter;
        std::string deleted; // "In C": the entries of that list go
        std::vector<int> groupsChanged;
        int entriesRemoved;
    };
    const Case cases[] = {
        {SubType::Input, 2, kDelete, "ABD", "In C", {0, 1}, 2},
        {SubType::Input, 0, kDelete, "BCD", "In A", {0, 1}, 1},
        {SubType::Input, 3, kDelete, "ABC", "In D", {0}, 1},
        {SubType::Output, 0, kDelete, "Y", "Out X", {0, 2}, 1},
        {SubType::Input, 0, 3, "BCDA", "", {0, 1}, 0},
        {SubType::Input, 3, 1, "ADBC", "", {0, 1}, 0},
        {SubType::Input, 1, 2, "ACBD", "", {0, 1}, 0},
        {SubType::Input, 2, 2, "ABCD", "", {}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(SubTypeName(c.s)) + " " + std::to_string(c.from) + " to " +
                     std::to_string(c.to));
        PanelStore store = Facility();
        auto expected = GroupContents(store);
        for (auto& [name, names] : expected)
            std::erase(names, c.deleted);
        const PanelStore before = store;

        const RecordEdit edit = c.to == kDelete ? DeleteDisplayList(store, c.s, c.from)
                                                : MoveDisplayList(store, c.s, c.from, c.to);
        ASSERT_TRUE(edit) << edit.status.failure().detail;
        EXPECT_EQ(ListNames(store, c.s), c.listsAfter);
        EXPECT_EQ(store.lists(c.s).size(), c.listsAfter.size());
        EXPECT_EQ(GroupContents(store), expected);
        EXPECT_EQ(edit.groupsChanged, c.groupsChanged);
        EXPECT_EQ(edit.entriesRemoved, c.entriesRemoved);
        EXPECT_FALSE(HasErrors(CheckStore(store, false)));
        const SubType other = c.s == SubType::Input ? SubType::Output : SubType::Input;
        EXPECT_EQ(store.listTable(other), before.listTable(other));
    }
}

// Groups and templates reorder whole; their index fields and the current
// group follow their records, and each group keeps what it held.
TEST(RecordMoves, GroupsAndTemplatesFollowTheirPositions) {
    struct Case {
        bool groups;
        int from, to;
        std::string after;
        int16_t currentGroupAfter; // G1 is current before
    };
    const Case cases[] = {
        {true, 0, kDelete, "G1G2", 0}, {true, 1, kDelete, "G0G2", 1},  {true, 0, 2, "G1G2G0", 0},
        {true, 2, 0, "G2G0G1", 2},     {false, 1, kDelete, "T0T2", 1}, {false, 2, 0, "T2T0T1", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.after);
        PanelStore store = Facility();
        store.currentUserGroup = 1;
        auto expected = GroupContents(store);
        const bool remove = c.to == kDelete;
        const RecordEdit edit =
            c.groups
                ? (remove ? DeleteUserGroup(store, c.from) : MoveUserGroup(store, c.from, c.to))
                : (remove ? DeleteTemplate(store, c.from) : MoveTemplate(store, c.from, c.to));
        ASSERT_TRUE(edit);
        const UserGroupTable& groups = store.groups;
        const TemplateTable& templates = store.templates;
        EXPECT_EQ(c.groups ? Names(groups.userGroupNames, groups.userGroupCount)
                           : Names(templates.templateNames, templates.templateCount),
                  c.after);
        for (int g = 0; g < groups.userGroupCount; ++g)
            EXPECT_EQ(groups.userGroupIndex[size_t(g)] + groups.userGroupNumber[size_t(g)], 2 * g);
        for (int t = 0; t < templates.templateCount; ++t)
            EXPECT_EQ(templates.templateIndex[size_t(t)] + templates.templatePosition[size_t(t)],
                      2 * t);
        EXPECT_EQ(groups.userGroups.size(), size_t(groups.userGroupCount));
        EXPECT_EQ(templates.buttonTemplates.size(), size_t(templates.templateCount));
        EXPECT_EQ(store.currentUserGroup, c.currentGroupAfter);
        for (const auto& [name, names] : GroupContents(store))
            EXPECT_EQ(names, expected[name]) << name;
    }
}

// What cannot be done changes nothing.
TEST(RecordMoves, RefusesWhatIsNotThere) {
    PanelStore single;
    single.ResetToDefaults();
    PanelStore damaged = Facility();
    damaged.groups.userGroupCount = 5; // more than its arrays hold
    const struct {
        PanelStore store;
        RecordEdit (*edit)(PanelStore&);
    } cases[] = {
        {single, [](PanelStore& s) { return DeleteDisplayList(s, SubType::Relay, 0); }},
        {single, [](PanelStore& s) { return DeleteTemplate(s, 0); }},
        {Facility(), [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 4); }},
        {Facility(), [](PanelStore& s) { return MoveUserGroup(s, -1, 0); }},
        {Facility(), [](PanelStore& s) { return MoveTemplate(s, 3, 0); }},
        {damaged, [](PanelStore& s) { return DeleteUserGroup(s, 4); }},
    };
    for (const auto& c : cases) {
        PanelStore store = c.store;
        EXPECT_FALSE(c.edit(store));
        EXPECT_EQ(test::PartsOf(store), test::PartsOf(c.store));
    }
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
    // Source Select (Input); Output Select W/Listen (Output, listen Input);
    // Relay Toggle - Opto Tally; Inactive, whose channel means nothing.
    const int16_t types[] = {40, 810, 1010, 16383};
    for (size_t b = 0; b < 4; ++b) {
        t1.buttons[b].type = types[b];
        t1.buttons[b].channel = t1.buttons[b].channel2 = 2;
    }
    using L = StoreLocation;
    EXPECT_EQ(ChannelUses(store, SubType::Input, 2),
              (std::vector<L>{{Part::InputLists, 1},
                              {Part::InputLists, 2},
                              {Part::Templates, 1, StoreField::ButtonChannel, 0},
                              {Part::Templates, 1, StoreField::ButtonChannel2, 1}}));
    EXPECT_EQ(ChannelUses(store, SubType::Opto, 2),
              (std::vector<L>{{Part::Templates, 1, StoreField::ButtonChannel2, 2}}));
    EXPECT_EQ(ChannelUses(store, SubType::Relay, 2),
              (std::vector<L>{{Part::RelayLists, 0},
                              {Part::Templates, 1, StoreField::ButtonChannel, 2}}));
    EXPECT_TRUE(ChannelUses(store, SubType::Output, kNoChannel).empty());
    t1.buttonCount = 1; // keys past the count are no use
    EXPECT_EQ(ChannelUses(store, SubType::Input, 2).size(), 3u);

    EXPECT_EQ(GroupsUsingList(store, SubType::Input, 2), (std::vector<int>{0, 1}));
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
