#pragma once

#include <exception>
#include <functional>
#include <string_view>

#include "model/failure.h"

namespace lumeth {

// How a window hands a failure to the error log: the location text naming the
// failed operation, the category ("Button Error", "File Error", ...) and the
// failure itself.
using ErrorReporter = std::function<void(std::string_view location, std::string_view category,
                                         const Failure& failure)>;

// Runs `step`. A failure it throws goes no further: it is handed to
// `reporter` (when there is one) under `location` and `category`, and what
// `step` did before it stays done. False when `step` failed.
template <typename Step>
bool Guarded(const ErrorReporter& reporter, std::string_view location, std::string_view category,
             Step&& step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        if (reporter)
            reporter(location, category, FailureFromException(error));
        return false;
    }
}

} // namespace lumeth
