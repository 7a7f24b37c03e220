#pragma once

#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// Deleting and reordering whole display lists, user groups and templates,
// with what refers to them kept right: user groups hold display lists by
// position, so entries that pointed at a deleted list go and entries pointing
// at lists that moved follow them. A group's or template's index and number
// fields that gave its own position follow it too (the main window keys
// groups by them), as do the selections the views keep (CurrentList,
// CurrentUserGroup). Every array keeps at least one element and its count.
//
// Each operation refuses, changing nothing, a position that is not a record
// (or an array shorter than its count) and the delete of the last record of
// its kind: the views and the editors always have one to show.

struct RecordEdit {
    Status status;
    // The user groups whose entries were removed or renumbered, in order.
    std::vector<int> groupsChanged;
    // Group entries removed because their list was deleted.
    int entriesRemoved = 0;

    explicit operator bool() const { return static_cast<bool>(status); }
};

RecordEdit DeleteDisplayList(PanelStore& store, SubType s, int position);
// Record `from` takes position `to`; the lists between close up.
RecordEdit MoveDisplayList(PanelStore& store, SubType s, int from, int to);
RecordEdit DeleteUserGroup(PanelStore& store, int group);
RecordEdit MoveUserGroup(PanelStore& store, int from, int to);
RecordEdit DeleteTemplate(PanelStore& store, int position);
RecordEdit MoveTemplate(PanelStore& store, int from, int to);

} // namespace lumeth
