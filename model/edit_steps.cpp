#include "model/edit_steps.h"

#include <utility>

namespace lumeth {

bool EditSteps::Record(const PanelStore& store) {
    PanelSnapshot now = TakeSnapshot(store, &m_base);
    if (now == m_base)
        return false;
    m_history.Record(std::exchange(m_base, std::move(now)));
    return true;
}

void EditSteps::RecordFrom(PanelSnapshot before, const PanelStore& store) {
    m_base = TakeSnapshot(store, &before);
    m_history.Record(std::move(before));
}

void EditSteps::RecordDownload(const PanelSnapshot& arrived, PartSet parts, bool extendLast,
                               const PanelStore& store) {
    PanelSnapshot before = m_base;
    CopyParts(arrived, parts, before);
    if (!extendLast || !m_history.AmendLast(before, parts))
        m_history.Record(std::move(before));
    Rebase(store, parts);
}

void EditSteps::Rebase(const PanelStore& store, PartSet parts) {
    CopyParts(TakeSnapshot(store, &m_base), parts, m_base);
}

bool EditSteps::Undo(PanelStore& store) {
    if (!m_history.Undo(store))
        return false;
    Rebase(store);
    return true;
}

bool EditSteps::Redo(PanelStore& store) {
    if (!m_history.Redo(store))
        return false;
    Rebase(store);
    return true;
}

} // namespace lumeth
