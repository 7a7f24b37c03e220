#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/password_input.h"
#include "tools/cli/server_arguments.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

// set-password: log in with the current password, store the new one in the
// server module and ask for the data again; done when the server module
// answers with the new password.
int RunSetPassword(const std::vector<std::string>& args) {
    ServerOptions options;
    std::vector<std::string> rest;
    if (const Status parsed = ParseServerOptions(args, options, rest); !parsed) {
        return UsageError(parsed.failure().detail);
    }
    std::optional<std::string> newPasswordFile;
    for (size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] == "--new-password-file" && i + 1 < rest.size() && !newPasswordFile) {
            newPasswordFile = rest[++i];
        } else {
            return UsageError("set-password: unexpected argument \"" + rest[i] + "\"");
        }
    }
    const PasswordResult current = ReadPassword({options.passwordFile, "LUMETH_PASSWORD"});
    if (!current.password) {
        return Error(ExitCode::Usage, current.status.failure().detail);
    }
    const PasswordResult next = ReadPassword(
        {newPasswordFile, "LUMETH_NEW_PASSWORD", "New password: ", "--new-password-file"});
    if (!next.password) {
        return Error(ExitCode::Usage, next.status.failure().detail);
    }
    if (const Status usable = CheckNewPassword(*next.password); !usable) {
        return Error(ExitCode::BadInput, usable.failure().detail);
    }

    ServerClient client(options);
    if (const int code = client.LogIn(PasswordBytes(*current.password)); code != 0) {
        return code;
    }
    const int code = client.ChangePassword(PasswordBytes(*next.password));
    client.Close();
    if (code != 0) {
        return code;
    }
    PrintResult("password changed on " + options.host + ":" + std::to_string(options.port));
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
