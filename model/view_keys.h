#pragma once

#include <string>
#include <string_view>

#include "model/panel_store.h"

namespace lumeth {

// Item keys of the three main-window views. Group keys count from 1, list keys
// from 0, channel keys from 1; the click handlers depend on that.
std::string GroupKey(int userGroupIndex); // "Gr.001" for index 0
std::string ListKey(int position);        // "Lst.000" for position 0
std::string ChannelKey(int channel);      // "Ch.0001" for channel 0
// The list editor's key of a display list in a user group: the sub type's name
// and the list's position plus 1 as four digits ("Input.0001" for the first
// Input list), so that it reads apart from the main window's "Lst." keys.
std::string GroupEntryKey(SubType subType, int position);

// The leading decimal number of a key's last three characters ("Gr.012" gives
// 12). A number too wide for its digits makes the key longer, and only the
// last three digits count.
int KeyNumber(std::string_view key);
// The number the list editor's keys end in, minus 1: a channel number or a
// display list position. All digits after the last '.' count, so channels
// from 9999 up (five-digit keys) keep their numbers.
int KeyEntryNumber(std::string_view key);

} // namespace lumeth
