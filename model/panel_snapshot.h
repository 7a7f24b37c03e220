#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/panel_store.h"

namespace lumeth {

// The editable parts of the store (display lists, user groups, templates),
// without the channel names and the selection state: what Apply sends, a
// panel data file holds and an undo step restores.
struct PanelSnapshot {
    std::array<int16_t, 4> displayListCount{};
    std::array<std::vector<DisplayList>, 4> displayLists;
    int16_t userGroupCount = 0;
    std::vector<std::string> userGroupNames;
    std::vector<UserGroup> userGroups;
    std::vector<int16_t> userGroupIndex;
    std::vector<int16_t> userGroupNumber;
    int16_t templateCount = 0;
    std::vector<std::string> templateNames;
    std::vector<ButtonTemplate> buttonTemplates;
    std::vector<int16_t> templateIndex;
    std::vector<int16_t> templatePosition;

    bool operator==(const PanelSnapshot&) const = default;
};

PanelSnapshot TakeSnapshot(const PanelStore& store);
// Put the snapshot's parts back into `store`; the selection is brought back
// inside the restored counts.
void RestoreSnapshot(const PanelSnapshot& snapshot, PanelStore& store);

// The parts Apply sends, one bit each.
namespace part {
inline constexpr unsigned kInputLists = 1u << 0;
inline constexpr unsigned kOutputLists = 1u << 1;
inline constexpr unsigned kOptoLists = 1u << 2;
inline constexpr unsigned kRelayLists = 1u << 3;
inline constexpr unsigned kUserGroups = 1u << 4;
inline constexpr unsigned kTemplates = 1u << 5;
inline constexpr unsigned kAll = 0x3F;
} // namespace part
constexpr unsigned ListsPart(SubType s) {
    return 1u << static_cast<unsigned>(s);
}
// "Input display lists", "user groups", "button templates".
std::string PartName(unsigned onePart);
// The parts whose content differs between `a` and `b` (each a PanelStore or
// a PanelSnapshot).
template <typename A, typename B> unsigned ChangedParts(const A& a, const B& b) {
    unsigned changed = 0;
    for (SubType s : kAllSubTypes) {
        const auto i = static_cast<size_t>(s);
        if (a.displayListCount[i] != b.displayListCount[i] ||
            a.displayLists[i] != b.displayLists[i])
            changed |= ListsPart(s);
    }
    if (a.userGroupCount != b.userGroupCount || a.userGroupNames != b.userGroupNames ||
        a.userGroups != b.userGroups)
        changed |= part::kUserGroups;
    if (a.templateCount != b.templateCount || a.templateNames != b.templateNames ||
        a.buttonTemplates != b.buttonTemplates)
        changed |= part::kTemplates;
    return changed;
}

} // namespace lumeth
