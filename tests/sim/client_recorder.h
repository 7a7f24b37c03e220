#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/session.h"

namespace lumeth::testing {

// Records what the administrator's session reports.
class ClientRecorder : public SessionObserver {
public:
    std::vector<std::string> errors;

    void PartReceived(Part) override {}
    void WriteErrorLog(std::string_view message, std::string_view) override {
        errors.emplace_back(message);
    }
    void ReportError(std::string_view location, std::string_view, const Failure&) override {
        errors.emplace_back(location);
    }
    void LogActivity(std::string_view, std::string_view) override {}
};

} // namespace lumeth::testing
