#pragma once

#include <optional>
#include <string>

#include "model/panel_store.h"

namespace lumeth {

// How channels of a sub type are named in the views, the list editor and the
// crosspoint export.

// Channels of a list of `subType` at or above this are shown as "*Invalid*":
// the Input table's count for Input and Opto lists, the Output table's count
// for Output and Relay lists (the panels number optos and relays alongside
// the inputs and outputs).
int ChannelBound(const PanelStore& store, SubType subType);

// The alpha of `channel` in `subType`'s table, or "*Invalid*" when the channel
// is not below the bound. Nothing for a negative channel or when the table is
// shorter than the bound says.
std::optional<std::string> ChannelAlpha(const PanelStore& store, SubType subType, int channel);

// Whether the store holds channel names of any sub type (a panel data file
// holds none).
bool HasChannelNames(const PanelStore& store);

// A view item's text: the alpha, a blank and the key in brackets,
// "MIC 1 (Ch.0001)".
std::string ItemText(std::string alpha, const std::string& key);

} // namespace lumeth
