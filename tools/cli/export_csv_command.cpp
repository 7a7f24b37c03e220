#include "files/csv_configuration.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// export-csv FILE -o DIR: FILE's display lists, user groups and templates as
// DIR/display_lists.csv, user_groups.csv and templates.csv. All three are
// built before the first is written, each replaced atomically.
int RunExportCsv(const std::vector<std::string>& args) {
    FileToOutput parsed;
    if (const Status ok = ParseFileToOutput("export-csv", args, {}, parsed); !ok) {
        return UsageError(ok.failure().detail);
    }
    const Configuration config = ReadConfiguration(parsed.in);
    if (!config.status) {
        return InputError(parsed.in, config.status);
    }
    CsvTexts texts;
    if (const Status built = ExportCsv(config.store, texts); !built) {
        return InputError(parsed.in, built);
    }
    if (const Status written = WriteCsvFolder(parsed.out, texts); !written) {
        return Error(ExitCode::WriteFailed, "cannot write " + written.failure().detail);
    }
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
