#include "tools/sim/demo_config.h"

#include <algorithm>
#include <cstdio>

#include "files/json_document.h"
#include "model/limits.h"

namespace lumeth::sim {

namespace {

std::string Numbered(const char* format, int n) {
    char text[32];
    std::snprintf(text, sizeof text, format, n);
    return text;
}

// Channel names as a studio names them: a source kind and a number.
std::vector<std::string> LargeAlphaNames(SubType s, int count) {
    static const char* const kKinds[4][4] = {
        {"MIC %d", "CD %d", "LINE %d", "SAT %d"},
        {"SPK %d", "HP %d", "REC %d", "TX %d"},
        {"ONAIR %d", "DOOR %d", "FADER %d", "GPI %d"},
        {"LIGHT %d", "MUTE %d", "CUE %d", "GPO %d"},
    };
    std::vector<std::string> names;
    names.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        names.push_back(Numbered(kKinds[static_cast<int>(s)][i % 4], i / 4 + 1));
    }
    return names;
}

// The largest tables the protocol carries, with the untidiness of a real
// router: every seventh channel unnamed, every fifth a copy of an earlier name.
std::vector<std::string> MaxAlphaNames(SubType s) {
    constexpr int kCount = 16383;
    std::vector<std::string> names = LargeAlphaNames(s, kCount);
    for (int i = 1; i < kCount; ++i) {
        if (i % 7 == 0) {
            names[static_cast<size_t>(i)].clear();
        } else if (i % 5 == 0) {
            names[static_cast<size_t>(i)] = names[static_cast<size_t>(i / 2)];
        }
    }
    return names;
}

constexpr int kLargeLists = 500;

void FillLargeLists(PanelStore& store, int channelCount) {
    static const char* const kListNames[4] = {"IN LIST %03d", "OUT LIST %03d", "OPTO LIST %03d",
                                              "RELAY LIST %03d"};
    constexpr int kListLength = 64;
    for (SubType s : kAllSubTypes) {
        auto& lists = store.lists(s);
        lists.assign(kLargeLists, DisplayList{});
        for (int l = 0; l < kLargeLists; ++l) {
            DisplayList& list = lists[static_cast<size_t>(l)];
            list.name = Numbered(kListNames[static_cast<int>(s)], l + 1);
            list.channelCount = kListLength;
            list.channels.resize(kListLength);
            for (int k = 0; k < kListLength; ++k) {
                list.channels[static_cast<size_t>(k)] =
                    static_cast<int16_t>((l * 37 + k * 13) % channelCount);
            }
        }
        store.listCount(s) = kLargeLists;
    }
}

// Group g: 40 lists of every sub type in turn.
UserGroup LargeGroup(int g) {
    constexpr int kGroupLists = 40;
    UserGroup group;
    group.listCount = kGroupLists;
    group.listIndexes.resize(kGroupLists);
    group.listTypes.resize(kGroupLists);
    for (int k = 0; k < kGroupLists; ++k) {
        group.listIndexes[static_cast<size_t>(k)] =
            static_cast<int16_t>((g * 7 + k * 3) % kLargeLists);
        group.listTypes[static_cast<size_t>(k)] =
            ListTypeCode(kAllSubTypes[static_cast<size_t>(k % 4)]);
    }
    return group;
}

// Sizes `table` for `count` records and numbers them: the names from
// `format` ("GROUP 001", ...), both number columns the record's place.
template <typename Table>
void NumberRecords(Table& table, int count, const char* format, std::vector<std::string>& names,
                   std::vector<int16_t>& index, std::vector<int16_t>& number) {
    table.Resize(count);
    for (size_t i = 0; i < names.size(); ++i) {
        names[i] = Numbered(format, static_cast<int>(i) + 1);
        index[i] = static_cast<int16_t>(i);
        number[i] = static_cast<int16_t>(i);
    }
}

void FillLargeGroups(PanelStore& store) {
    UserGroupTable& groups = store.groups;
    groups.userGroupCount = 200;
    NumberRecords(groups, groups.userGroupCount, "GROUP %03d", groups.userGroupNames,
                  groups.userGroupIndex, groups.userGroupNumber);
    int g = 0;
    std::ranges::generate(groups.userGroups, [&g] { return LargeGroup(g++); });
}

// Button b of template t: every button function of the catalogue in turn,
// with channels, second channels and labels on some.
PanelButton LargeButton(int t, int b, int channelCount) {
    static const int16_t kTypes[] = {16383, 40,   150,  800,  810,  0,    1000, 1002,
                                     1010,  1012, 1100, 1102, 1105, 1107, 1110, 1112};
    PanelButton button = PanelButton::Cleared();
    button.type = kTypes[(t + b) % 16];
    if (button.type == kNoChannel) {
        return button;
    }
    button.channel = static_cast<int16_t>((t * 32 + b) % channelCount);
    if ((b % 3) == 0) {
        button.channel2 = static_cast<int16_t>((t + b * 5) % channelCount);
    }
    if ((b % 4) == 0) {
        button.captionOption = 1;
        button.label = Numbered("BTN %d", b + 1);
    }
    return button;
}

void FillLargeTemplates(PanelStore& store, int channelCount) {
    TemplateTable& templates = store.templates;
    templates.templateCount = 500;
    NumberRecords(templates, templates.templateCount, "TEMPLATE %03d", templates.templateNames,
                  templates.templateIndex, templates.templatePosition);
    for (int t = 0; t < templates.templateCount; ++t) {
        ButtonTemplate& tpl = templates.buttonTemplates[static_cast<size_t>(t)];
        tpl.number = static_cast<int16_t>(t + 1);
        tpl.buttonCount = kTemplateButtons;
        tpl.buttons.clear();
        for (int b = 0; b < kTemplateButtons; ++b) {
            tpl.buttons.push_back(LargeButton(t, b, channelCount));
        }
    }
}

void FillLargePanelData(PanelStore& store, int channelCount) {
    FillLargeLists(store, channelCount);
    FillLargeGroups(store);
    FillLargeTemplates(store, channelCount);
}

} // namespace

DemoResult MakeDemo(std::string_view name) {
    DemoResult result;
    result.password = std::string(kDemoPassword);
    if (name == "demo") {
        const std::string_view text = BuiltInDemoDocument();
        if (text.empty()) {
            result.status = Status::Fail(ErrorCode::FileNotFound, "the bundled demo is empty");
            return result;
        }
        result.store.ResetToDefaults();
        JsonReadResult read = ReadJsonDocument(text, result.store);
        if (!read.status) {
            result.status = Status::Fail(read.status.failure().code,
                                         "bundled demo: " + read.status.failure().detail);
            return result;
        }
        if (read.password) {
            result.password = *read.password;
        }
        return result;
    }
    if (name == "large" || name == "max") {
        const bool max = name == "max";
        const int channels = max ? 16383 : 1024;
        for (SubType s : kAllSubTypes) {
            SetChannelNames(result.store.alpha(s),
                            max ? MaxAlphaNames(s) : LargeAlphaNames(s, channels));
        }
        FillLargePanelData(result.store, channels);
        return result;
    }
    result.status =
        Status::Fail(ErrorCode::InvalidProcedureCall,
                     "unknown demo \"" + std::string(name) + "\" (expected demo, large or max)");
    return result;
}

} // namespace lumeth::sim
