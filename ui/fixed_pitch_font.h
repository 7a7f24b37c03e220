#pragma once

class QAbstractItemView;

namespace lumeth {

// Shows the items of `view` in the system's fixed-pitch font, at the size of
// its current font, so blank-padded names and the keys after them line up.
// A tree view's header keeps the ordinary font.
void UseFixedPitchFont(QAbstractItemView* view);

} // namespace lumeth
