#pragma once

#include <string>

#include "model/panel_store.h"
#include "model/store_location.h"

namespace lumeth {

// How people read about records of the configuration: by the key the main
// window shows and by name, the same in Review Changes, diff, check and show.

// "\"Studio A\"": a name as the panels get it (cut to `width`).
std::string QuotedName(const std::string& name, size_t width);
// "Gr.001 \"Studio A\""
std::string GroupRecordName(const PanelStore& store, int index);
// "Input Lst.000 \"Mics\"", or the key alone for a list the store lacks.
std::string ListRecordName(const PanelStore& store, SubType s, int position);
// "template 01" for index 0 (numbers from 1, two digits).
std::string TemplateKey(int index);
// "template 01 \"Host\"".
std::string TemplateRecordName(const PanelStore& store, int index);
// "Btn 13" for button index 12.
std::string ButtonKey(int button);
// "Input Ch.0013 \"CD 2\"", or the key alone for a channel without a name.
std::string ChannelRecordName(const PanelStore& store, SubType s, int channel);
// The record (and entry) a location points at: "Input Lst.000 \"Mics\" Ch.0003
// \"CD 2\"", "Gr.001 \"Studio A\" entry 2", "template 01 \"Host\" Btn 13", or
// the part's name ("Input display lists") for a whole part.
std::string LocationName(const PanelStore& store, const StoreLocation& at);

} // namespace lumeth
