#include "model/list_records.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace lumeth {

namespace {

size_t Position(int index) {
    if (index < 0)
        throw std::out_of_range("position " + std::to_string(index));
    return static_cast<size_t>(index);
}

} // namespace

SubType ListSubType(int16_t listTypeCode) {
    const auto subType = SubTypeFromListCode(listTypeCode);
    if (!subType)
        throw std::out_of_range("list type " + std::to_string(listTypeCode));
    return *subType;
}

int RecordCount(const PanelStore& store, int16_t mode) {
    if (mode == kUserGroupListType)
        return store.groups.userGroupCount;
    return store.listCount(ListSubType(mode));
}

const std::string& RecordName(const PanelStore& store, int16_t mode, int index) {
    if (mode == kUserGroupListType)
        return store.groups.userGroupNames.at(Position(index));
    return store.lists(ListSubType(mode)).at(Position(index)).name;
}

std::string& RecordName(PanelStore& store, int16_t mode, int index) {
    return const_cast<std::string&>(RecordName(std::as_const(store), mode, index));
}

int AppendRecord(PanelStore& store, int16_t mode, const std::string& name) {
    const int count = RecordCount(store, mode);
    if (count >= INT16_MAX)
        throw std::out_of_range("no room for another record");
    if (mode == kUserGroupListType) {
        store.groups.Resize(count + 1);
        const size_t at = static_cast<size_t>(count);
        store.groups.userGroupNames[at] = name;
        store.groups.userGroups[at] = UserGroup{};
        store.groups.userGroupIndex[at] = static_cast<int16_t>(count);
        store.groups.userGroupNumber[at] = static_cast<int16_t>(count);
        store.groups.userGroupCount = static_cast<int16_t>(count + 1);
    } else {
        const SubType subType = ListSubType(mode);
        auto& lists = store.lists(subType);
        lists.resize(static_cast<size_t>(count) + 1);
        lists.back() = DisplayList{};
        lists.back().name = name;
        store.listCount(subType) = static_cast<int16_t>(count + 1);
    }
    return count;
}

std::string DuplicateName(const PanelStore& store, int16_t mode, int from, int to) {
    const int count = RecordCount(store, mode);
    if (to < count)
        return RecordName(store, mode, to);
    std::string name = RecordName(store, mode, from);
    name.erase(name.find_last_not_of(' ') + 1);
    if (name.size() >= 14)
        return name;
    if (mode != 11 && mode != kUserGroupListType)
        return name + "(2)";
    int n = 1;
    for (int i = 0; i < count; ++i) {
        if (RecordName(store, mode, i).compare(0, name.size(), name) == 0)
            ++n;
    }
    return name + "(" + std::to_string(n) + ")";
}

void DuplicateRecord(PanelStore& store, int16_t mode, int from, int to) {
    const std::string name = DuplicateName(store, mode, from, to);
    if (to < 0 || to > RecordCount(store, mode))
        throw std::out_of_range("target " + std::to_string(to));
    if (to == RecordCount(store, mode))
        to = AppendRecord(store, mode, name);
    if (mode == kUserGroupListType) {
        const UserGroup source = store.groups.userGroups.at(Position(from));
        store.groups.userGroups.at(Position(to)) = source;
    } else {
        auto& lists = store.lists(ListSubType(mode));
        const DisplayList source = lists.at(Position(from));
        lists.at(Position(to)) = source;
    }
    RecordName(store, mode, to) = name;
}

std::vector<int16_t> GroupEntriesOfType(const UserGroup& group, int16_t listType) {
    std::vector<int16_t> positions;
    for (int k = 0; k < group.listCount; ++k) {
        if (group.listTypes.at(static_cast<size_t>(k)) == listType)
            positions.push_back(group.listIndexes.at(static_cast<size_t>(k)));
    }
    return positions;
}

void ReplaceGroupEntries(UserGroup& group, int16_t listType,
                         const std::vector<int16_t>& positions) {
    std::vector<int16_t> indexes;
    std::vector<int16_t> types;
    size_t next = 0;
    size_t lastSlot = 0; // where the remaining positions go: after the last slot
    for (int k = 0; k < group.listCount; ++k) {
        const int16_t type = group.listTypes.at(static_cast<size_t>(k));
        if (type != listType) {
            indexes.push_back(group.listIndexes.at(static_cast<size_t>(k)));
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
        throw std::out_of_range("too many group entries");
    group.listCount = static_cast<int16_t>(indexes.size());
    if (indexes.empty()) {
        indexes.push_back(0);
        types.push_back(0);
    }
    group.listIndexes = std::move(indexes);
    group.listTypes = std::move(types);
}

} // namespace lumeth
