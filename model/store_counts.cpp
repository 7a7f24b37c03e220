#include "model/store_counts.h"

#include "model/number_text.h"

namespace lumeth {

namespace {

std::string SubTypeCounts(const StoreCounts& counts, SubType s) {
    return std::string(SubTypeName(s)) + ": " + Counted(counts.channels[Index(s)], "channel") +
           ", " + Counted(counts.lists[Index(s)], "list");
}

std::string GroupsAndTemplates(const StoreCounts& counts) {
    return Counted(counts.groups, "user group") + "; " + Counted(counts.templates, "template");
}

} // namespace

StoreCounts CountRecords(const PanelStore& store) {
    StoreCounts counts;
    for (SubType s : kAllSubTypes) {
        counts.channels[Index(s)] = ValidCount(store.alpha(s).count);
        counts.lists[Index(s)] = ValidCount(store.listCount(s));
    }
    counts.groups = ValidCount(store.groups.userGroupCount);
    counts.templates = ValidCount(store.templates.templateCount);
    return counts;
}

std::string CountsLine(const StoreCounts& counts, SubType shown) {
    return SubTypeCounts(counts, shown) + "; " + GroupsAndTemplates(counts);
}

std::string CountsDetail(const StoreCounts& counts) {
    std::string text;
    for (SubType s : kAllSubTypes)
        text += SubTypeCounts(counts, s) + "\n";
    return text + GroupsAndTemplates(counts);
}

} // namespace lumeth
