#pragma once

#include <string>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

inline constexpr const char* kCrosspointMapFileName = "CrosspointMap.csv";

// The crosspoint map: every member channel of every Input display list, then
// of every Output display list, as CSV (RFC 4180, UTF-8, CR LF line ends, a
// field quoted only when it holds a comma, a quote or a line break). Header:
//   sub_type,list,list_name,position,channel,key,channel_name
// `list` is the list's 0-based position, `position` the member's 1-based place
// in the list, `key` the channel's view key ("Ch.0001" for channel 0),
// `channel_name` its alpha ("*Invalid*" at or above the bound the views use),
// empty when the store holds no channel names at all (a panel data file).
// Names lose their trailing blanks. Fails when a count runs past its array.
Status EncodeCrosspointMap(const PanelStore& store, std::string& csv);

// Encode and replace the file at `path` atomically.
Status SaveCrosspointMap(const std::string& path, const PanelStore& store);

} // namespace lumeth
