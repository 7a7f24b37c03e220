#pragma once

#include <cstdint>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"
#include "model/sub_type.h"

namespace lumeth {

// Keys of a template handled in bulk: copied, cut, pasted, blanked or filled
// from a display list. Key numbers are 0-based button positions in a template
// (0..31); the operator reads them as "Btn 1".."Btn 32".

// Keys copied from a template: each key's function, flags, label and both
// channels, in key order. Channel numbers travel as they are, whatever
// template the keys are pasted into.
struct KeyClipboard {
    std::vector<PanelButton> keys;

    bool empty() const { return keys.empty(); }
};

// What a paste or a fill did: how many keys it wrote, and how many it left
// out because they would have gone past the template's last key.
struct KeysWritten {
    Status status;
    int written = 0;
    int cutOff = 0;
};

// The keys `keys` of template `t` (in key order, each once; keys outside the
// template's buttons are left out). Nothing when `t` is not a template.
KeyClipboard CopyKeys(const PanelStore& store, int t, std::vector<int> keys);

// Write the clipboard's keys into template `t` from key `first` onward, one
// after another, never past the template's 32nd key. The template first grows
// to 32 buttons as the editor grows it. Fails, changing nothing, when `t` is
// not a template or `first` is not a key.
KeysWritten PasteKeys(PanelStore& store, int t, int first, const KeyClipboard& clipboard);

// Give the keys `keys` of template `t` back the blank state a new template's
// keys have (BlankTemplateButton). Keys outside 0..31 are left out.
Status DeleteKeys(PanelStore& store, int t, const std::vector<int>& keys);

// A fill: display list `list` of `subType`, button function `function` (a
// catalogue code whose channel is of that sub type) and the key to start at.
struct KeyFill {
    SubType subType = SubType::Input;
    int list = 0;
    int16_t function = 40;
    int firstKey = 0;
};

// Give consecutive keys of template `t`, from the fill's first key on, the
// fill's function and the list's channels in list order, shown by their
// channel names (the custom-label flag is cleared; the label text and the
// second channel stay). Stops at the template's last key. Fails, changing
// nothing, when the template, the list or the key does not exist or the
// function takes no channel of the list's sub type.
KeysWritten FillKeysFromList(PanelStore& store, int t, const KeyFill& fill);

// The catalogue codes, in type-list order, whose channel is of `subType`:
// the functions a fill from a list of that sub type may give.
std::vector<int16_t> FunctionsForChannels(SubType subType);

} // namespace lumeth
