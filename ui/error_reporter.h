#pragma once

#include <functional>
#include <string_view>

#include "model/failure.h"

namespace lumeth {

// How a window hands a failure to the error log: the location text naming the
// failed operation, the category ("Button Error", "File Error", ...) and the
// failure itself.
using ErrorReporter = std::function<void(std::string_view location, std::string_view category,
                                         const Failure& failure)>;

} // namespace lumeth
