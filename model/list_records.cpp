#include "model/list_records.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "model/limits.h"

namespace lumeth {

namespace {

bool KnownMode(int16_t mode) {
    return mode == kUserGroupListType || SubTypeFromListCode(mode).has_value();
}

bool IsRecord(const PanelStore& store, int16_t mode, int index) {
    if (mode == kUserGroupListType)
        return index >= 0 && index < store.groups.userGroupCount &&
               static_cast<size_t>(index) < store.groups.userGroupNames.size() &&
               static_cast<size_t>(index) < store.groups.userGroups.size();
    const auto subType = SubTypeFromListCode(mode);
    return subType && index >= 0 && index < store.listCount(*subType) &&
           static_cast<size_t>(index) < store.lists(*subType).size();
}

// Record `index`'s name; only for a record IsRecord accepts.
template <typename Store> auto& NameOf(Store& store, int16_t mode, int index) {
    const auto at = static_cast<size_t>(index);
    if (mode == kUserGroupListType)
        return store.groups.userGroupNames[at];
    return store.lists(*SubTypeFromListCode(mode))[at].name;
}

// Copy record `from`'s contents onto record `to`; both are records.
void CopyContents(PanelStore& store, int16_t mode, int from, int to) {
    const auto source = static_cast<size_t>(from);
    const auto target = static_cast<size_t>(to);
    if (mode == kUserGroupListType) {
        store.groups.userGroups[target] = UserGroup(store.groups.userGroups[source]);
    } else {
        auto& lists = store.lists(*SubTypeFromListCode(mode));
        lists[target] = DisplayList(lists[source]);
    }
}

Status NoRecord(const char* what, int index) {
    return Status::Fail(ErrorCode::SubscriptOutOfRange,
                        std::string("no record ") + std::to_string(index) + " to copy " + what);
}

} // namespace

std::optional<int> RecordCount(const PanelStore& store, int16_t mode) {
    if (mode == kUserGroupListType)
        return store.groups.userGroupCount;
    if (const auto subType = SubTypeFromListCode(mode))
        return store.listCount(*subType);
    return std::nullopt;
}

std::optional<std::string> RecordName(const PanelStore& store, int16_t mode, int index) {
    if (!IsRecord(store, mode, index))
        return std::nullopt;
    return NameOf(store, mode, index);
}

std::optional<int> AppendRecord(PanelStore& store, int16_t mode, const std::string& name) {
    const std::optional<int> count = RecordCount(store, mode);
    if (!count || *count >= INT16_MAX)
        return std::nullopt;
    const int at = ValidCount(*count);
    if (mode == kUserGroupListType) {
        UserGroupTable& groups = store.groups;
        groups.Resize(at + 1);
        groups.userGroupNames[static_cast<size_t>(at)] = name;
        groups.userGroups[static_cast<size_t>(at)] = UserGroup{};
        groups.userGroupIndex[static_cast<size_t>(at)] = static_cast<int16_t>(at);
        groups.userGroupNumber[static_cast<size_t>(at)] = static_cast<int16_t>(at);
        groups.userGroupCount = static_cast<int16_t>(at + 1);
    } else {
        const SubType subType = *SubTypeFromListCode(mode);
        auto& lists = store.lists(subType);
        lists.resize(static_cast<size_t>(at) + 1);
        lists.back() = DisplayList{};
        lists.back().name = name;
        store.listCount(subType) = static_cast<int16_t>(at + 1);
    }
    return at;
}

std::optional<std::string> DuplicateName(const PanelStore& store, int16_t mode, int from, int to) {
    const std::optional<int> count = RecordCount(store, mode);
    if (!count)
        return std::nullopt;
    if (to < *count)
        return RecordName(store, mode, to);
    const std::optional<std::string> source = RecordName(store, mode, from);
    if (!source)
        return std::nullopt;
    const std::string name = TrimTrailingBlanks(*source);
    if (name.size() >= 14)
        return name;
    if (mode != ListTypeCode(SubType::Input) && mode != kUserGroupListType)
        return name + "(2)";
    int n = 1;
    for (int i = 0; i < *count; ++i) {
        if (RecordName(store, mode, i).value_or("").compare(0, name.size(), name) == 0)
            ++n;
    }
    return name + "(" + std::to_string(n) + ")";
}

Status DuplicateRecord(PanelStore& store, int16_t mode, int from, int to) {
    if (!KnownMode(mode))
        return Status::Fail(ErrorCode::SubscriptOutOfRange, "list type " + std::to_string(mode));
    if (!IsRecord(store, mode, from))
        return NoRecord("from", from);
    const std::optional<int> count = RecordCount(store, mode);
    if (to != *count && !IsRecord(store, mode, to))
        return NoRecord("onto", to);
    const std::string name = DuplicateName(store, mode, from, to).value_or("");
    if (to == *count) {
        const std::optional<int> added = AppendRecord(store, mode, name);
        if (!added)
            return Status::Fail(ErrorCode::SubscriptOutOfRange, "no room for another record");
        to = *added;
    }
    CopyContents(store, mode, from, to);
    NameOf(store, mode, to) = name;
    return Status::Ok();
}

int HeldEntries(const UserGroup& group) {
    return std::min({ValidCount(group.listCount), static_cast<int>(group.listTypes.size()),
                     static_cast<int>(group.listIndexes.size())});
}

std::vector<int16_t> GroupEntriesOfType(const UserGroup& group, int16_t listType) {
    std::vector<int16_t> positions;
    for (int k = 0; k < HeldEntries(group); ++k) {
        if (group.listTypes[static_cast<size_t>(k)] == listType)
            positions.push_back(group.listIndexes[static_cast<size_t>(k)]);
    }
    return positions;
}

Status ReplaceGroupEntries(UserGroup& group, int16_t listType,
                           const std::vector<int16_t>& positions) {
    std::vector<int16_t> indexes;
    std::vector<int16_t> types;
    size_t next = 0;
    size_t lastSlot = 0; // where the remaining positions go: after the last slot
    for (int k = 0; k < HeldEntries(group); ++k) {
        const int16_t type = group.listTypes[static_cast<size_t>(k)];
        if (type != listType) {
            indexes.push_back(group.listIndexes[static_cast<size_t>(k)]);
            types.push_back(type);
            continue;
        }
        if (next < positions.size()) {
            indexes.push_back(positions[next++]);
            types.push_back(listType);
        }
        lastSlot = indexes.size();
    }
    if (lastSlot == 0 && next == 0)
        lastSlot = indexes.size();
    const auto remaining = static_cast<std::ptrdiff_t>(positions.size() - next);
    indexes.insert(indexes.begin() + static_cast<std::ptrdiff_t>(lastSlot),
                   positions.begin() + static_cast<std::ptrdiff_t>(next), positions.end());
    types.insert(types.begin() + static_cast<std::ptrdiff_t>(lastSlot),
                 static_cast<size_t>(remaining), listType);
    if (indexes.size() > static_cast<size_t>(INT16_MAX))
        return Status::Fail(ErrorCode::SubscriptOutOfRange, "too many group entries");
    group.listCount = static_cast<int16_t>(indexes.size());
    if (indexes.empty()) {
        indexes.push_back(0);
        types.push_back(0);
    }
    group.listIndexes = std::move(indexes);
    group.listTypes = std::move(types);
    return Status::Ok();
}

} // namespace lumeth
