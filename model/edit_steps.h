#pragma once

#include "model/panel_snapshot.h"
#include "model/panel_store.h"
#include "model/undo_history.h"

namespace lumeth {

// The operator's steps over the store's editable parts: the state the next
// step starts from, and the history that undoes and redoes whole steps.
class EditSteps {
public:
    explicit EditSteps(const PanelStore& store) : m_base(TakeSnapshot(store)) {}

    // Record a step when the store has moved on since the last one; false
    // when it has not.
    bool Record(const PanelStore& store);
    // Record a step that started from `before` (even when the store now
    // equals it: a download that replaced local edits is undone to them).
    void RecordFrom(PanelSnapshot before, const PanelStore& store);
    // A download replaced `parts` of the store, which held edits not yet
    // applied; `arrived` is the store as the download found it. Undoing the
    // step puts those parts back as they were in `arrived`. With
    // `extendLast` the parts join the last step (the same download replacing
    // a further part), so that one undo brings all of the edits back.
    void RecordDownload(const PanelSnapshot& arrived, PartSet parts, bool extendLast,
                        const PanelStore& store);
    // The store changed without a step of its own (a download): later steps
    // start from it.
    void Rebase(const PanelStore& store) { m_base = TakeSnapshot(store, &m_base); }
    // Only `parts` changed without a step: the other parts are left as they
    // were, so that edits in progress still count as the next step.
    void Rebase(const PanelStore& store, PartSet parts);
    // Put the store back before the last step, or forward again (false:
    // nothing to undo or redo).
    bool Undo(PanelStore& store);
    bool Redo(PanelStore& store);

    // The store as the last step (or download) left it.
    const PanelSnapshot& base() const { return m_base; }
    UndoHistory& history() { return m_history; }
    const UndoHistory& history() const { return m_history; }

private:
    UndoHistory m_history;
    PanelSnapshot m_base;
};

} // namespace lumeth
