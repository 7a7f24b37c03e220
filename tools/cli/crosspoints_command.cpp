#include "files/crosspoint_map.h"
#include "files/file_io.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// crosspoints FILE -o OUT: the crosspoint map of FILE's Input and Output
// display lists as CSV, the same file the list editor's export writes. OUT is
// replaced atomically and only when the whole map could be built.
int RunCrosspoints(const std::vector<std::string>& args) {
    std::string in;
    std::string out;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "-o") {
            if (i + 1 >= args.size() || !out.empty()) {
                return UsageError("crosspoints takes one -o OUT");
            }
            out = args[++i];
        } else if (!args[i].empty() && args[i][0] == '-') {
            return UsageError("unknown option " + args[i]);
        } else if (in.empty()) {
            in = args[i];
        } else {
            return UsageError("crosspoints takes one FILE");
        }
    }
    if (in.empty() || out.empty()) {
        return UsageError("crosspoints needs FILE and -o OUT");
    }

    const Configuration config = ReadConfiguration(in);
    if (!config.status) {
        return InputError(in, config.status);
    }
    std::string csv;
    if (const Status encoded = EncodeCrosspointMap(config.store, csv); !encoded) {
        return InputError(in, encoded);
    }
    const Status written = ReplaceFileContents(out, csv);
    if (!written) {
        return Error(ExitCode::WriteFailed,
                     "cannot write " + out + ": " + written.failure().detail);
    }
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
