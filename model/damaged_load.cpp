#include "model/damaged_load.h"

#include <utility>

namespace lumeth {

void DamagedLoad::Mark(std::string file, const PanelSnapshot& before, const PanelSnapshot& left) {
    m_file = std::move(file);
    m_left = left;
    m_changed = ChangedParts(before, left);
    // Even a load that changed nothing is not a configuration anyone chose.
    m_parts = kUploadParts;
}

void DamagedLoad::Replaced(Part part) {
    m_parts = m_parts - PartSet{part};
}

void DamagedLoad::Clear() {
    *this = DamagedLoad{};
}

void DamagedLoad::Restored(const PanelSnapshot& now) {
    if (m_file.empty())
        return;
    m_parts = m_changed - ChangedParts(m_left, now);
}

} // namespace lumeth
