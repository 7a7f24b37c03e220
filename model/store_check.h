#pragma once

#include <string>
#include <vector>

#include "model/panel_store.h"

namespace lumeth {

// One finding of CheckStore, located by its path in the JSON document
// ("display_lists.input[2].channels[5]").
struct CheckFinding {
    enum class Severity { Warning, Error };
    Severity severity = Severity::Warning;
    std::string path;
    std::string message; // bytes (Windows-1252)

    // "error: user_groups[0].lists[1]: ..." / "warning: ..."
    std::string Line() const;
};

// Problems that Apply would pass on to the panels. Errors: a channel outside
// its sub type's channel names (only when `hasChannelNames`), a group entry
// past its sub type's list count or of no sub type. Warnings: a name over 16
// or a label over 8 characters (cut when sent), a list name used twice within
// a sub type, an empty display list or user group, a button whose function
// needs a channel that is not set.
std::vector<CheckFinding> CheckStore(const PanelStore& store, bool hasChannelNames);

bool HasErrors(const std::vector<CheckFinding>& findings);

} // namespace lumeth
