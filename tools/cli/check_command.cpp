#include <iostream>

#include "files/check_report.h"
#include "files/configuration_file.h"
#include "model/cp1252.h"
#include "model/store_check.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

namespace {

// Exit codes of check.
constexpr int kClean = 0;
constexpr int kWarnings = 1;
constexpr int kErrors = 2;

} // namespace

std::vector<CheckFinding> PrintChecks(const Configuration& config, std::ostream& out) {
    std::vector<CheckFinding> findings = CheckConfiguration(config);
    for (const std::string& line : CheckReportLines(findings, config.store))
        out << cp1252::ToUtf8(line) << "\n";
    return findings;
}

// check FILE: one line per problem (repeated ones grouped), then the count of
// errors and warnings; 0 clean, 1 warnings only, 2 errors (a file that cannot
// be read is one).
int RunCheck(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0].starts_with("-")) {
        UsageError("check needs exactly one FILE");
        return kErrors;
    }
    const Configuration config = ReadConfiguration(args[0]);
    if (!config.status)
        return InputError(args[0], config.status);
    const std::vector<CheckFinding> findings = PrintChecks(config, std::cout);
    std::cout << args[0] << ": " << CheckSummary(findings) << "\n";
    if (findings.empty())
        return kClean;
    return HasErrors(findings) ? kErrors : kWarnings;
}

} // namespace lumeth::cli
