#include "files/csv_configuration.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// import-csv DIR -o OUT: the configuration the three CSV files in DIR hold,
// written as OUT (.json or .dat). A row that cannot be read back is named
// "DIR/FILE:LINE: reason" (exit 2) and nothing is written.
int RunImportCsv(const std::vector<std::string>& args) {
    FileToOutput parsed;
    if (const Status ok = ParseFileToOutput("import-csv", args, {}, parsed); !ok) {
        return UsageError(ok.failure().detail);
    }
    const auto form = FormForPath(parsed.out);
    if (!form) {
        return UsageError("cannot tell the form of " + parsed.out + " (use .dat or .json)");
    }
    Configuration config;
    config.form = *form;
    config.version = 3;
    config.store.ResetToDefaults();
    config.sections = kUploadParts;
    if (const Status read = ImportCsvFolder(parsed.in, config.store); !read) {
        return Error(ExitCode::BadInput, read.failure().detail);
    }
    return WriteConfigurationFile(config, *form, parsed.out, parsed.in);
}

} // namespace lumeth::cli
