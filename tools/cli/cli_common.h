#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "files/file_io.h"
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

// A panel configuration read from a file, with the optional parts a JSON
// document may carry.
struct Document {
    enum class Form { PanelData, Json };
    Form form = Form::PanelData;
    int version = 0; // panel data file version
    PanelStore store;
    bool hasAlphas = false;
    std::optional<std::string> password;
    // Fails naming the sections a JSON document leaves out (read as empty)
    // or a panel data file before version 3 has no place for (Opto, Relay).
    Status allSections;
};

// Read `path` as a panel data file or a JSON document, told apart by content:
// a JSON document starts with '{' (after blanks or a byte order mark). On
// failure returns false and sets `error` to "<path>: <what is wrong>".
bool LoadDocument(const std::string& path, Document& doc, std::string& error);

// The form an output file gets from its extension (.dat or .json, any case).
std::optional<Document::Form> FormForPath(const std::string& path);

// Whether `doc` can be written in `form` (a panel data file can hold channel
// numbers the JSON document does not allow); on failure `error` says why.
bool CheckEncodable(const Document& doc, Document::Form form, std::string& error);
// `doc` in `form`, piece by piece into `sink`; false when the sink failed.
bool EncodeDocument(const Document& doc, Document::Form form, const ByteSink& sink);
// Check `doc`, then replace `path` with it atomically (a new file holding the
// password is readable by its owner only). Prints one line on failure and
// returns the exit code: BadInput naming `source` when the content cannot be
// written in that form, WriteFailed when the file cannot be written.
int WriteDocumentFile(const Document& doc, Document::Form form, const std::string& path,
                      const std::string& source);

// Display lists of all four sub types, for one-line summaries.
int DisplayListTotal(const PanelStore& store);

} // namespace lumeth::cli
