#pragma once

#include <string>
#include <string_view>

namespace lumeth {

// Item keys of the three main-window views. Group keys count from 1, list keys
// from 0, channel keys from 1; the click handlers depend on that.
std::string GroupKey(int userGroupIndex); // "Gr.001" for index 0
std::string ListKey(int position);        // "Lst.000" for position 0
std::string ChannelKey(int channel);      // "Ch.0001" for channel 0

// The leading decimal number of a key's last three characters ("Gr.012" gives
// 12). A number too wide for its digits makes the key longer, and only the
// last three digits count.
int KeyNumber(std::string_view key);
// The leading decimal number of a whole text ("21" gives 21; no number gives 0).
int TextNumber(std::string_view text);

} // namespace lumeth
