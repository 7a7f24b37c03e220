#pragma once

class QDialog;

namespace lumeth {

// Fixes `dialog` at the natural size of its layout, so it cannot be resized
// or maximised into empty space, and follows that size when controls are
// shown or hidden. It is made at least wide enough for its whole window
// title beside the frame's buttons. Call after the layout and title are set.
void KeepNaturalSize(QDialog* dialog);

} // namespace lumeth
