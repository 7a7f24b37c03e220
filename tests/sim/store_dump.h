#pragma once

#include <string>
#include <string_view>

#include "model/panel_store.h"

namespace lumeth::testing {

// Text that is fixed-width on the wire comes back blank-padded; compare it
// without the padding.
inline std::string Trimmed(std::string_view text) {
    size_t end = text.size();
    while (end > 0 && text[end - 1] == ' ') {
        --end;
    }
    return std::string(text.substr(0, end));
}

// A readable, canonical listing of the valid entries of a store (counts, names,
// members, buttons and the alpha tables in channel order), so two stores can be
// compared with a useful diff in the failure message.
inline std::string DumpStore(const PanelStore& store, bool withAlphas = true) {
    std::string out;
    auto line = [&out](const std::string& text) { out += text + "\n"; };
    if (withAlphas) {
        for (SubType s : kAllSubTypes) {
            const AlphaTable& table = store.alpha(s);
            line(std::string("alphas ") + SubTypeName(s) + " " + std::to_string(table.count));
            for (size_t i = 0; i < table.channelNames.size() && i < size_t(table.count); ++i) {
                std::string text = "  " + std::to_string(i) + " [";
                text += Trimmed(table.channelNames[i]);
                line(text + "]");
            }
        }
    }
    for (SubType s : kAllSubTypes) {
        line(std::string("lists ") + SubTypeName(s) + " " + std::to_string(store.listCount(s)));
        for (int l = 0; l < store.listCount(s); ++l) {
            const DisplayList& list = store.lists(s)[size_t(l)];
            std::string text = "  [";
            text += Trimmed(list.name);
            text += "]";
            for (int k = 0; k < list.channelCount; ++k) {
                text += ' ';
                text += std::to_string(list.channels[size_t(k)]);
            }
            line(text);
        }
    }
    line("groups " + std::to_string(store.userGroupCount));
    for (int g = 0; g < store.userGroupCount; ++g) {
        const UserGroup& group = store.userGroups[size_t(g)];
        std::string text = "  [";
        text += Trimmed(store.userGroupNames[size_t(g)]);
        text += "]";
        for (int k = 0; k < group.listCount; ++k) {
            text += ' ';
            text += std::to_string(group.listIndexes[size_t(k)]);
            text += '/';
            text += std::to_string(group.listTypes[size_t(k)]);
        }
        line(text);
    }
    line("templates " + std::to_string(store.templateCount));
    for (int t = 0; t < store.templateCount; ++t) {
        const ButtonTemplate& tpl = store.buttonTemplates[size_t(t)];
        std::string text = "  [";
        text += Trimmed(store.templateNames[size_t(t)]);
        line(text + "] #" + std::to_string(tpl.number) + " buttons " +
             std::to_string(tpl.buttonCount));
        for (int b = 0; b < tpl.buttonCount; ++b) {
            const PanelButton& button = tpl.buttons[size_t(b)];
            line("    " + std::to_string(button.type) + " " + std::to_string(button.captionOption) +
                 " " + std::to_string(button.channel) + " " + std::to_string(button.channel2) +
                 " [" + std::string(Trimmed(button.label)) + "]");
        }
    }
    return out;
}

} // namespace lumeth::testing
