#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// The records the display list editor and the duplicate dialog work on,
// chosen by a mode: a ListTypeCode (11, 21, 31, 41) for that sub type's
// display lists, kUserGroupListType (83) for the user groups. Nothing here
// throws: a look-up of an unknown mode or of a position beyond the arrays
// finds nothing, a change that cannot be made returns its failure.

// The number of lists of the mode's sub type, or of user groups; nothing for
// an unknown mode.
std::optional<int> RecordCount(const PanelStore& store, int16_t mode);
// The name of record `index`, as stored (blank padding kept); nothing when
// there is no such record.
std::optional<std::string> RecordName(const PanelStore& store, int16_t mode, int index);

// Add a record named `name` with no entries at the end and return its
// position; nothing for an unknown mode or when the count is at its limit. A
// new group's index and number fields are its position.
std::optional<int> AppendRecord(PanelStore& store, int16_t mode, const std::string& name);

// The name a copy of record `from` onto record `to` ends with: the target's
// own name when it exists; for the new entry (to == count) the source's name
// without trailing blanks, with a suffix when it is shorter than 14
// characters: "(n)" for Input lists and user groups, n being 1 plus the number
// of records whose name begins with it; a plain "(2)" for Output, Opto and
// Relay lists. Nothing when the mode or a record is unknown.
std::optional<std::string> DuplicateName(const PanelStore& store, int16_t mode, int from, int to);
// Copy record `from` onto record `to` (to == count: onto a new record at the
// end), contents and all, and give the target DuplicateName's name. Fails,
// changing nothing, for an unknown mode or record.
Status DuplicateRecord(PanelStore& store, int16_t mode, int from, int to);

// The entries of a group its arrays hold: at most its count.
int HeldEntries(const UserGroup& group);
// The display list positions of a group's entries of one list type, in entry
// order. Entries the arrays do not hold are not there.
std::vector<int16_t> GroupEntriesOfType(const UserGroup& group, int16_t listType);
// Write a group's entries of one list type back: `positions` take the slots
// the entries of that type held, in order; further ones go after the last of
// those slots (at the end when there were none); slots left over are dropped.
// Entries of the other types keep their places and order, so a group that
// mixes sub types reads back in the same order when nothing was changed.
// Fails, changing nothing, when the group would hold more entries than a
// count can say.
Status ReplaceGroupEntries(UserGroup& group, int16_t listType,
                           const std::vector<int16_t>& positions);

} // namespace lumeth
