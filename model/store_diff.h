#pragma once

#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// How `after` differs from `before`, one line per change, by name: per sub
// type the display lists added, removed or renamed and the channels added,
// removed or moved; per user group the lists added or removed; per template
// its name, number, its growth to more buttons (one line: template 01
// "Host": grown from 1 to 32 buttons) and each changed button. Records are
// matched by position, as user groups refer to display lists by position.
// Names and labels are compared as they would be sent: cut to their width,
// trailing blanks dropped. Channel names come from `after`'s alpha tables, else `before`'s.
// Text is bytes (Windows-1252). An empty result means no difference.
std::vector<std::string> DiffStores(const PanelStore& before, const PanelStore& after);

// DiffStores' lines for upload part `part` alone.
std::vector<std::string> DiffPart(const PanelStore& before, const PanelStore& after, Part part);

// The upload parts in which DiffStores finds a change.
PartSet DifferingParts(const PanelStore& before, const PanelStore& after);

// The report's text for no difference.
inline constexpr const char* kNoChangesLine = "No changes.";

} // namespace lumeth
