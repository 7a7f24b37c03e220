#pragma once

#include <QByteArray>

#include <string>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

// Drawn with QtGui only (no widgets), so that the template editor's export and
// `lumeth-cli labels` print the same sheet. Needs a QGuiApplication.
namespace lumeth {

// The positions (0-based) of every template of `store`, in order.
std::vector<int> AllTemplatePositions(const PanelStore& store);

// The label sheet: a PDF, A4 landscape, one page per template of `templates`
// (0-based positions, printed in the order given) with its number and name in
// the heading and its 32 buttons as two rows of panel keys (face text, short
// function label, channel name and number), for printing the panels'
// designation strips. Every text of a key is printed whole: a text wider than
// its key is set in a smaller size, never cut.
QByteArray RenderLabelSheet(const PanelStore& store, const std::vector<int>& templates);

// Render the sheet of `templates` and replace `path` with it atomically.
Status WriteLabelSheet(const std::string& path, const PanelStore& store,
                       const std::vector<int>& templates);

} // namespace lumeth
