#include "model/record_moves.h"

#include <algorithm>
#include <string>

#include "model/limits.h"
#include "model/list_records.h"

namespace lumeth {

namespace {

// Where the records of a table go: record `from` moves to `to`, or, for a
// delete, goes (-1) while the records after it close up.
struct Shift {
    int from = 0;
    int to = 0;
    bool remove = false;

    int operator()(int old) const {
        if (remove)
            return old == from ? -1 : old > from ? old - 1 : old;
        if (old == from)
            return to;
        if (from < to && old > from && old <= to)
            return old - 1;
        if (to < from && old >= to && old < from)
            return old + 1;
        return old;
    }
};

template <typename T> void Rearrange(std::vector<T>& v, const Shift& shift) {
    const auto at = [&v](int i) { return v.begin() + i; };
    if (shift.remove)
        v.erase(at(shift.from));
    else if (shift.from < shift.to)
        std::rotate(at(shift.from), at(shift.from + 1), at(shift.to + 1));
    else
        std::rotate(at(shift.to), at(shift.from), at(shift.from + 1));
}

// Index or number fields that gave their record's own position give its new
// one; others travel with their record unchanged.
void FollowOwnPositions(std::vector<int16_t>& field, int count, const Shift& shift) {
    for (int i = 0; i < count; ++i) {
        int16_t& value = field[static_cast<size_t>(i)];
        if (value == i && shift(i) >= 0)
            value = static_cast<int16_t>(shift(i));
    }
    Rearrange(field, shift);
}

// A selection of a record of a table of `count` records follows it; a
// selected record that was deleted leaves the selection on its neighbour.
void FollowSelection(int16_t& selected, int count, const Shift& shift) {
    if (selected < 0 || selected >= count)
        return;
    const int moved = shift(selected);
    const int left = shift.remove ? count - 1 : count;
    selected = static_cast<int16_t>(moved >= 0 ? moved : std::min<int>(selected, left - 1));
}

Status CheckShift(const char* what, int count, int arrays, const Shift& shift) {
    const auto fail = [what](const std::string& why) {
        return Status::Fail(ErrorCode::SubscriptOutOfRange, std::string(what) + ": " + why);
    };
    if (arrays < count)
        return fail("the store holds fewer records than its count says");
    if (shift.from < 0 || shift.from >= count)
        return fail("no record at position " + std::to_string(shift.from));
    if (shift.remove && count <= 1)
        return fail("the last one cannot be deleted");
    if (!shift.remove && (shift.to < 0 || shift.to >= count))
        return fail("no position " + std::to_string(shift.to) + " to move to");
    return Status::Ok();
}

// The entries of every group that point at lists of `type` follow them.
void FollowInGroups(UserGroupTable& groups, int16_t type, int listCount, const Shift& shift,
                    RecordEdit& edit) {
    const int count =
        std::min(ValidCount(groups.userGroupCount), static_cast<int>(groups.userGroups.size()));
    for (int g = 0; g < count; ++g) {
        UserGroup& group = groups.userGroups[static_cast<size_t>(g)];
        int removed = 0;
        bool changed = false;
        for (int k = HeldEntries(group) - 1; k >= 0; --k) {
            const auto at = static_cast<size_t>(k);
            const int index = group.listIndexes[at];
            if (group.listTypes[at] != type || index < 0 || index >= listCount)
                continue; // another sub type's, or pointing at no list already
            const int now = shift(index);
            if (now == index)
                continue;
            changed = true;
            if (now >= 0) {
                group.listIndexes[at] = static_cast<int16_t>(now);
                continue;
            }
            group.listIndexes.erase(group.listIndexes.begin() + k);
            group.listTypes.erase(group.listTypes.begin() + k);
            ++removed;
        }
        if (removed > 0) {
            group.listCount = static_cast<int16_t>(group.listCount - removed);
            if (group.listIndexes.empty()) {
                group.listIndexes.push_back(0);
                group.listTypes.push_back(0);
            }
            edit.entriesRemoved += removed;
        }
        if (changed)
            edit.groupsChanged.push_back(g);
    }
}

RecordEdit ShiftDisplayList(PanelStore& store, SubType s, const Shift& shift) {
    RecordEdit edit;
    DisplayListTable& table = store.listTable(s);
    const int count = table.displayListCount;
    edit.status =
        CheckShift("display list", count, static_cast<int>(table.displayLists.size()), shift);
    if (!edit)
        return edit;
    const int16_t type = ListTypeCode(s);
    FollowInGroups(store.groups, type, count, shift, edit);
    Rearrange(table.displayLists, shift);
    if (shift.remove)
        table.displayListCount = static_cast<int16_t>(count - 1);
    if (store.editorListType == type || store.currentListType == type)
        FollowSelection(store.currentList, count, shift);
    return edit;
}

// A table of named records with an index and a number field each (user
// groups, templates): the four arrays are rearranged together.
template <typename Record>
RecordEdit ShiftNamedRecords(const char* what, int16_t& count, std::vector<std::string>& names,
                             std::vector<Record>& records, std::vector<int16_t>& index,
                             std::vector<int16_t>& number, const Shift& shift) {
    RecordEdit edit;
    const int before = count;
    const auto arrays =
        static_cast<int>(std::min({names.size(), records.size(), index.size(), number.size()}));
    edit.status = CheckShift(what, before, arrays, shift);
    if (!edit)
        return edit;
    Rearrange(names, shift);
    Rearrange(records, shift);
    FollowOwnPositions(index, before, shift);
    FollowOwnPositions(number, before, shift);
    if (shift.remove)
        count = static_cast<int16_t>(before - 1);
    return edit;
}

RecordEdit ShiftUserGroup(PanelStore& store, const Shift& shift) {
    UserGroupTable& groups = store.groups;
    const int count = groups.userGroupCount;
    RecordEdit edit =
        ShiftNamedRecords("user group", groups.userGroupCount, groups.userGroupNames,
                          groups.userGroups, groups.userGroupIndex, groups.userGroupNumber, shift);
    if (edit)
        FollowSelection(store.currentUserGroup, count, shift);
    return edit;
}

RecordEdit ShiftTemplate(PanelStore& store, const Shift& shift) {
    TemplateTable& templates = store.templates;
    return ShiftNamedRecords("template", templates.templateCount, templates.templateNames,
                             templates.buttonTemplates, templates.templateIndex,
                             templates.templatePosition, shift);
}

} // namespace

RecordEdit DeleteDisplayList(PanelStore& store, SubType s, int position) {
    return ShiftDisplayList(store, s, {position, position, true});
}

RecordEdit MoveDisplayList(PanelStore& store, SubType s, int from, int to) {
    return ShiftDisplayList(store, s, {from, to, false});
}

RecordEdit DeleteUserGroup(PanelStore& store, int group) {
    return ShiftUserGroup(store, {group, group, true});
}

RecordEdit MoveUserGroup(PanelStore& store, int from, int to) {
    return ShiftUserGroup(store, {from, to, false});
}

RecordEdit DeleteTemplate(PanelStore& store, int position) {
    return ShiftTemplate(store, {position, position, true});
}

RecordEdit MoveTemplate(PanelStore& store, int from, int to) {
    return ShiftTemplate(store, {from, to, false});
}

} // namespace lumeth
