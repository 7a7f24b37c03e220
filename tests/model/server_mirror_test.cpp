// What the program knows the server module holds: counting, holding, each
// part as it arrived and the store as last received in full.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "model/server_mirror.h"
#include "model/store_diff.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

PanelStore Base() {
    PanelStore store;
    for (SubType s : kAllSubTypes) {
        store.alpha(s).count = 1;
        store.alpha(s).channelNames = {std::string(SubTypeName(s)) + " 1"};
        store.listCount(s) = 1;
        store.lists(s) = {test::List(std::string(SubTypeName(s)), {0})};
    }
    store.groups.userGroupCount = 1;
    store.groups.Resize(1);
    store.groups.userGroupNames[0] = "Studio";
    store.templates.templateCount = 1;
    store.templates.Resize(1);
    store.templates.templateNames[0] = "Desk";
    return store;
}

// Changes every part of `parts` in `store` (the password in `password`).
void Damage(PartSet parts, PanelStore& store, std::string& password) {
    ForEachPart(parts, [&](Part p) {
        const PartInfo& info = Info(p);
        switch (info.kind) {
        case PartKind::Password:
            password += "!";
            break;
        case PartKind::Alphas:
            store.alpha(*info.subType).channelNames[0] += "!";
            break;
        case PartKind::DisplayLists:
            store.lists(*info.subType)[0].name += "!";
            break;
        case PartKind::UserGroups:
            store.groups.userGroupNames[0] += "!";
            break;
        case PartKind::Templates:
            store.templates.templateNames[0] += "!";
            break;
        }
    });
}

void ReceiveAll(ServerMirror& mirror, const PanelStore& store) {
    ForEachPart(kAllParts, [&](Part p) { mirror.Received(p, store, "studio"); });
}

// What happens to the mirror, the store holding Base().
using Step = std::function<void(ServerMirror&)>;
Step Receive(Part part) {
    return [part](ServerMirror& m) { m.Received(part, Base(), "studio"); };
}
const Step kReceiveAll = [](ServerMirror& m) { ReceiveAll(m, Base()); };
const Step kLinkUp = [](ServerMirror& m) { m.LinkUp(); };
const Step kRequestEverything = [](ServerMirror& m) { m.RequestedEverything(); };
const Step kApply = [](ServerMirror& m) { m.Applied(Base()); };
const Step kLoad = [](ServerMirror& m) { m.Loaded(); };

void Play(ServerMirror& mirror, const std::vector<Step>& steps) {
    for (const Step& step : steps)
        step(mirror);
}

TEST(ServerMirror, CountsReceivedAndHeldParts) {
    const Step groups = Receive(Part::UserGroups);
    struct Case {
        const char* name;
        std::vector<Step> steps;
        PartSet received;
        PartSet held;
        bool full;
    } const cases[] = {
        {"nothing yet", {}, {}, {}, false},
        {"parts add up, only upload parts are held",
         {Receive(Part::Password), groups},
         {Part::Password, Part::UserGroups},
         {Part::UserGroups},
         false},
        {"a request for everything counts again and keeps what is held",
         {groups, kRequestEverything},
         {},
         {Part::UserGroups},
         false},
        {"the link coming up forgets both", {groups, kLinkUp}, {}, {}, false},
        {"all eleven parts", {kReceiveAll}, kAllParts, kUploadParts, true},
        {"a full store outlives the next request",
         {kReceiveAll, kRequestEverything, groups},
         {Part::UserGroups},
         kUploadParts,
         true},
        {"apply holds the upload parts", {kApply}, {}, kUploadParts, true},
        {"apply of chosen parts holds those alone",
         {[](ServerMirror& m) {
             m.Applied(Base(), {Part::UserGroups, Part::InputAlphas});
         }},
         {},
         {Part::UserGroups},
         false},
        {"a load holds the upload parts", {kLoad}, {}, kUploadParts, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ServerMirror mirror;
        Play(mirror, c.steps);
        EXPECT_EQ(mirror.received(), c.received);
        EXPECT_EQ(mirror.missing(), kAllParts - c.received);
        EXPECT_EQ(mirror.held(), c.held);
        EXPECT_EQ(mirror.full().has_value(), c.full);
    }
}

// A damaged answer that wrote into the store after the part had arrived
// intact is undone by RestoreReceived; parts not received are left alone.
TEST(ServerMirror, RestoresEachReceivedPartAsItArrived) {
    for (const PartInfo& info : kParts) {
        SCOPED_TRACE(std::string(info.name));
        ServerMirror mirror;
        PanelStore store = Base();
        std::string password = "studio";
        mirror.Received(info.part, store, password);
        Damage(kAllParts, store, password);
        mirror.RestoreReceived(store, password);

        PanelStore expected = Base();
        std::string expectedPassword = "studio";
        Damage(kAllParts - PartSet{info.part}, expected, expectedPassword);
        EXPECT_EQ(test::PartsOf(store), test::PartsOf(expected));
        EXPECT_EQ(password, expectedPassword);
    }
    ServerMirror mirror;
    ReceiveAll(mirror, Base());
    mirror.RequestedEverything();
    PanelStore store = Base();
    std::string password = "studio";
    Damage(kAllParts, store, password);
    mirror.RestoreReceived(store, password);
    EXPECT_EQ(store.groups.userGroupNames[0], "Studio!") << "counted again: nothing received";
}

TEST(ServerMirror, FullStoreTakesReceivedPartsButNoLocalEdits) {
    ServerMirror mirror;
    PanelStore store = Base();
    // Nothing received yet: compared with the empty parts, and said so first.
    std::vector<std::string> lines = DiffStores(PanelStore{}, store);
    lines.insert(lines.begin(), kNotReceivedInFullLine);
    EXPECT_EQ(mirror.ChangeLines(store), lines);
    EXPECT_EQ(mirror.Unapplied(store), kUploadParts);
    EXPECT_TRUE(mirror.ChangeLines(PanelStore{}).empty()) << "nothing edited: nothing to say";
    ReceiveAll(mirror, store);
    EXPECT_TRUE(mirror.ChangeLines(store).empty());
    store.groups.userGroupNames[0] = "Edited";
    store.templates.templateNames[0] = "Sent again";
    mirror.Received(Part::Templates, store, "studio");
    ASSERT_TRUE(mirror.full());
    EXPECT_EQ(mirror.full()->groups.userGroupNames[0], "Studio");
    EXPECT_EQ(mirror.full()->templates.templateNames[0], "Sent again");
    PanelStore received = Base();
    received.templates = store.templates;
    EXPECT_EQ(mirror.ChangeLines(store), DiffStores(received, store)) << "the group edit only";
    EXPECT_EQ(mirror.ChangeLines(store).size(), 1u);

    // Sending the templates alone leaves the group edit unapplied.
    store.templates.templateNames[0] = "Sent alone";
    mirror.Applied(store, {Part::Templates});
    EXPECT_EQ(mirror.full()->templates.templateNames[0], "Sent alone");
    EXPECT_EQ(mirror.full()->groups.userGroupNames[0], "Studio");
    EXPECT_EQ(mirror.uploadParts().templates->templateNames[0], "Sent alone");
    EXPECT_EQ(mirror.uploadParts().groups->userGroupNames[0], "Studio");

    mirror.Applied(store);
    EXPECT_EQ(mirror.full()->groups.userGroupNames[0], "Edited");
    EXPECT_EQ(*mirror.uploadParts().groups, store.groups);
}

// Apply asks before replacing parts of the server module that were neither
// received, loaded nor edited.
TEST(ServerMirror, UnconfirmedPartsAreNeitherHeldNorEdited) {
    const auto renameGroup = [](PanelStore& store) { store.groups.userGroupNames[0] = "Edited"; };
    const auto keep = [](PanelStore&) {};
    struct Case {
        const char* name;
        std::vector<Step> steps;
        void (*edit)(PanelStore&);
        PartSet unconfirmed;
    } const cases[] = {
        {"nothing received", {}, keep, kUploadParts},
        {"groups received",
         {Receive(Part::UserGroups)},
         keep,
         kUploadParts - PartSet{Part::UserGroups}},
        {"groups edited", {}, renameGroup, kUploadParts - PartSet{Part::UserGroups}},
        {"channel names are no upload part", {Receive(Part::InputAlphas)}, keep, kUploadParts},
        {"a file loaded", {kLoad}, keep, {}},
        {"held until the link comes up again", {kLoad, kLinkUp}, keep, kUploadParts},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ServerMirror mirror(Base());
        Play(mirror, c.steps);
        PanelStore now = Base();
        c.edit(now);
        EXPECT_EQ(mirror.Unconfirmed(now), c.unconfirmed);
    }
}

// A load that stopped part way: which parts still hold what it left, as
// downloads, good loads, undo and redo replace them.
TEST(ServerMirror, DamagedLoadLastsUntilItsPartsAreReplaced) {
    PanelStore left = Base();
    std::string password;
    Damage({Part::UserGroups, Part::Templates}, left, password);
    const Step stop = [left](ServerMirror& m) {
        m.LoadStopped("cut.dat", TakeSnapshot(Base()), left);
    };
    const auto restore = [](const PanelStore& now) {
        return Step([now](ServerMirror& m) { m.Restored(now); });
    };
    const PartSet loaded{Part::UserGroups, Part::Templates};
    struct Case {
        const char* name;
        std::vector<Step> steps;
        PartSet damaged;
    } const cases[] = {
        {"nothing loaded", {}, {}},
        {"the whole configuration counts", {stop}, kUploadParts},
        {"the link and a request are no download",
         {stop, kLinkUp, kRequestEverything},
         kUploadParts},
        {"downloaded parts replace it",
         {stop, Receive(Part::UserGroups), Receive(Part::InputAlphas)},
         kUploadParts - PartSet{Part::UserGroups}},
        {"a whole download", {stop, kReceiveAll}, {}},
        {"a good load", {stop, kLoad}, {}},
        {"an undo", {stop, restore(Base())}, {}},
        {"a redo brings back what the load changed",
         {stop, restore(Base()), restore(left)},
         loaded},
        {"undoing a download", {stop, Receive(Part::UserGroups), restore(left)}, loaded},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ServerMirror mirror(Base());
        Play(mirror, c.steps);
        EXPECT_EQ(mirror.damagedLoad().parts(), c.damaged);
        EXPECT_EQ(mirror.damagedLoad().file(), c.damaged.empty() ? "" : "cut.dat");
    }
}

} // namespace
} // namespace lumeth
