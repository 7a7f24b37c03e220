#include "tools/cli/server_arguments.h"

#include <filesystem>

#include "files/user_data_folder.h"
#include "tools/cli/progress_line.h"

namespace lumeth::cli {

Status ParseServerOptions(const std::vector<std::string>& args, ServerOptions& options,
                          std::vector<std::string>& rest) {
    options.home.clear(); // tells a --home DIR apart from the default
    std::string error;
    if (!ParseServerArguments(args, options, rest, error)) {
        return Status::Fail(ErrorCode::InvalidProcedureCall, error);
    }
    Progress().setMode(ChooseProgressMode(options.verbose), TerminalColumns());
    if (options.home.empty()) {
        options.home = UserDataFolder();
        // A folder that cannot be made only costs the log: the command runs.
        std::error_code ignored;
        std::filesystem::create_directories(options.home, ignored);
    }
    return Status::Ok();
}

} // namespace lumeth::cli
