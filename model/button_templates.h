#pragma once

#include <string>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// A template as the panels use it: kTemplateButtons buttons, shown 16 at a time.
inline constexpr int kPageButtons = 16;

// Append a template: 32 "Source Select" buttons without channels labelled
// "Button 0".."Button 31" (0-based, as panels already in the field carry
// them), named "Btn Tmplate " + its 1-based number as three digits. Every
// per-template array grows by one and both index values are set to the new
// position. Returns that position.
int AddButtonTemplate(PanelStore& store);

// The button a new template has at 0-based position `b`: "Source Select"
// without channels, labelled "Button " + its 0-based number.
PanelButton BlankTemplateButton(int b);

// The button that growing a template to 32 buttons adds at 0-based position
// `b`: a cleared one labelled "Button " + its 1-based number.
PanelButton GrownButton(int b);

// Give template `t` exactly 32 buttons; each added button is GrownButton.
// Fails when `t` is not a template position.
Status FillButtonTemplate(PanelStore& store, int t);

// Reset template `t`: every button loses its channel, caption option and label
// ("Button " + its 0-based number) but keeps its function and second channel;
// the template is renamed "Unused " + its 1-based number as two digits. Fails,
// changing nothing, when `t` is not a template position.
Status ClearButtonTemplate(PanelStore& store, int t);

// Copy template `from` onto `to`. `to` equal to the template count appends a
// new template holding the first 16 buttons of `from`; an existing `to` only
// takes the name of `from` and keeps its buttons. Either way `to` ends up
// with the name of `from`. A failure leaves what was done up to it.
Status DuplicateButtonTemplate(PanelStore& store, int from, int to);

// The label sheet of one template: what the panel's designation strip shows.
struct LabelSheetKey {
    std::string face;     // the face text the panel shows: the custom label as sent
                          // or the system label, either at most 8 characters
    std::string function; // the function's short label ("SrcSel")
    std::string channel;  // the channel's name, or "None" without a channel
    std::string number;   // the channel's 1-based number as four digits, or ""
};
struct LabelSheetPage {
    int number = 0; // 1-based template number
    std::string name;
    std::vector<LabelSheetKey> keys; // always 32; keys beyond the template's buttons are blank
};
LabelSheetPage LabelSheetPageFor(const PanelStore& store, int t);

} // namespace lumeth
