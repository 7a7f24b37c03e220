#pragma once

#include <cstdint>
#include <optional>

#include "model/panel_store.h"

namespace lumeth::cli {

// What the listing needs to know about a button function: its long name and
// which channel table each of its two channel fields refers to.
struct ButtonFunction {
    int16_t code;
    const char* longName;
    std::optional<SubType> channelTable;
    std::optional<SubType> channel2Table;
};

// The function with `code`, or nullptr for a code the panels do not know.
const ButtonFunction* FindButtonFunction(int16_t code);

} // namespace lumeth::cli
