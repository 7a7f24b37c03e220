#include "model/panel_snapshot.h"

#include <algorithm>

namespace lumeth {

PanelSnapshot TakeSnapshot(const PanelStore& store) {
    return PanelSnapshot{store.displayListCount, store.displayLists,  store.userGroupCount,
                         store.userGroupNames,   store.userGroups,    store.userGroupIndex,
                         store.userGroupNumber,  store.templateCount, store.templateNames,
                         store.buttonTemplates,  store.templateIndex, store.templatePosition};
}

void RestoreSnapshot(const PanelSnapshot& snapshot, PanelStore& store) {
    store.displayListCount = snapshot.displayListCount;
    store.displayLists = snapshot.displayLists;
    store.userGroupCount = snapshot.userGroupCount;
    store.userGroupNames = snapshot.userGroupNames;
    store.userGroups = snapshot.userGroups;
    store.userGroupIndex = snapshot.userGroupIndex;
    store.userGroupNumber = snapshot.userGroupNumber;
    store.templateCount = snapshot.templateCount;
    store.templateNames = snapshot.templateNames;
    store.buttonTemplates = snapshot.buttonTemplates;
    store.templateIndex = snapshot.templateIndex;
    store.templatePosition = snapshot.templatePosition;
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

} // namespace lumeth
