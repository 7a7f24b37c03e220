#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

// convert IN OUT: nothing is written unless IN was read completely and OUT's
// content could be built, and OUT is replaced atomically. Channel names and
// the password of a JSON document have no place in a panel data file and are
// left out of one. OUT "-" is the JSON document on stdout.
int RunConvert(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        return UsageError("convert needs IN and OUT");
    }
    const std::string& in = args[0];
    const std::string& out = args[1];
    const auto form = OutputForm(out);
    if (!form) {
        return UnknownOutputForm(out);
    }

    const Configuration config = ReadConfiguration(in);
    if (!config.status) {
        return InputError(in, config.status);
    }
    return WriteConfigurationFile(config, *form, out, in);
}

} // namespace lumeth::cli
