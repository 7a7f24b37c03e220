#include "model/panel_store.h"

namespace lumeth {

void UserGroupTable::Resize(int count) {
    const size_t n = ArraySizeFor(count);
    userGroupNames.resize(n);
    userGroups.resize(n);
    userGroupIndex.resize(n, 0);
    userGroupNumber.resize(n, 0);
}

void TemplateTable::Resize(int count) {
    const size_t n = ArraySizeFor(count);
    templateNames.resize(n);
    buttonTemplates.resize(n);
    templateIndex.resize(n, 0);
    templatePosition.resize(n, 0);
}

void PanelStore::ResetToDefaults() {
    static const char* const kDefaultListNames[kSubTypeCount] = {
        "First In List", "First Out List", "First Opto List", "First Relay List"};
    for (SubType s : kAllSubTypes) {
        DisplayListTable& table = listTable(s);
        table = DisplayListTable{};
        table.displayListCount = 1;
        table.displayLists[0].name = kDefaultListNames[Index(s)];
    }

    groups = UserGroupTable{};
    groups.userGroupCount = 1;
    groups.userGroupNames[0] = "No Users";

    templates = TemplateTable{};
    templates.templateCount = 1;
    templates.templateNames[0] = "None";
}

} // namespace lumeth
