#include "files/crosspoint_map.h"
#include "files/file_io.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// crosspoints FILE -o OUT: the crosspoint map of FILE's Input and Output
// display lists as CSV, the same file the list editor's export writes. OUT is
// replaced atomically and only when the whole map could be built.
int RunCrosspoints(const std::vector<std::string>& args) {
    FileToOutput parsed;
    if (const Status ok = ParseFileToOutput("crosspoints", args, {}, parsed); !ok) {
        return UsageError(ok.failure().detail);
    }
    const std::string& in = parsed.in;
    const std::string& out = parsed.out;

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
        return WriteError(out, written);
    }
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
