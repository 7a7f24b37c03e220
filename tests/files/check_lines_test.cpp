// The checks of a configuration: one line per finding, with its JSON path.
#include <gtest/gtest.h>

#include "files/json_schema.h"
#include "model/store_check.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

TEST(StoreCheck, FindingsNameTheirPathAndSeverity) {
    PanelStore store;
    store.alpha(SubType::Input).count = 2;
    store.listCount(SubType::Input) = 3;
    store.lists(SubType::Input) = {test::List("Mics", {0, 2}), test::List("Mics", {1}),
                                   test::List("A name that is too long", {})};
    store.listCount(SubType::Output) = 1;
    store.lists(SubType::Output) = {test::List("Outs", {5})};
    store.groups.userGroupCount = 2;
    store.groups.Resize(2);
    store.groups.userGroupNames = {"Studio", "Empty"};
    store.groups.userGroups = {test::Group({{1, 11}, {3, 11}, {0, 51}}), test::Group({})};
    store.templates.templateCount = 1;
    store.templates.Resize(1);
    store.templates.templateNames[0] = "Desk";
    PanelButton select = PanelButton::Cleared();
    select.type = 40; // Source Select needs an Input channel
    select.label = "TOO LONG!";
    store.templates.buttonTemplates[0].buttonCount = 1;
    store.templates.buttonTemplates[0].buttons = {select};

    std::vector<std::string> lines;
    for (const CheckFinding& finding : CheckStore(store, true))
        lines.push_back(CheckFindingLine(finding));
    const std::vector<std::string> expected{
        "error: display_lists.input[0].channels[1]: channel 2 is outside the 2 Input channel names",
        "warning: display_lists.input[1].name: name \"Mics\" is also the name of "
        "display_lists.input[0]",
        "warning: display_lists.input[2].name: name is 23 characters long; only the first 16 are "
        "kept",
        "warning: display_lists.input[2]: display list is empty",
        "error: display_lists.output[0].channels[0]: channel 5 is outside the 0 Output channel "
        "names",
        "error: user_groups[0].lists[1]: points to Input list 3 of 3",
        "error: user_groups[0].lists[2]: list type 51 is not 11, 21, 31 or 41",
        "warning: user_groups[1]: user group is empty",
        "warning: templates[0].buttons[0].label: label is 9 characters long; only the first 8 are "
        "kept",
        "warning: templates[0].buttons[0].channel: Source Select needs a channel and has none",
    };
    EXPECT_EQ(lines, expected);
}

} // namespace
} // namespace lumeth
