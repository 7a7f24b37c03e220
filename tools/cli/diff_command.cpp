#include <iostream>

#include "model/cp1252.h"
#include "model/store_diff.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/server_arguments.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

namespace {

// Exit codes of diff, as diff(1) has them: usage and input errors are 2 (a
// missing password too: 1 would tell a script that the sides differ), the
// server module's failures keep their own codes (3 and up).
constexpr int kSame = 0;
constexpr int kDiffer = 1;
constexpr int kTrouble = 2;

constexpr const char* kServer = "server";

// Load one side: a file, or the server module's configuration when `source`
// is "server" (fetched once, however often it is named).
int LoadSide(const std::string& source, const ServerOptions& options,
             std::optional<PanelStore>& fetched, PanelStore& store) {
    if (source != kServer) {
        Configuration config = ReadConfiguration(source);
        if (!config.status)
            return InputError(source, config.status);
        store = std::move(config.store);
        return 0;
    }
    if (!fetched) {
        ServerClient client(options);
        // A missing password is trouble like diff's other usage errors: 1
        // says the sides differ.
        if (const int code = client.LogInAndDownload(); code != 0)
            return code == ToInt(ExitCode::Usage) ? kTrouble : code;
        client.Close();
        fetched = client.store();
    }
    store = *fetched;
    return 0;
}

} // namespace

// diff A B: how B differs from A, one change per line, as Review Changes
// shows it. A and B are panel data files, JSON documents or "server".
int RunDiff(const std::vector<std::string>& args) {
    ServerOptions options;
    std::vector<std::string> rest;
    if (const Status parsed = ParseServerOptions(args, options, rest); !parsed) {
        UsageError(parsed.failure().detail);
        return kTrouble;
    }
    if (rest.size() != 2 || rest[0].starts_with("-") || rest[1].starts_with("-")) {
        UsageError("diff needs two sources: FILE or server");
        return kTrouble;
    }
    std::optional<PanelStore> fetched;
    PanelStore before;
    PanelStore after;
    if (const int code = LoadSide(rest[0], options, fetched, before); code != 0)
        return code;
    if (const int code = LoadSide(rest[1], options, fetched, after); code != 0)
        return code;
    const std::vector<std::string> lines = DiffStores(before, after);
    if (lines.empty()) {
        std::cout << kNoChangesLine << "\n";
        return kSame;
    }
    for (const std::string& line : lines)
        std::cout << cp1252::ToUtf8(line) << "\n";
    return kDiffer;
}

} // namespace lumeth::cli
