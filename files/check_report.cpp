#include "files/check_report.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "files/json_schema.h"
#include "model/record_names.h"

namespace lumeth {

namespace {

const char* SeverityText(CheckFinding::Severity severity) {
    return severity == CheckFinding::Severity::Error ? "error: " : "warning: ";
}

// "1 error", "3 warnings"
std::string Counted(size_t n, const char* noun) {
    return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

// Findings on consecutive buttons of one template that say the same.
struct ButtonRun {
    const CheckFinding* first;
    int lastButton;
};

bool OnAButton(const CheckFinding& f) {
    return f.location.part == Part::Templates && f.location.record >= 0 && f.location.entry >= 0 &&
           !f.other;
}

std::string RunLine(const ButtonRun& run, const PanelStore& store) {
    if (run.lastButton == run.first->location.entry)
        return CheckFindingLine(*run.first, store);
    const StoreLocation& at = run.first->location;
    return SeverityText(run.first->severity) + TemplateRecordName(store, at.record) + " " +
           ButtonKey(at.entry) + "-" + std::to_string(run.lastButton + 1) + ": " +
           run.first->message + " (" + std::to_string(run.lastButton - at.entry + 1) + " keys)";
}

} // namespace

std::string CheckFindingLine(const CheckFinding& finding, const PanelStore& store) {
    std::string line = SeverityText(finding.severity);
    line += LocationName(store, finding.location) + ": " + finding.message;
    if (finding.other)
        line += LocationName(store, *finding.other);
    return line + " [" + JsonPath(finding.location) + "]";
}

std::vector<std::string> CheckReportLines(const std::vector<CheckFinding>& findings,
                                          const PanelStore& store) {
    // The lines in the order of their first findings; a run stays open for
    // the next button while its key (template, field, severity, message) has
    // not moved on.
    std::vector<ButtonRun> runs;
    using Key = std::tuple<int, StoreField, CheckFinding::Severity, const std::string*>;
    const auto less = [](const Key& a, const Key& b) {
        return std::tie(std::get<0>(a), std::get<1>(a), std::get<2>(a), *std::get<3>(a)) <
               std::tie(std::get<0>(b), std::get<1>(b), std::get<2>(b), *std::get<3>(b));
    };
    std::map<Key, size_t, decltype(less)> open(less);
    for (const CheckFinding& f : findings) {
        if (!OnAButton(f)) {
            runs.push_back({&f, f.location.entry});
            continue;
        }
        const Key key{f.location.record, f.location.field, f.severity, &f.message};
        const auto it = open.find(key);
        if (it != open.end() && runs[it->second].lastButton == f.location.entry - 1) {
            runs[it->second].lastButton = f.location.entry;
            continue;
        }
        open[key] = runs.size();
        runs.push_back({&f, f.location.entry});
    }
    std::vector<std::string> lines;
    lines.reserve(runs.size());
    for (const ButtonRun& run : runs)
        lines.push_back(RunLine(run, store));
    return lines;
}

std::string CheckSummary(const std::vector<CheckFinding>& findings) {
    if (findings.empty())
        return "no problems found";
    const auto errors = static_cast<size_t>(
        std::count_if(findings.begin(), findings.end(), [](const CheckFinding& f) {
            return f.severity == CheckFinding::Severity::Error;
        }));
    return Counted(errors, "error") + ", " + Counted(findings.size() - errors, "warning");
}

} // namespace lumeth
