// The checks of a configuration: one line per finding, with its JSON path.
#include <gtest/gtest.h>

#include <functional>

#include "files/check_report.h"
#include "files/json_schema.h"
#include "model/limits.h"
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
        lines.push_back(CheckFindingLine(finding, store));
    const std::vector<std::string> expected{
        "error: Input Lst.000 \"Mics\" Ch.0003: channel 2 is outside the 2 Input channel names "
        "[display_lists.input[0].channels[1]]",
        "warning: Input Lst.001 \"Mics\": name \"Mics\" is also the name of Input Lst.000 "
        "\"Mics\" [display_lists.input[1].name]",
        "warning: Input Lst.002 \"A name that is t\": name is 23 characters long; only the first "
        "16 are kept [display_lists.input[2].name]",
        "warning: Input Lst.002 \"A name that is t\": display list is empty "
        "[display_lists.input[2]]",
        "error: Output Lst.000 \"Outs\" Ch.0006: channel 5 is outside the 0 Output channel names "
        "[display_lists.output[0].channels[0]]",
        "error: Gr.001 \"Studio\" entry 2: points to Input Lst.003, past the 3 Input lists "
        "[user_groups[0].lists[1]]",
        "error: Gr.001 \"Studio\" entry 3: list type 51 is not 11, 21, 31 or 41 "
        "[user_groups[0].lists[2]]",
        "warning: Gr.002 \"Empty\": user group is empty [user_groups[1]]",
        "warning: template 01 \"Desk\" Btn 1: label is 9 characters long; only the first 8 are "
        "kept [templates[0].buttons[0].label]",
        "warning: template 01 \"Desk\" Btn 1: Source Select without a channel "
        "[templates[0].buttons[0].channel]",
    };
    EXPECT_EQ(lines, expected);
}

// Only the same finding on consecutive keys of one template is one line: a
// gap, another function or another template starts a new line.
TEST(StoreCheck, RepeatedButtonFindingsAreGroupedAndCounted) {
    PanelStore store;
    store.templates.templateCount = 2;
    store.templates.Resize(2);
    store.templates.templateNames = {"Host", "Desk"};
    const auto keys = [](std::vector<int> types) {
        ButtonTemplate tmpl;
        tmpl.buttons.clear();
        tmpl.buttonCount = static_cast<int16_t>(types.size());
        for (int type : types) {
            PanelButton b = PanelButton::Cleared();
            b.type = static_cast<int16_t>(type);
            b.label = "KEY";
            tmpl.buttons.push_back(b);
        }
        return tmpl;
    };
    // 40 Source Select needs a channel; 0 is a cleared key's function, which does too.
    store.templates.buttonTemplates = {keys({40, 40, 40, 0, 40, 40}), keys({40, 40})};
    const std::vector<CheckFinding> findings = CheckStore(store, false);
    const std::vector<std::string> expected{
        "warning: template 01 \"Host\" Btn 1-3: Source Select without a channel (3 keys)",
        "warning: template 01 \"Host\" Btn 4: Console Source Select without a channel "
        "[templates[0].buttons[3].channel]",
        "warning: template 01 \"Host\" Btn 5-6: Source Select without a channel (2 keys)",
        "warning: template 02 \"Desk\" Btn 1-2: Source Select without a channel (2 keys)",
    };
    EXPECT_EQ(CheckReportLines(findings, store), expected);
    EXPECT_EQ(CheckSummary(findings), "0 errors, 8 warnings");
    EXPECT_EQ(CheckSummary({}), "no problems found");
}

// Each count the messages carry in 14 bits, and the buttons of a template:
// at the limit nothing blocks sending, one more is an error that does.
TEST(StoreCheck, CountsPastWhatIsSentAreErrorsThatBlockSending) {
    const PanelButton cleared = PanelButton::Cleared();
    const struct {
        const char* what;
        int limit;
        std::function<void(PanelStore&, int)> grow;
        std::string error; // for limit + 1
    } cases[] = {
        {"display lists of a sub type", kMax14Bit,
         [](PanelStore& s, int n) {
             s.listCount(SubType::Opto) = static_cast<int16_t>(n);
             s.lists(SubType::Opto).assign(static_cast<size_t>(n), test::List("Doors", {0}));
         },
         "error: Opto display lists: 16384 display lists; a message carries at most 16383 "
         "[display_lists.opto]"},
        {"channels in a list", kMax14Bit,
         [](PanelStore& s, int n) {
             s.lists(SubType::Input)[0] = test::List("Mics", std::vector<int16_t>(n, 0));
         },
         "error: Input Lst.000 \"Mics\": 16384 channels; a message carries at most 16383 "
         "[display_lists.input[0]]"},
        {"entries in a group", kMax14Bit,
         [](PanelStore& s, int n) {
             s.groups.userGroups[0] =
                 test::Group(std::vector<std::pair<int16_t, int16_t>>(n, {0, 11}));
         },
         "error: Gr.001 \"No Users\": 16384 entries; a message carries at most 16383 "
         "[user_groups[0]]"},
        {"user groups", kMax14Bit,
         [](PanelStore& s, int n) {
             s.groups.userGroupCount = static_cast<int16_t>(n);
             s.groups.Resize(n);
             s.groups.userGroups.assign(static_cast<size_t>(n), test::Group({{0, 11}}));
         },
         "error: user groups: 16384 user groups; a message carries at most 16383 [user_groups]"},
        {"templates", kMax14Bit,
         [](PanelStore& s, int n) {
             s.templates.templateCount = static_cast<int16_t>(n);
             s.templates.Resize(n);
         },
         "error: button templates: 16384 templates; a message carries at most 16383 [templates]"},
        {"buttons of a template", kTemplateButtons,
         [&](PanelStore& s, int n) {
             s.templates.buttonTemplates[0].buttonCount = static_cast<int16_t>(n);
             s.templates.buttonTemplates[0].buttons.assign(static_cast<size_t>(n), cleared);
         },
         "error: template 01 \"None\": 33 buttons; a template has at most 32 [templates[0]]"},
    };
    const auto errors = [](const std::vector<CheckFinding>& findings, const PanelStore& store) {
        std::vector<std::string> lines;
        for (const CheckFinding& f : findings)
            if (f.severity == CheckFinding::Severity::Error)
                lines.push_back(CheckFindingLine(f, store));
        return lines;
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        PanelStore store;
        store.ResetToDefaults();
        c.grow(store, c.limit);
        const std::vector<CheckFinding> atLimit = CheckStore(store, false);
        EXPECT_TRUE(errors(atLimit, store).empty());
        EXPECT_FALSE(BlocksSending(atLimit));
        c.grow(store, c.limit + 1);
        const std::vector<CheckFinding> past = CheckStore(store, false);
        EXPECT_EQ(errors(past, store), std::vector<std::string>{c.error});
        EXPECT_TRUE(BlocksSending(past));
    }
}

} // namespace
} // namespace lumeth
