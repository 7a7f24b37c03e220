#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/panel_store.h"

namespace lumeth {

// Upper-case the ASCII letters and the Windows-1252 letters that have an
// upper-case form in the same code page.
std::string UpperCase(std::string_view name);

// Sort names and their channel numbers together, ascending by upper-cased
// name, giving exactly the order of the server download's exchange sort: for
// each position i, every later position j whose name is smaller is exchanged
// with i. Equal names are never exchanged, but the exchanges of smaller names
// reorder them, so the result is not a stable sort.
void ExchangeSortAlphas(std::vector<std::string>& names, std::vector<int16_t>& numbers);

// Fill `table` from names in channel order (channel i = channelNames[i]):
// sorted names, numbers and the inverse index.
void BuildAlphaTable(AlphaTable& table, std::vector<std::string> channelNames);

} // namespace lumeth
