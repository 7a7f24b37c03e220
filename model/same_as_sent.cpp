#include "model/same_as_sent.h"

namespace lumeth {

namespace {

bool SameName(const std::string& a, const std::string& b) {
    return AsSent(a, kNameWidth) == AsSent(b, kNameWidth);
}

bool SameList(const DisplayList& a, const DisplayList& b) {
    const size_t n = SentCount(a.channelCount, a.channels);
    if (!SameName(a.name, b.name) || n != SentCount(b.channelCount, b.channels))
        return false;
    return std::equal(a.channels.begin(), a.channels.begin() + static_cast<std::ptrdiff_t>(n),
                      b.channels.begin());
}

bool SameGroup(const UserGroup& a, const UserGroup& b) {
    const size_t n = SentCount(a.listCount, a.listIndexes, a.listTypes);
    if (n != SentCount(b.listCount, b.listIndexes, b.listTypes))
        return false;
    for (size_t k = 0; k < n; ++k)
        if (a.listIndexes[k] != b.listIndexes[k] || a.listTypes[k] != b.listTypes[k])
            return false;
    return true;
}

bool SameTemplate(const ButtonTemplate& a, const ButtonTemplate& b) {
    const size_t n = SentCount(a.buttonCount, a.buttons);
    if (a.number != b.number || n != SentCount(b.buttonCount, b.buttons))
        return false;
    for (size_t k = 0; k < n; ++k)
        if (!SameAsSent(a.buttons[k], b.buttons[k]))
            return false;
    return true;
}

} // namespace

bool SameAsSent(const DisplayListTable& a, const DisplayListTable& b) {
    const size_t n = SentCount(a.displayListCount, a.displayLists);
    if (n != SentCount(b.displayListCount, b.displayLists))
        return false;
    for (size_t i = 0; i < n; ++i)
        if (!SameList(a.displayLists[i], b.displayLists[i]))
            return false;
    return true;
}

bool SameAsSent(const UserGroupTable& a, const UserGroupTable& b) {
    const size_t n = SentCount(a.userGroupCount, a.userGroupNames, a.userGroups);
    if (n != SentCount(b.userGroupCount, b.userGroupNames, b.userGroups))
        return false;
    for (size_t i = 0; i < n; ++i)
        if (!SameName(a.userGroupNames[i], b.userGroupNames[i]) ||
            !SameGroup(a.userGroups[i], b.userGroups[i]))
            return false;
    return true;
}

bool SameAsSent(const TemplateTable& a, const TemplateTable& b) {
    const size_t n = SentCount(a.templateCount, a.templateNames, a.buttonTemplates);
    if (n != SentCount(b.templateCount, b.templateNames, b.buttonTemplates))
        return false;
    for (size_t i = 0; i < n; ++i)
        if (!SameName(a.templateNames[i], b.templateNames[i]) ||
            !SameTemplate(a.buttonTemplates[i], b.buttonTemplates[i]))
            return false;
    return true;
}

bool SameAsSent(const PanelButton& a, const PanelButton& b) {
    return a.type == b.type && a.captionOption == b.captionOption && a.channel == b.channel &&
           a.channel2 == b.channel2 && AsSent(a.label, kLabelWidth) == AsSent(b.label, kLabelWidth);
}

PartSet DifferAsSent(const PanelStore& a, const PanelStore& b) {
    PartSet differ;
    for (SubType s : kAllSubTypes)
        if (!SameAsSent(a.listTable(s), b.listTable(s)))
            differ.add(ListsPart(s));
    if (!SameAsSent(a.groups, b.groups))
        differ.add(Part::UserGroups);
    if (!SameAsSent(a.templates, b.templates))
        differ.add(Part::Templates);
    return differ;
}

} // namespace lumeth
