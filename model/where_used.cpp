#include "model/where_used.h"

#include <algorithm>

#include "model/button_catalogue.h"
#include "model/limits.h"
#include "model/list_records.h"
#include "model/record_names.h"

namespace lumeth {

namespace {

bool ListHolds(const DisplayList& list, int channel) {
    const int held =
        std::min(ValidCount(list.channelCount), static_cast<int>(list.channels.size()));
    return std::find(list.channels.begin(), list.channels.begin() + held, channel) !=
           list.channels.begin() + held;
}

void TemplateUses(const PanelStore& store, SubType s, int channel,
                  std::vector<StoreLocation>& uses) {
    const TemplateTable& templates = store.templates;
    const int count = std::min(ValidCount(templates.templateCount),
                               static_cast<int>(templates.buttonTemplates.size()));
    for (int t = 0; t < count; ++t) {
        const ButtonTemplate& tmpl = templates.buttonTemplates[static_cast<size_t>(t)];
        const int buttons =
            std::min(ValidCount(tmpl.buttonCount), static_cast<int>(tmpl.buttons.size()));
        for (int b = 0; b < buttons; ++b) {
            const PanelButton& button = tmpl.buttons[static_cast<size_t>(b)];
            const ButtonFunction& function = ButtonFunctionOf(button.type);
            if (function.channelSubType == s && button.channel == channel)
                uses.push_back({Part::Templates, t, StoreField::ButtonChannel, b});
            if (function.channel2SubType == s && button.channel2 == channel)
                uses.push_back({Part::Templates, t, StoreField::ButtonChannel2, b});
        }
    }
}

} // namespace

std::vector<StoreLocation> ChannelUses(const PanelStore& store, SubType s, int channel) {
    std::vector<StoreLocation> uses;
    const std::vector<DisplayList>& lists = store.lists(s);
    const int count = std::min(ValidCount(store.listCount(s)), static_cast<int>(lists.size()));
    for (int p = 0; p < count; ++p)
        if (ListHolds(lists[static_cast<size_t>(p)], channel))
            uses.push_back({ListsPart(s), p});
    // "No channel" is a key without one, not a use of channel 16383.
    if (channel != kNoChannel)
        TemplateUses(store, s, channel, uses);
    return uses;
}

std::vector<int> GroupsUsingList(const PanelStore& store, SubType s, int position) {
    std::vector<int> groups;
    const UserGroupTable& table = store.groups;
    const int count =
        std::min(ValidCount(table.userGroupCount), static_cast<int>(table.userGroups.size()));
    const int16_t type = ListTypeCode(s);
    for (int g = 0; g < count; ++g) {
        const UserGroup& group = table.userGroups[static_cast<size_t>(g)];
        for (int k = 0; k < HeldEntries(group); ++k) {
            if (group.listTypes[static_cast<size_t>(k)] == type &&
                group.listIndexes[static_cast<size_t>(k)] == position) {
                groups.push_back(g);
                break;
            }
        }
    }
    return groups;
}

std::vector<StoreLocation> ListUses(const PanelStore& store, SubType s, int position) {
    std::vector<StoreLocation> uses;
    for (const int g : GroupsUsingList(store, s, position))
        uses.push_back({Part::UserGroups, g});
    return uses;
}

std::string UseName(const PanelStore& store, const StoreLocation& use) {
    std::string text = LocationName(store, use);
    if (use.field == StoreField::ButtonChannel2)
        text += " (second channel)";
    return text;
}

std::vector<std::string> WhereUsedLines(const PanelStore& store, const std::string& subject,
                                        const std::vector<StoreLocation>& uses) {
    if (uses.empty())
        return {subject + " is not used."};
    std::vector<std::string> lines;
    lines.reserve(uses.size() + 1);
    lines.push_back(subject + " is used in " + std::to_string(uses.size()) +
                    (uses.size() == 1 ? " place:" : " places:"));
    for (const StoreLocation& use : uses)
        lines.push_back("  " + UseName(store, use));
    return lines;
}

} // namespace lumeth
