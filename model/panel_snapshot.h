#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/panel_store.h"

namespace lumeth {

// The display lists of one sub type, as a snapshot keeps them.
struct ListsData {
    int16_t count = 0;
    std::vector<DisplayList> lists;
    bool operator==(const ListsData&) const = default;
};

struct GroupsData {
    int16_t count = 0;
    std::vector<std::string> names;
    std::vector<UserGroup> groups;
    std::vector<int16_t> index;
    std::vector<int16_t> number;
    bool operator==(const GroupsData&) const = default;
};

struct TemplatesData {
    int16_t count = 0;
    std::vector<std::string> names;
    std::vector<ButtonTemplate> templates;
    std::vector<int16_t> index;
    std::vector<int16_t> position;
    bool operator==(const TemplatesData&) const = default;
};

// The editable parts of the store (display lists, user groups, templates),
// without the channel names and the selection state: what Apply sends, a
// panel data file holds and an undo step restores. The parts are immutable
// and shared between snapshots, so a history of steps that each change one
// part holds one copy of everything plus the parts changed.
struct PanelSnapshot {
    std::array<std::shared_ptr<const ListsData>, 4> lists;
    std::shared_ptr<const GroupsData> groups;
    std::shared_ptr<const TemplatesData> templates;

    bool operator==(const PanelSnapshot& other) const;
};

// The store's editable parts; a part equal to the one in `shareWith` is
// shared with it instead of copied.
PanelSnapshot TakeSnapshot(const PanelStore& store, const PanelSnapshot* shareWith = nullptr);
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
// The parts whose content differs between `a` and `b`.
unsigned ChangedParts(const PanelStore& a, const PanelStore& b);
unsigned ChangedParts(const PanelSnapshot& a, const PanelSnapshot& b);

} // namespace lumeth
