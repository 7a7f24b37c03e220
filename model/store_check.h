#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/store_location.h"

namespace lumeth {

// One finding of CheckStore, located by the value it is about. A reader of
// a file format names the location in that format's terms.
struct CheckFinding {
    enum class Severity { Warning, Error };
    Severity severity = Severity::Warning;
    StoreLocation location;
    std::string message; // bytes (Windows-1252)
    // The other record the message ends with ("... is also the name of" it).
    std::optional<StoreLocation> other;
    // An error that sending must never pass over, whatever the operator
    // says: the messages cannot carry it, or the file it came from is damaged.
    bool blocksSending = false;
};

// Problems that Apply would pass on to the panels. Errors: a channel outside
// its sub type's channel names (only when `hasChannelNames`), a group entry
// past its sub type's list count or of no sub type; errors that block
// sending: more display lists of a sub type, channels in a list, entries in a
// group, groups or templates than a 14-bit count carries, more buttons in a
// template than a panel has. Warnings: a name over 16
// or a label over 8 characters (cut when sent), a list name used twice within
// a sub type, an empty display list or user group, a button whose function
// needs a channel that is not set.
std::vector<CheckFinding> CheckStore(const PanelStore& store, bool hasChannelNames);

bool HasErrors(const std::vector<CheckFinding>& findings);
bool BlocksSending(const std::vector<CheckFinding>& findings);

// The error of a count field read as negative from a panel data file.
CheckFinding NegativeCountFinding(const StoreLocation& at, const char* count, int value);
// The error of `bytes` bytes after the last section of a panel data file.
CheckFinding TrailingBytesFinding(size_t bytes);

} // namespace lumeth
