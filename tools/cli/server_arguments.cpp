#include "tools/cli/server_arguments.h"

#include <filesystem>
#include <utility>

#include "files/user_data_folder.h"
#include "tools/cli/progress_line.h"

namespace lumeth::cli {

Status ParseServerOptions(const std::vector<std::string>& args, ServerOptions& options,
                          std::vector<std::string>& rest) {
    ServerOptions defaults = options;
    defaults.home.clear(); // tells a --home DIR apart from the default
    ServerArguments parsed = ParseServerArguments(args, std::move(defaults));
    if (!parsed.status) {
        return parsed.status;
    }
    options = std::move(parsed.options);
    rest.insert(rest.end(), parsed.rest.begin(), parsed.rest.end());
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
