#pragma once

#include <bitset>
#include <vector>

#include "model/limits.h"

namespace lumeth {

// The keys of a template picked for a bulk edit, by template key number
// (0..31), across both pages. A plain click picks one key, Ctrl-click adds or
// drops a key, Shift-click picks the run from the last key clicked to this
// one, Select All picks every key.
class KeySelection {
public:
    enum class Click { Plain, Toggle, Range };

    void Clicked(int key, Click how);
    void SelectAll() { m_keys.set(); }
    void Clear() { m_keys.reset(); }

    bool contains(int key) const { return IsKey(key) && m_keys.test(static_cast<size_t>(key)); }
    bool empty() const { return m_keys.none(); }
    // The picked keys in key order; `current` alone when none is picked.
    std::vector<int> keysOr(int current) const;

private:
    static bool IsKey(int key) { return key >= 0 && key < kTemplateButtons; }

    std::bitset<kTemplateButtons> m_keys;
    int m_anchor = 0;
};

} // namespace lumeth
