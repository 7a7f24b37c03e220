// The edits kept for the recovery file: which downloads and operator actions
// keep them and which give them up.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "model/kept_edits.h"

namespace lumeth {
namespace {

void Rename(PanelStore& store, const std::string& group) {
    store.groups.userGroupCount = 1;
    store.groups.userGroupNames[0] = group;
}

std::string KeptName(const KeptEdits& kept) {
    return kept.parts().has(Part::UserGroups) ? kept.edits().groups->userGroupNames[0] : "";
}

TEST(KeptEdits, DownloadsConfirmOrKeepTheEditsAndUndoGivesThemUp) {
    struct Case {
        const char* name;
        std::function<void(KeptEdits&, PanelStore&)> play;
        std::string kept; // the group name kept; "" when nothing is kept
    } const cases[] = {
        {"an edit is kept",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             EXPECT_TRUE(kept.Note(store));
             EXPECT_FALSE(kept.Note(store));
         },
         "Edited"},
        {"a download of something else keeps the edit",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             Rename(store, "Other admin");
             kept.Received(Part::UserGroups, store);
             kept.Note(store);
         },
         "Edited"},
        {"a download of the same content confirms it",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             kept.Received(Part::UserGroups, store);
         },
         ""},
        {"a download of another part leaves it",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             kept.Received(Part::Templates, store);
             kept.Received(Part::InputAlphas, store);
         },
         "Edited"},
        {"going back to the download gives it up",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             Rename(store, "Studio");
             EXPECT_TRUE(kept.Note(store));
         },
         ""},
        {"a later edit replaces the kept one",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             Rename(store, "Again");
             EXPECT_TRUE(kept.Note(store));
         },
         "Again"},
        {"discarded",
         [](KeptEdits& kept, PanelStore& store) {
             Rename(store, "Edited");
             kept.Note(store);
             kept.Discard();
         },
         ""},
        {"adopted edits survive the store not holding them",
         [](KeptEdits& kept, PanelStore& store) {
             PanelStore earlier = store;
             Rename(earlier, "Earlier run");
             kept.Adopt({Part::UserGroups, Part::InputAlphas}, TakeSnapshot(earlier));
             EXPECT_EQ(kept.parts(), PartSet{Part::UserGroups});
             kept.Note(store);
             kept.Received(Part::UserGroups, store);
             kept.Note(store);
         },
         "Earlier run"},
        {"adopted edits the download already holds are confirmed",
         [](KeptEdits& kept, PanelStore& store) {
             PanelStore earlier = store;
             Rename(earlier, "Applied");
             kept.Adopt({Part::UserGroups}, TakeSnapshot(earlier));
             Rename(store, "Applied");
             kept.Received(Part::UserGroups, store);
         },
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PanelStore store;
        Rename(store, "Studio");
        KeptEdits kept(store);
        c.play(kept, store);
        EXPECT_EQ(KeptName(kept), c.kept);
        EXPECT_EQ(kept.parts().empty(), c.kept.empty());
    }
}

} // namespace
} // namespace lumeth
