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
