#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/server_arguments.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

// fetch -o OUT: log in, download everything, write OUT. OUT is written only
// after the whole download has arrived, so a wrong password, a lost link or a
// timeout leaves no file behind. OUT "-" is the JSON document on stdout, the
// result line then on stderr.
int RunFetch(const std::vector<std::string>& args) {
    ServerOptions options;
    std::vector<std::string> rest;
    if (const Status parsed = ParseServerOptions(args, options, rest); !parsed) {
        return UsageError(parsed.failure().detail);
    }
    std::string out;
    for (size_t i = 0; i < rest.size(); ++i) {
        if ((rest[i] == "-o" || rest[i] == "--output") && i + 1 < rest.size() && out.empty()) {
            out = rest[++i];
        } else {
            return UsageError("fetch: unexpected argument \"" + rest[i] + "\"");
        }
    }
    if (out.empty()) {
        return UsageError("fetch needs -o OUT");
    }
    const auto form = OutputForm(out);
    if (!form) {
        return UnknownOutputForm(out);
    }
    ServerClient client(options);
    if (const int code = client.LogInAndDownload(); code != 0) {
        return code;
    }
    client.Close();

    Configuration fetched;
    fetched.form = *form;
    fetched.store = client.store();
    fetched.hasAlphas = true; // only the JSON document carries them
    if (const int code = WriteConfigurationFile(fetched, *form, out, out); code != 0) {
        return code;
    }

    const PanelStore& store = fetched.store;
    const bool toStandardOutput = out == kStandardOutput;
    std::string result =
        "wrote " + (toStandardOutput ? std::string("standard output") : out) + ": ";
    for (SubType subType : kAllSubTypes) {
        result += std::to_string(store.alpha(subType).count) + " " + SubTypeName(subType) + ", ";
    }
    result += "channel names; " + std::to_string(DisplayListTotal(store)) + " display lists, " +
              std::to_string(store.groups.userGroupCount) + " user groups, " +
              std::to_string(store.templates.templateCount) + " button templates";
    PrintResult(result, toStandardOutput);
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
