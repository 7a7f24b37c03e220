#pragma once

#include <functional>
#include <string_view>

#include "model/failure.h"

namespace lumeth {

// Where a window's failures go: the main window's ReportError, which writes
// the error log. Location and category are the fixed texts of the operation.
using ErrorReporter = std::function<void(std::string_view location, std::string_view category,
                                         const Failure& failure)>;

} // namespace lumeth
