// The difference report: one exact line per change.
#include <gtest/gtest.h>

#include <functional>

#include "model/button_templates.h"
#include "model/panel_snapshot.h"
#include "model/store_diff.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

PanelStore Base() {
    PanelStore store;
    AlphaTable& inputs = store.alpha(SubType::Input);
    inputs.channelNames = {"MIC 1", "MIC 2", "MIC 3", "MIC 4"};
    inputs.count = 4;
    store.listCount(SubType::Input) = 2;
    store.lists(SubType::Input) = {test::List("Mics", {0, 1, 2}), test::List("Spare", {})};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output) = {test::List("Outs", {0})};
    store.groups.userGroupCount = 1;
    store.groups.Resize(1);
    store.groups.userGroupNames[0] = "Studio";
    store.groups.userGroups[0] = test::Group({{0, 11}, {0, 21}});
    store.templates.templateCount = 1;
    store.templates.Resize(1);
    store.templates.templateNames[0] = "Desk";
    PanelButton select = PanelButton::Cleared();
    select.type = 40; // Source Select, an Input channel
    select.channel = 0;
    select.label = "MIC";
    store.templates.buttonTemplates[0].buttonCount = 2;
    store.templates.buttonTemplates[0].buttons = {select, PanelButton::Cleared()};
    return store;
}

struct Edit {
    const char* what;
    std::function<void(PanelStore&)> apply;
    std::vector<std::string> lines;
};

TEST(StoreDiff, EachEditGivesItsLines) {
    const auto inputs = [](PanelStore& s) -> std::vector<DisplayList>& {
        return s.lists(SubType::Input);
    };
    const std::vector<Edit> edits{
        {"names padded with blanks, as a file load keeps them",
         [&](PanelStore& s) {
             inputs(s)[0].name = "Mics            ";
             s.groups.userGroupNames[0] = "Studio          ";
         },
         {}},
        {"a template grown to 32 cleared buttons",
         [](PanelStore& s) {
             s.templates.buttonTemplates[0].buttonCount = 32;
             s.templates.buttonTemplates[0].buttons.resize(32, PanelButton::Cleared());
         },
         {"template 01 \"Desk\": grown from 2 to 32 buttons"}},
        {"the editor's growth, a grown button then edited, a held one cleared",
         [](PanelStore& s) {
             ASSERT_TRUE(FillButtonTemplate(s, 0));
             s.templates.templateNames[0] = "Host";
             s.templates.buttonTemplates[0].buttons[7].label = "TB";
             s.templates.buttonTemplates[0].buttons[0] = PanelButton::Cleared();
         },
         {"template 01 \"Desk\" renamed to \"Host\"",
          "template 01 \"Host\": grown from 2 to 32 buttons",
          "template 01 \"Host\" Btn 1: Source Select, Input Ch.0001 \"MIC 1\", label \"MIC\" "
          "changed to "
          "Console Source Select, no channel, label \"\"",
          "template 01 \"Host\" Btn 8: Console Source Select, no channel, label \"Button 8\" "
          "changed to "
          "Console Source Select, no channel, label \"TB\""}},
        {"buttons dropped: said once, no growth line",
         [](PanelStore& s) { s.templates.buttonTemplates[0].buttonCount = 1; },
         {"template 01 \"Desk\": cut from 2 to 1 button"}},
        {"rename",
         [&](PanelStore& s) { inputs(s)[0].name = "Voices"; },
         {"Input Lst.000 \"Mics\" renamed to \"Voices\""}},
        {"channels removed, added, moved",
         [&](PanelStore& s) {
             inputs(s)[0] = test::List("Mics", {2, 0, 3});
         },
         {"Input Lst.000 \"Mics\": removed Input Ch.0002 \"MIC 2\"",
          "Input Lst.000 \"Mics\": added Input Ch.0004 \"MIC 4\"",
          "Input Lst.000 \"Mics\": moved Input Ch.0003 \"MIC 3\""}},
        {"a channel listed a second time",
         [&](PanelStore& s) {
             inputs(s)[0] = test::List("Mics", {0, 1, 2, 0});
         },
         {"Input Lst.000 \"Mics\": added Input Ch.0001 \"MIC 1\""}},
        {"a list added and one removed",
         [&](PanelStore& s) {
             s.listCount(SubType::Input) = 1;
             s.listCount(SubType::Output) = 2;
             s.lists(SubType::Output).push_back(test::List("Cue", {1, 2}));
         },
         {"Input Lst.001 \"Spare\" removed", "Output Lst.001 \"Cue\" added (2 channels)"}},
        {"group entries and name",
         [](PanelStore& s) {
             s.groups.userGroupNames[0] = "Studio B";
             s.groups.userGroups[0] = test::Group({{0, 11}, {1, 11}});
         },
         {"Gr.001 \"Studio\" renamed to \"Studio B\"",
          "Gr.001 \"Studio B\": removed Output Lst.000 \"Outs\"",
          "Gr.001 \"Studio B\": added Input Lst.001 \"Spare\""}},
        {"group entries in another order, one named twice",
         [](PanelStore& s) {
             s.groups.userGroups[0] = test::Group({{0, 21}, {0, 11}, {0, 11}});
         },
         {"Gr.001 \"Studio\": added Input Lst.000 \"Mics\"",
          "Gr.001 \"Studio\": moved Output Lst.000 \"Outs\""}},
        {"a button's label and channel",
         [](PanelStore& s) {
             s.templates.buttonTemplates[0].buttons[0].label = "VOX";
             s.templates.buttonTemplates[0].buttons[0].channel = kNoChannel;
         },
         {"template 01 \"Desk\" Btn 1: Source Select, Input Ch.0001 \"MIC 1\", label \"MIC\" "
          "changed to Source "
          "Select, no channel, label \"VOX\""}},
    };
    const PanelStore before = Base();
    for (const Edit& edit : edits) {
        SCOPED_TRACE(edit.what);
        PanelStore after = Base();
        edit.apply(after);
        EXPECT_EQ(DiffStores(before, after), edit.lines);
    }
}

// When two stores are the same as the server module would get them: the
// report, the parts it names, and the snapshot and store comparisons agree.
TEST(StoreDiff, DifferingPartsAreThePartsWithChanges) {
    const auto desk = [](PanelStore& s) -> ButtonTemplate& {
        return s.templates.buttonTemplates[0];
    };
    const struct {
        const char* what;
        std::function<void(PanelStore&)> apply;
        PartSet parts;
    } edits[] = {
        {"names and labels cut to their width",
         [](PanelStore& s) {
             s.lists(SubType::Input)[0].name = "Mics            and more";
             s.templates.buttonTemplates[0].buttons[0].label = "MIC     and more";
         },
         {}},
        {"trailing blanks",
         [&](PanelStore& s) {
             s.lists(SubType::Input)[1].name = "Spare   ";
             s.groups.userGroupNames[0] = "Studio ";
             s.templates.templateNames[0] = "Desk            ";
             desk(s).buttons[0].label = "MIC  ";
         },
         {}},
        {"a name changed within its width",
         [](PanelStore& s) { s.groups.userGroupNames[0] = "Studio  B"; },
         {Part::UserGroups}},
        {"entries past the counts and the local index arrays",
         [&](PanelStore& s) {
             s.lists(SubType::Input).push_back(test::List("Not counted", {1}));
             s.lists(SubType::Input)[1].channels[0] = 3;
             s.groups.userGroupIndex[0] = 7;
             s.templates.templatePosition[0] = 7;
             desk(s).buttons.push_back(PanelButton{});
         },
         {}},
        {"counts that ran ahead of their arrays",
         [&](PanelStore& s) {
             s.lists(SubType::Input)[0].channelCount = 9;
             s.groups.userGroups[0].listCount = 5;
             desk(s).buttonCount = 40;
         },
         {}},
        {"fewer lists than FILE holds",
         [](PanelStore& s) {
             s.listCount(SubType::Output) = 3;
             s.lists(SubType::Output).resize(3, test::List("Outs", {0}));
         },
         {Part::OutputLists}},
        {"a channel and a group entry",
         [](PanelStore& s) {
             s.lists(SubType::Input)[0].channels[2] = 3;
             s.groups.userGroups[0].listTypes[1] = 11;
         },
         {Part::InputLists, Part::UserGroups}},
        {"a template number",
         [](PanelStore& s) { s.templates.buttonTemplates[0].number = 9; },
         {Part::Templates}},
        {"grown to 32 buttons",
         [](PanelStore& s) { ASSERT_TRUE(FillButtonTemplate(s, 0)); },
         {Part::Templates}},
        {"a cleared button dropped",
         [&](PanelStore& s) { desk(s).buttonCount = 1; },
         {Part::Templates}},
    };
    const PanelStore before = Base();
    for (const auto& edit : edits) {
        SCOPED_TRACE(edit.what);
        PanelStore after = Base();
        edit.apply(after);
        EXPECT_EQ(DifferingParts(before, after), edit.parts);
        EXPECT_EQ(DifferingParts(after, before), edit.parts);
        EXPECT_EQ(DiffStores(before, after).empty(), edit.parts.empty());
        EXPECT_EQ(DiffStores(after, before).empty(), edit.parts.empty());
        EXPECT_EQ(DifferAsSent(TakeSnapshot(before), TakeSnapshot(after)), edit.parts);
        EXPECT_EQ(ChangedParts(after, before), edit.parts);
    }
}

} // namespace
} // namespace lumeth
