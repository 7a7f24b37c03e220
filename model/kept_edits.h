#pragma once

#include "model/panel_snapshot.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// The operator's edits that no download has yet shown the server module to
// hold: each edited upload part as last edited. Parts are compared as the
// server module keeps them (counted entries, names cut and trimmed as sent). An edit stays kept
// when a download replaces it with something else, when Apply sends it (only a download shows that
// it arrived) and across a restart; it goes when a download brings the same content, when the
// operator takes the part back to what was downloaded, or when the operator discards it.
class KeptEdits {
public:
    // `start` is the store before anything has been downloaded.
    explicit KeptEdits(const PanelStore& start = PanelStore{});

    // Edits kept from an earlier run: the store does not hold them.
    void Adopt(PartSet parts, PanelSnapshot edits);
    // `part` was downloaded and `store` now holds it.
    void Received(Part part, const PanelStore& store);
    // The store may have moved on (an edit, undo, redo, a loaded file); true
    // when what is kept changed.
    bool Note(const PanelStore& store);
    // The operator discarded the edits.
    void Discard();

    PartSet parts() const { return m_parts; }
    // The kept parts (the others as last downloaded).
    const PanelSnapshot& edits() const { return m_edits; }

private:
    void Drop(Part part);

    PanelSnapshot m_downloaded;
    PanelSnapshot m_edits;
    PartSet m_parts;
    // Kept parts the store no longer holds because something else replaced
    // them (a download, or a restart): the store's equality with the
    // download then says nothing about the operator's intent.
    PartSet m_replaced;
};

} // namespace lumeth
