#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// One function per lumeth-cli command; each returns the process exit code.
namespace lumeth {
struct CheckFinding;
struct Configuration;
} // namespace lumeth

namespace lumeth::cli {

int RunShow(const std::vector<std::string>& args);
int RunConvert(const std::vector<std::string>& args);
int RunFetch(const std::vector<std::string>& args);
int RunApply(const std::vector<std::string>& args);
int RunSetPassword(const std::vector<std::string>& args);
int RunCrosspoints(const std::vector<std::string>& args);
int RunDiff(const std::vector<std::string>& args);
int RunCheck(const std::vector<std::string>& args);
int RunLabels(const std::vector<std::string>& args);
int RunBackups(const std::vector<std::string>& args);
int RunWhere(const std::vector<std::string>& args);
int RunExportCsv(const std::vector<std::string>& args);
int RunImportCsv(const std::vector<std::string>& args);

// The checks of `check` on `config`, one line each on `out`.
std::vector<CheckFinding> PrintChecks(const Configuration& config, std::ostream& out);

} // namespace lumeth::cli
