#include "model/panel_snapshot.h"

#include <algorithm>

namespace lumeth {

namespace {

bool SameLists(const PanelStore& store, SubType s, const ListsData& data) {
    return store.listCount(s) == data.count && store.lists(s) == data.lists;
}

bool SameGroups(const PanelStore& store, const GroupsData& data) {
    return store.userGroupCount == data.count && store.userGroupNames == data.names &&
           store.userGroups == data.groups && store.userGroupIndex == data.index &&
           store.userGroupNumber == data.number;
}

bool SameTemplates(const PanelStore& store, const TemplatesData& data) {
    return store.templateCount == data.count && store.templateNames == data.names &&
           store.buttonTemplates == data.templates && store.templateIndex == data.index &&
           store.templatePosition == data.position;
}

// Shared pointers to equal content, or to the same content.
template <typename T>
bool SamePart(const std::shared_ptr<const T>& a, const std::shared_ptr<const T>& b) {
    return a == b || (a && b && *a == *b);
}

} // namespace

bool PanelSnapshot::operator==(const PanelSnapshot& other) const {
    return ChangedParts(*this, other) == 0;
}

PanelSnapshot TakeSnapshot(const PanelStore& store, const PanelSnapshot* shareWith) {
    PanelSnapshot snapshot;
    for (SubType s : kAllSubTypes) {
        const auto i = static_cast<size_t>(s);
        if (shareWith && shareWith->lists[i] && SameLists(store, s, *shareWith->lists[i]))
            snapshot.lists[i] = shareWith->lists[i];
        else
            snapshot.lists[i] =
                std::make_shared<const ListsData>(ListsData{store.listCount(s), store.lists(s)});
    }
    if (shareWith && shareWith->groups && SameGroups(store, *shareWith->groups))
        snapshot.groups = shareWith->groups;
    else
        snapshot.groups = std::make_shared<const GroupsData>(
            GroupsData{store.userGroupCount, store.userGroupNames, store.userGroups,
                       store.userGroupIndex, store.userGroupNumber});
    if (shareWith && shareWith->templates && SameTemplates(store, *shareWith->templates))
        snapshot.templates = shareWith->templates;
    else
        snapshot.templates = std::make_shared<const TemplatesData>(
            TemplatesData{store.templateCount, store.templateNames, store.buttonTemplates,
                          store.templateIndex, store.templatePosition});
    return snapshot;
}

void RestoreSnapshot(const PanelSnapshot& snapshot, PanelStore& store) {
    for (SubType s : kAllSubTypes) {
        if (const auto& data = snapshot.lists[static_cast<size_t>(s)]) {
            store.listCount(s) = data->count;
            store.lists(s) = data->lists;
        }
    }
    if (const auto& data = snapshot.groups) {
        store.userGroupCount = data->count;
        store.userGroupNames = data->names;
        store.userGroups = data->groups;
        store.userGroupIndex = data->index;
        store.userGroupNumber = data->number;
    }
    if (const auto& data = snapshot.templates) {
        store.templateCount = data->count;
        store.templateNames = data->names;
        store.buttonTemplates = data->templates;
        store.templateIndex = data->index;
        store.templatePosition = data->position;
    }
    auto inside = [](int16_t value, int count) {
        return static_cast<int16_t>(std::clamp<int>(value, 0, std::max(count - 1, 0)));
    };
    store.currentUserGroup = inside(store.currentUserGroup, store.userGroupCount);
    const auto subType = SubTypeFromListCode(store.currentListType);
    if (subType)
        store.currentList = inside(store.currentList, store.listCount(*subType));
}

std::string PartName(unsigned onePart) {
    for (SubType s : kAllSubTypes) {
        if (onePart == ListsPart(s))
            return std::string(SubTypeName(s)) + " display lists";
    }
    return onePart == part::kUserGroups ? "user groups" : "button templates";
}

unsigned ChangedParts(const PanelStore& a, const PanelStore& b) {
    unsigned changed = 0;
    for (SubType s : kAllSubTypes) {
        if (a.listCount(s) != b.listCount(s) || a.lists(s) != b.lists(s))
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

unsigned ChangedParts(const PanelSnapshot& a, const PanelSnapshot& b) {
    unsigned changed = 0;
    for (SubType s : kAllSubTypes) {
        const auto i = static_cast<size_t>(s);
        if (!SamePart(a.lists[i], b.lists[i]))
            changed |= ListsPart(s);
    }
    if (!SamePart(a.groups, b.groups))
        changed |= part::kUserGroups;
    if (!SamePart(a.templates, b.templates))
        changed |= part::kTemplates;
    return changed;
}

} // namespace lumeth
