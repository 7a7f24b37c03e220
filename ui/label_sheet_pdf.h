#pragma once

#include <QByteArray>

#include <string>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// The label sheet: a PDF, A4 landscape, one page per button template with its
// number and name in the heading and its 32 buttons as two rows of panel
// keys (face text, short function label, channel name and number), for
// printing the panels' designation strips.
QByteArray RenderLabelSheet(const PanelStore& store);

// Render the sheet and replace `path` with it atomically.
Status WriteLabelSheet(const std::string& path, const PanelStore& store);

} // namespace lumeth
