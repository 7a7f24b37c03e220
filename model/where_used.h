#pragma once

#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/store_location.h"

namespace lumeth {

// What refers to a channel or a display list. User groups refer to display
// lists by position; display lists and the keys of button templates refer to
// channels by number. A use is a location in the store, named for people the
// way every report names records.

// The display lists that hold `channel` of sub type `s` (one use per list,
// Record field) and the template keys that use it as their channel
// (ButtonChannel) or second channel (ButtonChannel2), in store order. A key's
// channel fields count only where its function draws from `s`.
std::vector<StoreLocation> ChannelUses(const PanelStore& store, SubType s, int channel);
// The user groups holding display list `position` of sub type `s`, one use
// per group (Record field), in group order.
std::vector<StoreLocation> ListUses(const PanelStore& store, SubType s, int position);
// The group positions of ListUses.
std::vector<int> GroupsUsingList(const PanelStore& store, SubType s, int position);

// A use as people read it: "Input Lst.003 \"Mics\"", "Gr.001 \"Studio A\"",
// "template 01 \"Host\" Btn 13", with " (second channel)" for a key's second
// channel.
std::string UseName(const PanelStore& store, const StoreLocation& use);

// The where-used report of `subject` (a record name such as ChannelRecordName
// gives): "<subject> is used in N places:" and one indented line per use, or
// "<subject> is not used." alone.
std::vector<std::string> WhereUsedLines(const PanelStore& store, const std::string& subject,
                                        const std::vector<StoreLocation>& uses);

} // namespace lumeth
