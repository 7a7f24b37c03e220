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

    // A download is about to replace `part` of `store`: the part is kept as
    // the download finds it (the first time only, until it has arrived: an
    // answer that fails its checks writes into the store too, and the one
    // after it still replaces what the operator had).
    void Arriving(Part part, const PanelStore& store);
    // `part` arrived and `store` now holds it; `held` is each part as the
    // server module was last known to hold it. When the part as found held
    // edits not yet applied and the download replaced them, they become an
    // undo step, joined by the further parts of the same download; true then.
    bool Arrived(Part part, const PanelStore& store, const PanelSnapshot& held);
    // The download about to start replaces the last step's edits: the parts
    // it replaces join that step.
    void StartDownloadStep();
    // The link came up again: its downloads start a step of their own.
    void EndDownloadStep() { m_downloadStep = false; }

    // The store as the last step (or download) left it.
    const PanelSnapshot& base() const { return m_base; }
    UndoHistory& history() { return m_history; }
    const UndoHistory& history() const { return m_history; }

private:
    // A download replaced `parts` of the store, which held edits not yet
    // applied; `arrived` is the store as the download found it. Undoing the
    // step puts those parts back as they were in `arrived`. With
    // `extendLast` the parts join the last step (the same download replacing
    // a further part), so that one undo brings all of the edits back.
    void RecordDownload(const PanelSnapshot& arrived, PartSet parts, bool extendLast,
                        const PanelStore& store);
    // A step, undo or redo: no download in progress joins an earlier step.
    void EndDownloads();

    UndoHistory m_history;
    PanelSnapshot m_base;
    // Each part of m_arriving as the download writing it found it.
    PanelSnapshot m_arrived;
    PartSet m_arriving;
    // The last undo step is the current download's (at this depth): further
    // parts it replaces join that step.
    bool m_downloadStep = false;
    size_t m_downloadDepth = 0;
};

} // namespace lumeth
