#pragma once

#include <string>
#include <vector>

// One function per lumeth-cli command; each returns the process exit code.
namespace lumeth::cli {

int RunShow(const std::vector<std::string>& args);
int RunConvert(const std::vector<std::string>& args);
int RunFetch(const std::vector<std::string>& args);
int RunApply(const std::vector<std::string>& args);
int RunSetPassword(const std::vector<std::string>& args);
int RunCrosspoints(const std::vector<std::string>& args);

} // namespace lumeth::cli
