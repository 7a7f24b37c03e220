#include "tools/cli/commands.h"
#include "tools/cli/cli_common.h"

namespace lumeth::cli {

const std::vector<Command>& Commands() {
    static const std::vector<Command> kCommands{
        {"show", "FILE [--json]", "list the configuration in FILE (--json: as a JSON document)",
         &RunShow},
        {"convert", "IN OUT", "convert IN to OUT (panel data file <-> JSON document)", &RunConvert},
    };
    return kCommands;
}

} // namespace lumeth::cli
