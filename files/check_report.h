#pragma once

#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/store_check.h"

namespace lumeth {

// What check tells people, the same on the command line and in the window.

// "warning: template 01 \"Desk\" Btn 1: label is 9 characters long; only the
// first 8 are kept [templates[0].buttons[0].label]": the record by its key and
// name, the message, the JSON path for scripts.
std::string CheckFindingLine(const CheckFinding& finding, const PanelStore& store);
// One line per finding, except that the same finding on consecutive buttons
// of a template is one line with the range and the count: "warning: template
// 01 \"Host\" Btn 17-32: Source Select without a channel (16 keys)".
std::vector<std::string> CheckReportLines(const std::vector<CheckFinding>& findings,
                                          const PanelStore& store);
// "2 errors, 130 warnings"; "no problems found" without findings.
std::string CheckSummary(const std::vector<CheckFinding>& findings);

} // namespace lumeth
