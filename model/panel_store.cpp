#include "model/panel_store.h"

namespace lumeth {

namespace {

// Give every parallel array of a table max(count, 1) entries; new ones are
// value-initialised (empty names and records, index values 0).
template <typename... Arrays> void ResizeParallel(int count, Arrays&... arrays) {
    const size_t n = ArraySizeFor(count);
    (arrays.resize(n), ...);
}

} // namespace

void UserGroupTable::Resize(int count) {
    ResizeParallel(count, userGroupNames, userGroups, userGroupIndex, userGroupNumber);
}

void TemplateTable::Resize(int count) {
    ResizeParallel(count, templateNames, buttonTemplates, templateIndex, templatePosition);
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
