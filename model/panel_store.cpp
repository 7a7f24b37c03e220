#include "model/panel_store.h"

namespace lumeth {

std::optional<SubType> SubTypeFromAlphaCode(int code) {
    switch (code) {
    case 10:
        return SubType::Input;
    case 20:
        return SubType::Output;
    case 30:
        return SubType::Opto;
    case 40:
        return SubType::Relay;
    default:
        return std::nullopt;
    }
}

std::optional<SubType> SubTypeFromListCode(int code) {
    switch (code) {
    case 11:
        return SubType::Input;
    case 21:
        return SubType::Output;
    case 31:
        return SubType::Opto;
    case 41:
        return SubType::Relay;
    default:
        return std::nullopt;
    }
}

const char* SubTypeName(SubType s) {
    switch (s) {
    case SubType::Input:
        return "Input";
    case SubType::Output:
        return "Output";
    case SubType::Opto:
        return "Opto";
    case SubType::Relay:
        return "Relay";
    }
    return "";
}

void PanelStore::ResetToDefaults() {
    static const char* const kDefaultListNames[4] = {"First In List", "First Out List",
                                                     "First Opto List", "First Relay List"};
    for (size_t s = 0; s < 4; ++s) {
        displayListCount[s] = 1;
        displayLists[s].assign(1, DisplayList{});
        displayLists[s][0].name = kDefaultListNames[s];
    }

    userGroupCount = 1;
    userGroupNames.assign(1, "No Users");
    userGroups.assign(1, UserGroup{});
    userGroupIndex.assign(1, 0);
    userGroupNumber.assign(1, 0);

    templateCount = 1;
    templateNames.assign(1, "None");
    buttonTemplates.assign(1, ButtonTemplate{});
    templateIndex.assign(1, 0);
    templatePosition.assign(1, 0);
}

void PanelStore::ResizeUserGroups(int count) {
    const size_t n = ArraySizeFor(count);
    userGroupNames.resize(n);
    userGroups.resize(n);
    userGroupIndex.resize(n, 0);
    userGroupNumber.resize(n, 0);
}

void PanelStore::ResizeTemplates(int count) {
    const size_t n = ArraySizeFor(count);
    templateNames.resize(n);
    buttonTemplates.resize(n);
    templateIndex.resize(n, 0);
    templatePosition.resize(n, 0);
}

void PanelStore::AssignUserGroups(const PanelStore& from) {
    userGroupCount = from.userGroupCount;
    userGroupNames = from.userGroupNames;
    userGroups = from.userGroups;
    userGroupIndex = from.userGroupIndex;
    userGroupNumber = from.userGroupNumber;
}

void PanelStore::AssignTemplates(const PanelStore& from) {
    templateCount = from.templateCount;
    templateNames = from.templateNames;
    buttonTemplates = from.buttonTemplates;
    templateIndex = from.templateIndex;
    templatePosition = from.templatePosition;
}

} // namespace lumeth
