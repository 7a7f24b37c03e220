#include "ui/key_selection.h"

#include <algorithm>

namespace lumeth {

void KeySelection::Clicked(int key, Click how) {
    if (!IsKey(key))
        return;
    switch (how) {
    case Click::Plain:
        m_keys.reset();
        m_keys.set(static_cast<size_t>(key));
        m_anchor = key;
        break;
    case Click::Toggle:
        m_keys.flip(static_cast<size_t>(key));
        m_anchor = key;
        break;
    case Click::Range:
        // The anchor stays, so a second Shift-click changes the run's far end.
        m_keys.reset();
        for (int k = std::min(m_anchor, key); k <= std::max(m_anchor, key); ++k)
            m_keys.set(static_cast<size_t>(k));
        break;
    }
}

std::vector<int> KeySelection::keysOr(int current) const {
    if (empty())
        return {current};
    std::vector<int> keys;
    for (int k = 0; k < kTemplateButtons; ++k) {
        if (m_keys.test(static_cast<size_t>(k)))
            keys.push_back(k);
    }
    return keys;
}

} // namespace lumeth
