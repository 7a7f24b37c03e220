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
// "Host": grown from 1 to 32 buttons; or cut to fewer) and each changed
// button. Records are matched by position, as user groups refer to display
// lists by position. Only what an upload sends is compared, as SameAsSent
// does: the counted entries, names and labels cut to their width with
// trailing blanks dropped; so the result is empty exactly when DifferAsSent is. Channel names come
// from `after`'s alpha tables, else `before`'s. Text is bytes (Windows-1252). An empty result means
// no difference.
std::vector<std::string> DiffStores(const PanelStore& before, const PanelStore& after);

// DiffStores' lines for upload part `part` alone.
std::vector<std::string> DiffPart(const PanelStore& before, const PanelStore& after, Part part);

// The upload parts in which DiffStores finds a change: DifferAsSent.
PartSet DifferingParts(const PanelStore& before, const PanelStore& after);

// The report's text for no difference.
inline constexpr const char* kNoChangesLine = "No changes.";

} // namespace lumeth
