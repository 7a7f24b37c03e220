// Whole steps over the store: what makes a step and what undo goes back to.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "model/edit_steps.h"

namespace lumeth {
namespace {

PanelStore Named(const std::string& group) {
    PanelStore store;
    store.groups.userGroupCount = 1;
    store.groups.userGroupNames[0] = group;
    return store;
}

void Rename(PanelStore& store, const std::string& group) {
    store.groups.userGroupNames[0] = group;
}

TEST(EditSteps, UndoGoesBackToWhereTheLastStepStarted) {
    const PanelSnapshot held = TakeSnapshot(Named("Studio"));
    struct Case {
        const char* name;
        std::function<void(EditSteps&, PanelStore&)> play;
        std::string afterUndo; // "" when there is nothing to undo
    } const cases[] = {
        {"an unchanged store is no step",
         [](EditSteps& steps, PanelStore& store) { EXPECT_FALSE(steps.Record(store)); }, ""},
        {"an edit is one step",
         [](EditSteps& steps, PanelStore& store) {
             Rename(store, "Edited");
             EXPECT_TRUE(steps.Record(store));
         },
         "Studio"},
        {"a download is no step: the next edit is undone to it",
         [](EditSteps& steps, PanelStore& store) {
             Rename(store, "Downloaded");
             steps.Rebase(store);
             EXPECT_FALSE(steps.Record(store));
             Rename(store, "Edited");
             steps.Record(store);
         },
         "Downloaded"},
        {"a download over edits is undone to the edits",
         [](EditSteps& steps, PanelStore& store) {
             Rename(store, "Edited");
             steps.Record(store);
             PanelSnapshot before = TakeSnapshot(store, &steps.base());
             Rename(store, "Downloaded");
             steps.RecordFrom(std::move(before), store);
         },
         "Edited"},
        {"an arriving download over unapplied edits keeps them as a step",
         [&](EditSteps& steps, PanelStore& store) {
             Rename(store, "Edited");
             steps.Record(store);
             steps.Arriving(Part::UserGroups, store);
             Rename(store, "Downloaded");
             EXPECT_TRUE(steps.Arrived(Part::UserGroups, store, held));
         },
         "Edited"},
        {"an arriving download over no edits is no step",
         [&](EditSteps& steps, PanelStore& store) {
             steps.Arriving(Part::UserGroups, store);
             Rename(store, "Downloaded");
             EXPECT_FALSE(steps.Arrived(Part::UserGroups, store, held));
             EXPECT_FALSE(steps.Arrived(Part::UserGroups, store, TakeSnapshot(Named("Else"))))
                 << "counted once";
             steps.Rebase(store);
         },
         ""},
        {"the parts of one download join one step; an edit ends it",
         [&](EditSteps& steps, PanelStore& store) {
             Rename(store, "Edited");
             store.listTable(SubType::Input).displayListCount = 3;
             steps.Record(store);
             for (Part p : {Part::UserGroups, Part::InputLists, Part::Templates})
                 steps.Arriving(p, store);
             Rename(store, "Downloaded");
             EXPECT_TRUE(steps.Arrived(Part::UserGroups, store, held));
             store.listTable(SubType::Input).displayListCount = 0;
             EXPECT_TRUE(steps.Arrived(Part::InputLists, store, held));
             EXPECT_EQ(steps.history().undoDepth(), 2u);
             store.templates.templateCount = 1;
             EXPECT_TRUE(steps.Record(store));
             store.templates.templateCount = 0;
             EXPECT_FALSE(steps.Arrived(Part::Templates, store, held));
             steps.Rebase(store);
             PanelStore undone = store;
             steps.Undo(undone);
             steps.Undo(undone);
             EXPECT_EQ(undone.listTable(SubType::Input).displayListCount, 3);
             EXPECT_EQ(undone.groups.userGroupNames[0], "Edited");
             steps.Redo(undone);
             steps.Redo(undone);
         },
         "Downloaded"},
        {"a download of one part leaves the edits of the others to the next step",
         [](EditSteps& steps, PanelStore& store) {
             Rename(store, "Edited");
             store.listTable(SubType::Input).displayListCount = 2;
             steps.Rebase(store, {Part::InputLists});
             EXPECT_TRUE(steps.Record(store));
         },
         "Studio"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PanelStore store = Named("Studio");
        EditSteps steps(store);
        c.play(steps, store);
        const std::string last = store.groups.userGroupNames[0];
        ASSERT_EQ(steps.Undo(store), !c.afterUndo.empty());
        if (c.afterUndo.empty())
            continue;
        EXPECT_EQ(store.groups.userGroupNames[0], c.afterUndo);
        EXPECT_EQ(*steps.base().groups, store.groups) << "the next step starts here";
        ASSERT_TRUE(steps.Redo(store));
        EXPECT_EQ(store.groups.userGroupNames[0], last);
        EXPECT_EQ(*steps.base().groups, store.groups);
    }
}

} // namespace
} // namespace lumeth
