#include "model/kept_edits.h"

#include <utility>

namespace lumeth {

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
