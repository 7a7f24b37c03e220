#pragma once

#include <string>
#include <vector>

#include "model/failure.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

// The options shared by the commands that talk to the server module
// (ParseServerArguments), with the error log's folder settled: --home DIR
// when given, else the per-user data folder the installed window uses
// (created when missing), never the current folder; and how the command
// tells its progress (--verbose, or whether stderr is a terminal).
Status ParseServerOptions(const std::vector<std::string>& args, ServerOptions& options,
                          std::vector<std::string>& rest);

} // namespace lumeth::cli
