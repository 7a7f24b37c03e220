#include "model/kept_edits.h"

#include <utility>

#include "model/limits.h"

namespace lumeth {

namespace {

// What the server module keeps of each part after an upload: the counted
// entries, names and labels cut and trimmed as sent.
bool SameSent(const DisplayListTable& a, const DisplayListTable& b) {
    if (ValidCount(a.displayListCount) != ValidCount(b.displayListCount))
        return false;
    for (int i = 0; i < ValidCount(a.displayListCount); ++i) {
        const DisplayList& x = RefAt(a.displayLists, i);
        const DisplayList& y = RefAt(b.displayLists, i);
        if (AsSent(x.name, kNameWidth) != AsSent(y.name, kNameWidth) ||
            ValidCount(x.channelCount) != ValidCount(y.channelCount))
            return false;
        for (int k = 0; k < ValidCount(x.channelCount); ++k)
            if (ValueAt(x.channels, k) != ValueAt(y.channels, k))
                return false;
    }
    return true;
}

bool SameSent(const UserGroupTable& a, const UserGroupTable& b) {
    if (ValidCount(a.userGroupCount) != ValidCount(b.userGroupCount))
        return false;
    for (int i = 0; i < ValidCount(a.userGroupCount); ++i) {
        const UserGroup& x = RefAt(a.userGroups, i);
        const UserGroup& y = RefAt(b.userGroups, i);
        if (AsSent(RefAt(a.userGroupNames, i), kNameWidth) !=
                AsSent(RefAt(b.userGroupNames, i), kNameWidth) ||
            ValidCount(x.listCount) != ValidCount(y.listCount))
            return false;
        for (int k = 0; k < ValidCount(x.listCount); ++k)
            if (ValueAt(x.listIndexes, k) != ValueAt(y.listIndexes, k) ||
                ValueAt(x.listTypes, k) != ValueAt(y.listTypes, k))
                return false;
    }
    return true;
}

bool SameSent(const PanelButton& x, const PanelButton& y) {
    return x.type == y.type && x.captionOption == y.captionOption && x.channel == y.channel &&
           x.channel2 == y.channel2 && AsSent(x.label, kLabelWidth) == AsSent(y.label, kLabelWidth);
}

bool SameSent(const TemplateTable& a, const TemplateTable& b) {
    if (ValidCount(a.templateCount) != ValidCount(b.templateCount))
        return false;
    for (int i = 0; i < ValidCount(a.templateCount); ++i) {
        const ButtonTemplate& x = RefAt(a.buttonTemplates, i);
        const ButtonTemplate& y = RefAt(b.buttonTemplates, i);
        if (AsSent(RefAt(a.templateNames, i), kNameWidth) !=
                AsSent(RefAt(b.templateNames, i), kNameWidth) ||
            x.number != y.number || ValidCount(x.buttonCount) != ValidCount(y.buttonCount))
            return false;
        for (int k = 0; k < ValidCount(x.buttonCount); ++k)
            if (!SameSent(RefAt(x.buttons, k), RefAt(y.buttons, k)))
                return false;
    }
    return true;
}

// The upload parts whose content as sent differs between `a` and `b`.
PartSet DifferAsSent(const PanelSnapshot& a, const PanelSnapshot& b) {
    PartSet differ;
    for (SubType s : kAllSubTypes) {
        const auto& x = a.lists[Index(s)];
        const auto& y = b.lists[Index(s)];
        if (x != y && !SameSent(*x, *y))
            differ.add(ListsPart(s));
    }
    if (a.groups != b.groups && !SameSent(*a.groups, *b.groups))
        differ.add(Part::UserGroups);
    if (a.templates != b.templates && !SameSent(*a.templates, *b.templates))
        differ.add(Part::Templates);
    return differ;
}

} // namespace

KeptEdits::KeptEdits(const PanelStore& start)
    : m_downloaded(TakeSnapshot(start)), m_edits(m_downloaded) {}

void KeptEdits::Adopt(PartSet parts, PanelSnapshot edits) {
    parts = parts & kUploadParts;
    CopyParts(edits, parts, m_edits);
    m_parts |= parts;
    m_replaced |= parts;
}

void KeptEdits::Received(Part part, const PanelStore& store) {
    if (!kUploadParts.has(part))
        return;
    const PanelSnapshot now = TakeSnapshot(store, &m_downloaded);
    CopyParts(now, {part}, m_downloaded);
    if (!m_parts.has(part))
        return;
    if (DifferAsSent(m_edits, m_downloaded).has(part))
        m_replaced.add(part);
    else
        Drop(part);
}

bool KeptEdits::Note(const PanelStore& store) {
    const PanelSnapshot now = TakeSnapshot(store, &m_edits);
    const PartSet edited = DifferAsSent(now, m_downloaded);
    const PartSet changed = ChangedParts(now, m_edits) & edited;
    const PartSet before = m_parts;
    CopyParts(now, edited, m_edits);
    m_parts |= edited;
    m_replaced = m_replaced - edited;
    // Back to what was downloaded by the operator's own hand (an undo): the
    // edit is given up.
    ForEachPart(m_parts - edited - m_replaced, [&](Part p) { Drop(p); });
    return !changed.empty() || !(before == m_parts);
}

void KeptEdits::Discard() {
    ForEachPart(m_parts, [&](Part p) { Drop(p); });
}

void KeptEdits::Drop(Part part) {
    CopyParts(m_downloaded, {part}, m_edits);
    m_parts.remove(part);
    m_replaced.remove(part);
}

} // namespace lumeth
