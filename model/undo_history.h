#pragma once

#include <cstddef>
#include <deque>

#include "model/panel_snapshot.h"

namespace lumeth {

// Undo and redo of whole steps (an editor session, a file load, a download, a
// duplicate): each step keeps the editable parts as they were before it, the
// oldest dropped beyond the limit.
class UndoHistory {
public:
    static constexpr size_t kDefaultLimit = 50;

    explicit UndoHistory(size_t limit = kDefaultLimit) : m_limit(limit) {}

    // A step has changed the store; `before` is what it held before. Clears
    // what could be redone.
    void Record(PanelSnapshot before);
    // The last step also replaced `parts`: they undo to their content in
    // `before` (false: there is no step). Clears what could be redone.
    bool AmendLast(const PanelSnapshot& before, PartSet parts);
    // Put the store back as it was before the last step (false: nothing to
    // undo); the state undone can be redone.
    bool Undo(PanelStore& store);
    bool Redo(PanelStore& store);

    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    size_t undoDepth() const { return m_undo.size(); }
    void Clear();

private:
    static bool Step(std::deque<PanelSnapshot>& from, std::deque<PanelSnapshot>& to,
                     PanelStore& store);

    size_t m_limit;
    std::deque<PanelSnapshot> m_undo; // the newest last
    std::deque<PanelSnapshot> m_redo;
};

} // namespace lumeth
