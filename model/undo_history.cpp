#include "model/undo_history.h"

#include <utility>

namespace lumeth {

void UndoHistory::Record(PanelSnapshot before) {
    m_redo.clear();
    m_undo.push_back(std::move(before));
    while (m_undo.size() > m_limit)
        m_undo.pop_front();
}

bool UndoHistory::AmendLast(const PanelSnapshot& before, PartSet parts) {
    if (m_undo.empty())
        return false;
    m_redo.clear();
    CopyParts(before, parts, m_undo.back());
    return true;
}

bool UndoHistory::Step(std::deque<PanelSnapshot>& from, std::deque<PanelSnapshot>& to,
                       PanelStore& store) {
    if (from.empty())
        return false;
    // The state left shares its unchanged parts with the one restored.
    to.push_back(TakeSnapshot(store, &from.back()));
    RestoreSnapshot(from.back(), store);
    from.pop_back();
    return true;
}

bool UndoHistory::Undo(PanelStore& store) {
    return Step(m_undo, m_redo, store);
}

bool UndoHistory::Redo(PanelStore& store) {
    return Step(m_redo, m_undo, store);
}

void UndoHistory::Clear() {
    m_undo.clear();
    m_redo.clear();
}

} // namespace lumeth
