#include <iostream>

#include "model/cp1252.h"
#include "files/json_schema.h"
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
    std::vector<CheckFinding> findings = CheckStore(config.store, config.hasAlphas);
    for (const CheckFinding& finding : findings)
        out << cp1252::ToUtf8(CheckFindingLine(finding)) << "\n";
    return findings;
}

// check FILE: one line per problem with its JSON path; 0 clean, 1 warnings
// only, 2 errors (a file that cannot be read is one).
int RunCheck(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0].starts_with("-")) {
        UsageError("check needs exactly one FILE");
        return kErrors;
    }
    const Configuration config = ReadConfiguration(args[0]);
    if (!config.status)
        return InputError(args[0], config.status);
    const std::vector<CheckFinding> findings = PrintChecks(config, std::cout);
    if (findings.empty()) {
        std::cout << args[0] << ": no problems found\n";
        return kClean;
    }
    return HasErrors(findings) ? kErrors : kWarnings;
}

} // namespace lumeth::cli
