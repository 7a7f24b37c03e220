#pragma once

#include <array>
#include <string>
#include <string_view>

#include "model/failure.h"
#include "model/parts.h"

namespace lumeth::cli {

// The words the command line names the upload parts by, in Apply's order.
struct PartWord {
    std::string_view word;
    Part part;
};
inline constexpr std::array<PartWord, 6> kPartWords{{
    {"input", Part::InputLists},
    {"output", Part::OutputLists},
    {"opto", Part::OptoLists},
    {"relay", Part::RelayLists},
    {"groups", Part::UserGroups},
    {"templates", Part::Templates},
}};

// "input, output, opto, relay, groups, templates"
std::string PartWordList();

// A comma list of those words (e.g. "relay,groups") as a set; fails naming
// the first word that is none of them, and on an empty list. `option` names
// the option in the message.
Status ParsePartWords(std::string_view text, std::string_view option, PartSet& parts);

} // namespace lumeth::cli
