#pragma once

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "files/configuration_file.h"
#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth::cli {

// Exit codes shared by every lumeth-cli command.
enum class ExitCode : int {
    Ok = 0,
    Usage = 1,       // bad command line: message and usage on stderr
    BadInput = 2,    // missing, unreadable or invalid file: one line on stderr
    Unreachable = 3, // the server module cannot be reached or the link was lost
    WrongPassword = 4,
    Timeout = 5,     // timed out waiting for the server module
    Differs = 6,     // apply: the server module holds something other than FILE
    WriteFailed = 7, // an output file could not be written (space, permission)
    Conflict = 8,    // apply --base: the server module changed a part FILE changes too
};

int ToInt(ExitCode code);

// One command of the table main() dispatches on.
struct Command {
    const char* name;
    const char* arguments; // e.g. "FILE [--json]"
    const char* summary;
    int (*run)(const std::vector<std::string>& args);
};

const std::vector<Command>& Commands();
// Help for options shared by several commands, printed after the command list.
const char* CommandOptionsHelp();

// Usage text built from the command table.
void PrintUsage(std::ostream& out);
// "lumeth-cli: <message>" and the usage on stderr; returns ExitCode::Usage.
int UsageError(const std::string& message);
// One line on stderr; returns `code`.
int Error(ExitCode code, const std::string& line);

// One line on stderr naming the input `source` and what is wrong with it;
// returns ExitCode::BadInput.
int InputError(const std::string& source, const Status& status);

// "cannot write <path>: <why>" on stderr; returns ExitCode::WriteFailed.
int WriteError(const std::string& path, const Status& status);

// The arguments of a command that turns one FILE into one output file:
// FILE, -o OUT and the options named in `valued`, each with one value.
struct FileToOutput {
    std::string in;
    std::string out;
    std::map<std::string, std::string> options; // the `valued` options given
};
// Fails (the detail is the usage message) on an unknown option, a repeated
// one, a second FILE, or a missing FILE or -o OUT.
Status ParseFileToOutput(const std::string& command, const std::vector<std::string>& args,
                         const std::vector<std::string>& valued, FileToOutput& parsed);

// OUT given as "-": standard output, which takes the JSON document only.
inline constexpr const char* kStandardOutput = "-";
// The form of OUT: its extension (.dat or .json) chooses, standard output
// takes the JSON document; nothing for another name.
std::optional<ConfigurationForm> OutputForm(const std::string& out);
// The usage error for an OUT whose form OutputForm cannot tell.
int UnknownOutputForm(const std::string& out);

// The one line a command ends with: on stdout, or on stderr when stdout
// holds what the command wrote (OUT "-"). The progress line goes first.
void PrintResult(const std::string& line, bool toStandardError = false);

// Check `config`, then replace `path` with it atomically (a new file holding
// the password is readable by its owner only). Prints one line on failure and
// returns the exit code: BadInput naming `source` when the content cannot be
// written in that form, WriteFailed when the file cannot be written. A `path`
// of "-" writes to standard output instead.
int WriteConfigurationFile(const Configuration& config, ConfigurationForm form,
                           const std::string& path, const std::string& source);

// Display lists of all four sub types, for one-line summaries.
int DisplayListTotal(const PanelStore& store);

} // namespace lumeth::cli
