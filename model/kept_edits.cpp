#include "model/kept_edits.h"

#include <utility>

namespace lumeth {

namespace {

// Give `to` the part `part` of `from` (upload parts only).
void CopyPart(const PanelSnapshot& from, Part part, PanelSnapshot& to) {
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::DisplayLists:
        to.lists[Index(*info.subType)] = from.lists[Index(*info.subType)];
        break;
    case PartKind::UserGroups:
        to.groups = from.groups;
        break;
    case PartKind::Templates:
        to.templates = from.templates;
        break;
    case PartKind::Password:
    case PartKind::Alphas:
        break;
    }
}

} // namespace

KeptEdits::KeptEdits(const PanelStore& start)
    : m_downloaded(TakeSnapshot(start)), m_edits(m_downloaded) {}

void KeptEdits::Adopt(PartSet parts, PanelSnapshot edits) {
    parts = parts & kUploadParts;
    ForEachPart(parts, [&](Part p) { CopyPart(edits, p, m_edits); });
    m_parts |= parts;
    m_replaced |= parts;
}

void KeptEdits::Received(Part part, const PanelStore& store) {
    if (!kUploadParts.has(part))
        return;
    const PanelSnapshot now = TakeSnapshot(store, &m_downloaded);
    CopyPart(now, part, m_downloaded);
    if (!m_parts.has(part))
        return;
    if (ChangedParts(m_edits, m_downloaded).has(part))
        m_replaced.add(part);
    else
        Drop(part);
}

bool KeptEdits::Note(const PanelStore& store) {
    const PanelSnapshot now = TakeSnapshot(store, &m_edits);
    const PartSet edited = ChangedParts(now, m_downloaded);
    const PartSet changed = ChangedParts(now, m_edits) & edited;
    const PartSet before = m_parts;
    ForEachPart(edited, [&](Part p) { CopyPart(now, p, m_edits); });
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
    CopyPart(m_downloaded, part, m_edits);
    m_parts.remove(part);
    m_replaced.remove(part);
}

} // namespace lumeth
