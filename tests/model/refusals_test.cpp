#include <gtest/gtest.h>

#include <functional>

#include "model/button_templates.h"
#include "model/channel_alpha.h"
#include "model/list_records.h"
#include "tests/support/store_builders.h"

// The model returns what it cannot do instead of throwing: each refused change
// reports SubscriptOutOfRange and leaves the store as it was, each look-up
// outside the store finds nothing.
namespace lumeth {
namespace {

constexpr int16_t kInput = ListTypeCode(SubType::Input);
constexpr int16_t kOutput = ListTypeCode(SubType::Output);
constexpr int16_t kUnknownMode = 12;

PanelStore TwoOfEach() {
    PanelStore store;
    store.ResetToDefaults();
    store.lists(SubType::Input) = {test::List("Mics", {0, 1}), test::List("Lines", {2})};
    store.listCount(SubType::Input) = 2;
    store.groups.Resize(2);
    store.groups.userGroupCount = 2;
    store.groups.userGroupNames = {"Studio A", "Studio B"};
    store.groups.userGroups[1] = test::Group({{1, kInput}});
    AddButtonTemplate(store);
    return store;
}

TEST(Refusals, AChangeOutsideTheStoreFailsAndChangesNothing) {
    const struct {
        const char* what;
        std::function<Status(PanelStore&)> change;
    } cases[] = {
        {"copy in an unknown mode",
         [](PanelStore& s) { return DuplicateRecord(s, kUnknownMode, 0, 1); }},
        {"copy from a list beyond the count",
         [](PanelStore& s) { return DuplicateRecord(s, kInput, 2, 0); }},
        {"copy from a negative group",
         [](PanelStore& s) { return DuplicateRecord(s, kUserGroupListType, -1, 0); }},
        {"copy onto a list past the new one",
         [](PanelStore& s) { return DuplicateRecord(s, kInput, 0, 3); }},
        {"copy onto a negative list",
         [](PanelStore& s) { return DuplicateRecord(s, kInput, 0, -1); }},
        {"fill a template beyond the count",
         [](PanelStore& s) { return FillButtonTemplate(s, 2); }},
        {"clear a negative template", [](PanelStore& s) { return ClearButtonTemplate(s, -1); }},
        {"copy a template beyond the count",
         [](PanelStore& s) { return DuplicateButtonTemplate(s, 2, 0); }},
    };
    for (const auto& c : cases) {
        PanelStore store = TwoOfEach();
        const Status status = c.change(store);
        EXPECT_FALSE(status.ok()) << c.what;
        EXPECT_EQ(status.failure().code, ErrorCode::SubscriptOutOfRange) << c.what;
        EXPECT_EQ(test::PartsOf(store), test::PartsOf(TwoOfEach())) << c.what;
    }
}

TEST(Refusals, ALookUpOutsideTheStoreFindsNothing) {
    PanelStore store = TwoOfEach();
    EXPECT_EQ(RecordCount(store, kInput), 2);
    EXPECT_EQ(RecordCount(store, kOutput), 1);
    EXPECT_EQ(RecordCount(store, kUserGroupListType), 2);
    EXPECT_EQ(RecordCount(store, kUnknownMode), std::nullopt);

    EXPECT_EQ(RecordName(store, kInput, 1), "Lines");
    EXPECT_EQ(RecordName(store, kUserGroupListType, 1), "Studio B");
    for (int index : {-1, 2})
        EXPECT_EQ(RecordName(store, kInput, index), std::nullopt) << index;
    EXPECT_EQ(RecordName(store, kUnknownMode, 0), std::nullopt);

    EXPECT_EQ(AppendRecord(store, kUnknownMode, "New"), std::nullopt);
    store.listCount(SubType::Output) = INT16_MAX;
    EXPECT_EQ(AppendRecord(store, kOutput, "New"), std::nullopt);
    EXPECT_EQ(AppendRecord(store, kInput, "New"), 2);

    // A channel below the bound whose table lacks its name position.
    store.alpha(SubType::Input).count = 3;
    store.alpha(SubType::Input).names = {"A", "B"};
    store.alpha(SubType::Input).positionOf = {1, 0};
    EXPECT_EQ(ChannelAlpha(store, SubType::Input, 1), "A");
    EXPECT_EQ(ChannelAlpha(store, SubType::Input, 3), "*Invalid*");
    for (int channel : {-1, 2})
        EXPECT_EQ(ChannelAlpha(store, SubType::Input, channel), std::nullopt) << channel;
}

TEST(Refusals, GroupEntriesBeyondTheArraysAreNotThere) {
    UserGroup group = test::Group({{0, kInput}, {4, kOutput}, {1, kInput}});
    group.listCount = 5; // a count the arrays do not back
    EXPECT_EQ(GroupEntriesOfType(group, kInput), (std::vector<int16_t>{0, 1}));
    ASSERT_TRUE(ReplaceGroupEntries(group, kInput, {2}).ok());
    EXPECT_EQ(group.listCount, 2);
    EXPECT_EQ(group.listIndexes, (std::vector<int16_t>{2, 4}));

    const std::vector<int16_t> tooMany(INT16_MAX, 0);
    const UserGroup before = group;
    EXPECT_FALSE(ReplaceGroupEntries(group, kInput, tooMany).ok());
    EXPECT_EQ(group, before);
}

} // namespace
} // namespace lumeth
