#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// A fixed protocol line for the error log ("Message Length Error").
struct LogLine {
    std::string message;
    std::string location;
};
// A failure under the error-report convention.
struct ErrorReport {
    std::string location;
    std::string category;
    Failure failure;
};
using Problem = std::variant<LogLine, ErrorReport>;

// The decoded content of one part: the password text, the alpha table or the
// display lists of the part's sub type, the user groups or the templates.
using PartValue = std::variant<std::monostate, std::string, AlphaTable, DisplayListTable,
                               UserGroupTable, TemplateTable>;

// What one received frame amounts to. Decoding never touches a store: the
// owner applies the value (the session to its store and pending masks, the
// emulator to its state after checking an upload).
struct Decoded {
    // Written out so that making one does not zero the whole value first
    // (the implicit constructor does, which a stream of small frames notices).
    Decoded() {}

    // The part `value` belongs to.
    Part part = Part::Password;
    // Empty when the frame leaves the store as it was. Set with `complete`
    // false when a damaged frame still replaces what was read before the
    // damage (user groups and templates are taken as they are read; an alpha
    // table with a channel number out of range keeps its channel-order names).
    PartValue value;
    // The part arrived intact: its request bit is cleared and it is reported.
    bool complete = false;
    // Ask for this part alone again.
    std::optional<Part> again;
    // The server's identity query: answer it and ask for everything.
    bool identityQuery = false;
    // What to log and report, in the order it was found.
    std::vector<Problem> problems;
};

// Put a decoded part into `store`: an alpha table or display lists replace
// those of the part's sub type, user groups and templates replace the whole
// table. The password and an empty value leave the store alone.
void StorePart(PanelStore& store, Part part, PartValue&& value);

} // namespace lumeth
