#include "tools/cli/commands.h"
#include "tools/cli/cli_common.h"

namespace lumeth::cli {

const std::vector<Command>& Commands() {
    static const std::vector<Command> kCommands{
        {"show", "FILE [--json]", "list the configuration in FILE (--json: as a JSON document)",
         &RunShow},
        {"convert", "IN OUT", "convert IN to OUT (panel data file <-> JSON document)", &RunConvert},
        {"fetch", "-o OUT [server options]",
         "download everything from the server module into OUT (.json or .dat)", &RunFetch},
        {"apply",
         "FILE [--only PARTS] [--base BASE] [--no-verify] [--force]\n"
         "                          [--backup-dir DIR | --no-backup] [server options]",
         "send FILE's display lists, user groups and templates to the server\n"
         "                          module, read them back and compare (--no-verify: no "
         "read-back;\n"
         "                          --force: send even when check finds errors, but\n"
         "                          never a damaged file or more than the messages carry).\n"
         "                          --only: a comma list of input, output, opto, relay,\n"
         "                          groups, templates. --base: the configuration FILE was\n"
         "                          edited from; parts the server module changed since\n"
         "                          are not sent (exit 8 when FILE changes them too,\n"
         "                          unless --force). What the server module held is kept\n"
         "                          first in DIR (default the per-user data folder's\n"
         "                          backups/, newest 30)",
         &RunApply},
        {"set-password", "[--new-password-file FILE] [server options]",
         "store a new panel password in the server module", &RunSetPassword},
        {"crosspoints", "FILE -o OUT",
         "write the crosspoint map of FILE's Input and Output lists as CSV", &RunCrosspoints},
        {"diff", "A B [server options]",
         "list how B differs from A (files or \"server\"); exit 0 same, 1 different, 2+ error",
         &RunDiff},
        {"check", "FILE", "list FILE's problems; exit 0 none, 1 warnings only, 2 errors",
         &RunCheck},
        {"labels", "FILE -o OUT [--templates LIST]",
         "print FILE's button templates as a label sheet PDF (LIST: the template\n"
         "                          numbers, e.g. 1,3-5; default all)",
         &RunLabels},
        {"backups", "[DIR]",
         "list the backups apply keeps (default: the per-user data folder's backups/)",
         &RunBackups},
        {"where", "FILE KIND KEY",
         "list what uses channel KEY (Ch.NNNN) or display list KEY (Lst.NNN) of\n"
         "                          KIND input, output, opto or relay: the lists and template\n"
         "                          keys holding a channel, the user groups holding a list;\n"
         "                          exit 0 used, 1 not used, 2 bad input",
         &RunWhere},
        {"export-csv", "FILE -o DIR",
         "write FILE's display lists, user groups and templates as\n"
         "                          DIR/display_lists.csv, user_groups.csv and templates.csv",
         &RunExportCsv},
        {"import-csv", "DIR -o OUT", "build OUT (.json or .dat) from the three CSV files in DIR",
         &RunImportCsv},
    };
    return kCommands;
}

const char* CommandOptionsHelp() {
    return "\nserver options (fetch, apply, set-password, diff):\n"
           "  --server HOST[:PORT]    the server module (default 127.0.0.1:1250)\n"
           "  --timeout S             seconds to wait for the server module (default 10)\n"
           "  --password-file FILE    the panel password is FILE's first line; without it\n"
           "                          LUMETH_PASSWORD, or asked on the terminal. Passwords\n"
           "                          are never given as arguments and never printed.\n"
           "  --home DIR              folder for Errorlog.txt (default: the per-user data\n"
           "                          folder, ~/.local/share/KOV/Lumeth Admin/)\n"
           "  --verbose               print every step on a line of its own (on a terminal\n"
           "                          one line shows the step under way; otherwise only\n"
           "                          errors and the result are printed)\n"
           "  The new password of set-password comes from --new-password-file FILE,\n"
           "  LUMETH_NEW_PASSWORD, or is asked on the terminal.\n";
}

} // namespace lumeth::cli
