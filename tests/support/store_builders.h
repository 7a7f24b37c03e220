#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/panel_store.h"

// Store records for tests, keeping the at-least-one-element rule.
namespace lumeth::test {

inline DisplayList List(std::string name, std::vector<int16_t> channels) {
    DisplayList list;
    list.name = std::move(name);
    list.channelCount = static_cast<int16_t>(channels.size());
    if (channels.empty())
        channels.push_back(0);
    list.channels = std::move(channels);
    return list;
}

// Entries as (display list position, list type).
inline UserGroup Group(const std::vector<std::pair<int16_t, int16_t>>& entries) {
    UserGroup group;
    group.listCount = static_cast<int16_t>(entries.size());
    group.listIndexes.clear();
    group.listTypes.clear();
    for (auto [position, type] : entries) {
        group.listIndexes.push_back(position);
        group.listTypes.push_back(type);
    }
    if (entries.empty()) {
        group.listIndexes.push_back(0);
        group.listTypes.push_back(0);
    }
    return group;
}

// The four parts of a store as one value: stores filled along different
// routes compare equal when every table does, down to the spare entries.
using StoreParts =
    std::tuple<std::array<AlphaTable, kSubTypeCount>, std::array<DisplayListTable, kSubTypeCount>,
               UserGroupTable, TemplateTable>;
inline StoreParts PartsOf(const PanelStore& store) {
    return {store.alphas, store.displayLists, store.groups, store.templates};
}

} // namespace lumeth::test
