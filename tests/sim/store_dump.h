#pragma once

#include <string>
#include <string_view>

#include "model/panel_store.h"

namespace lumeth::testing {

// Fixed-width wire text comes back blank-padded; compare it without the padding.
inline std::string Trimmed(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

// A readable, canonical listing of a store's valid entries, so two stores can
// be compared with a useful diff in the failure message.
inline std::string DumpStore(const PanelStore& store, bool withAlphas = true) {
    std::string out;
    auto bracket = [](std::string_view name) { return " [" + Trimmed(name) + "]"; };
    for (SubType s : kAllSubTypes) {
        const AlphaTable& table = store.alpha(s);
        if (withAlphas) {
            out += std::string("alphas ") + SubTypeName(s) + " " + std::to_string(table.count);
            for (size_t i = 0; i < table.channelNames.size() && i < size_t(table.count); ++i) {
                out += bracket(table.channelNames[i]);
            }
            out += '\n';
        }
        out += std::string("lists ") + SubTypeName(s) + " " + std::to_string(store.listCount(s));
        for (int l = 0; l < store.listCount(s); ++l) {
            const DisplayList& list = store.lists(s)[size_t(l)];
            out += "\n " + bracket(list.name);
            for (int k = 0; k < list.channelCount; ++k) {
                out += ' ' + std::to_string(list.channels[size_t(k)]);
            }
        }
        out += '\n';
    }
    out += "groups " + std::to_string(store.groups.userGroupCount);
    for (int g = 0; g < store.groups.userGroupCount; ++g) {
        const UserGroup& group = store.groups.userGroups[size_t(g)];
        out += "\n " + bracket(store.groups.userGroupNames[size_t(g)]);
        for (int k = 0; k < group.listCount; ++k) {
            out += ' ' + std::to_string(group.listIndexes[size_t(k)]) + '/' +
                   std::to_string(group.listTypes[size_t(k)]);
        }
    }
    out += "\ntemplates " + std::to_string(store.templates.templateCount);
    for (int t = 0; t < store.templates.templateCount; ++t) {
        const ButtonTemplate& tpl = store.templates.buttonTemplates[size_t(t)];
        out += "\n " + bracket(store.templates.templateNames[size_t(t)]) + " #" +
               std::to_string(tpl.number);
        for (int b = 0; b < tpl.buttonCount; ++b) {
            const PanelButton& button = tpl.buttons[size_t(b)];
            out += "\n    " + std::to_string(button.type) + " " +
                   std::to_string(button.captionOption) + " " + std::to_string(button.channel) +
                   " " + std::to_string(button.channel2) + bracket(button.label);
        }
    }
    return out + '\n';
}

} // namespace lumeth::testing
