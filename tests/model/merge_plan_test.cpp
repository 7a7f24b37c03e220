// Sending over another administrator's change: which parts conflict, which
// are kept as the server module holds them, which go out.
#include <gtest/gtest.h>

#include <functional>

#include "model/merge_plan.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

PanelStore Base() {
    PanelStore store;
    store.listCount(SubType::Input) = 1;
    store.lists(SubType::Input) = {test::List("Mics", {0, 1})};
    store.listCount(SubType::Relay) = 1;
    store.lists(SubType::Relay) = {test::List("Lamps", {3})};
    store.groups.userGroupCount = 1;
    store.groups.Resize(1);
    store.groups.userGroupNames[0] = "Studio";
    return store;
}

using Edit = std::function<void(PanelStore&)>;
const Edit kNone = [](PanelStore&) {};
const Edit kRenameInputs = [](PanelStore& s) { s.lists(SubType::Input)[0].name = "Desk"; };
const Edit kRenameInputsOther = [](PanelStore& s) { s.lists(SubType::Input)[0].name = "Booth"; };
const Edit kRenameRelays = [](PanelStore& s) { s.lists(SubType::Relay)[0].name = "Tally"; };
const Edit kRenameGroup = [](PanelStore& s) { s.groups.userGroupNames[0] = "Studio B"; };
const Edit kPadInputs = [](PanelStore& s) { s.lists(SubType::Input)[0].name = "Mics    "; };

struct Case {
    const char* what;
    Edit server;
    Edit mine;
    PartSet wanted;
    bool force;
    PartSet conflicts;
    PartSet kept;
    PartSet send;
};

TEST(MergePlan, ClassifiesEachPart) {
    const PartSet all = kUploadParts;
    const PartSet quiet = all - PartSet{Part::RelayLists};
    const std::vector<Case> cases{
        {"nobody changed anything: everything goes", kNone, kNone, all, false, {}, {}, all},
        {"only mine changed", kNone, kRenameInputs, all, false, {}, {}, all},
        {"only the server changed: that part is kept", kRenameRelays, kRenameInputs, all, false, {},
         {Part::RelayLists}, quiet},
        {"both changed one part differently", kRenameInputsOther, kRenameInputs, all, false,
         {Part::InputLists}, {}, all - PartSet{Part::InputLists}},
        {"both changed one part the same way", kRenameInputs, kRenameInputs, all, false, {}, {},
         all},
        {"a change the upload cuts away is no change", kPadInputs, kRenameRelays, all, false, {}, {},
         all},
        {"force sends a conflict and over a server change",
         [](PanelStore& s) {
             kRenameInputsOther(s);
             kRenameGroup(s);
         },
         kRenameInputs, all, true, {Part::InputLists}, {Part::UserGroups}, all},
        {"parts not wanted are neither conflicts nor kept",
         [](PanelStore& s) {
             kRenameInputsOther(s);
             kRenameGroup(s);
         },
         kRenameInputs, PartSet{Part::RelayLists, Part::Templates}, false, {}, {},
         PartSet{Part::RelayLists, Part::Templates}},
        {"an alphas part asked for is never sent", kNone, kNone,
         PartSet{Part::InputAlphas, Part::Templates}, false, {}, {}, PartSet{Part::Templates}},
    };
    const PanelStore base = Base();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PanelStore server = base;
        c.server(server);
        PanelStore mine = base;
        c.mine(mine);
        const MergePlan plan = PlanMerge(base, server, mine, c.wanted, c.force);
        EXPECT_EQ(plan.conflicts, c.conflicts);
        EXPECT_EQ(plan.keptServer, c.kept);
        EXPECT_EQ(plan.toSend, c.send);
    }
}

TEST(MergePlan, NamesTheChangedPart) {
    EXPECT_EQ(ServerChangedLine(Part::RelayLists, "base.json"),
              "the server module's Relay display lists changed since base.json");
}

} // namespace
} // namespace lumeth
