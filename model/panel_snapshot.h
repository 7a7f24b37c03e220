#pragma once

#include <array>
#include <memory>

#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// The editable parts of the store (display lists, user groups, templates),
// without the channel names and the selection state: what Apply sends, a
// panel data file holds and an undo step restores. The parts are immutable
// and shared between snapshots, so a history of steps that each change one
// part holds one copy of everything plus the parts changed.
struct PanelSnapshot {
    std::array<std::shared_ptr<const DisplayListTable>, kSubTypeCount> lists;
    std::shared_ptr<const UserGroupTable> groups;
    std::shared_ptr<const TemplateTable> templates;

    bool operator==(const PanelSnapshot& other) const;
};

// The store's editable parts; a part equal to the one in `shareWith` is
// shared with it instead of copied.
PanelSnapshot TakeSnapshot(const PanelStore& store, const PanelSnapshot* shareWith = nullptr);
// Put the snapshot's parts back into `store`; the selection is brought back
// inside the restored counts.
void RestoreSnapshot(const PanelSnapshot& snapshot, PanelStore& store);
// Put only the parts of `parts` (upload parts) back into `store`.
void RestoreParts(const PanelSnapshot& snapshot, PartSet parts, PanelStore& store);
// Make the parts of `parts` (upload parts) of `to` those of `from`.
void CopyParts(const PanelSnapshot& from, PartSet parts, PanelSnapshot& to);

// The upload parts that differ between `a` and `b` as the server module would
// get them (DifferAsSent of model/same_as_sent.h).
PartSet ChangedParts(const PanelStore& a, const PanelStore& b);
// The same for snapshots.
PartSet DifferAsSent(const PanelSnapshot& a, const PanelSnapshot& b);
// The upload parts whose content differs at all (names with their blanks,
// entries past the counts): what an undo step must keep apart.
PartSet ChangedParts(const PanelSnapshot& a, const PanelSnapshot& b);

} // namespace lumeth
