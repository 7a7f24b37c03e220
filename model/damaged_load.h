#pragma once

#include <string>

#include "model/panel_snapshot.h"
#include "model/parts.h"

namespace lumeth {

// A panel data file whose load failed or stopped part way: the store holds
// what was read before the failure on top of the defaults. The configuration
// counts as damaged until a download replaces its parts, a good load replaces
// it, or an undo puts back what was there before (a redo brings it back).
class DamagedLoad {
public:
    // Loading `file` stopped part way; `before` is the store as it was, `left`
    // as the load left it.
    void Mark(std::string file, const PanelSnapshot& before, const PanelSnapshot& left);
    // `part` arrived from the server module in place of what the load left.
    void Replaced(Part part);
    // A whole file was loaded.
    void Clear();
    // An undo or redo put `now` in place: the parts the load changed count
    // again while they hold what it left.
    void Restored(const PanelSnapshot& now);

    // The file the store still holds a damaged load of; empty for none.
    std::string file() const { return m_parts.empty() ? std::string() : m_file; }
    // The parts that still hold what the damaged load left.
    PartSet parts() const { return m_parts; }

private:
    std::string m_file;
    PanelSnapshot m_left;
    PartSet m_changed; // the parts the load changed
    PartSet m_parts;   // the parts still as the load left them
};

} // namespace lumeth
