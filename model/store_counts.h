#pragma once

#include <array>
#include <string>

#include "model/panel_store.h"
#include "model/sub_type.h"

namespace lumeth {

// How many records the store holds, as the main window reports them.
struct StoreCounts {
    std::array<int, kSubTypeCount> channels{}; // named channels of each sub type
    std::array<int, kSubTypeCount> lists{};    // display lists of each sub type
    int groups = 0;
    int templates = 0;

    bool operator==(const StoreCounts&) const = default;
};

StoreCounts CountRecords(const PanelStore& store);

// One line for the sub type shown and the rest: "Input: 48 channels, 10
// lists; 3 user groups; 5 templates".
std::string CountsLine(const StoreCounts& counts, SubType shown);
// Every sub type, one line each, then the groups and templates.
std::string CountsDetail(const StoreCounts& counts);

} // namespace lumeth
