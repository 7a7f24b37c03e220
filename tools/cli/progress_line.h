#pragma once

#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace lumeth::cli {

// How much a command says on stderr while it works. Errors and the result
// are printed in every mode.
enum class ProgressMode {
    Quiet,   // off a terminal: nothing while it works
    InPlace, // on a terminal: one line, rewritten as the work goes on
    Verbose, // --verbose: every step on a line of its own
};

// InPlace when stderr is a terminal (not a "dumb" one), else Quiet; Verbose
// when asked for.
// LUMETH_CLI_TTY=1 (or 0) says whether stderr counts as a terminal, for
// scripts and tests that capture it.
ProgressMode ChooseProgressMode(bool verbose);
// The columns of the terminal on stderr (COLUMNS, else 80, when it cannot
// be asked).
size_t TerminalColumns();

// What a command is doing, told in its mode. On a terminal the line is
// rewritten in place ("\r", the text, clear to the end of the line) and
// cleared before anything else is printed, so a result or an error always
// starts at the beginning of a line.
class ProgressLine {
public:
    ProgressLine(std::ostream& out, ProgressMode mode, size_t columns);

    // The step now under way.
    void Step(std::string_view text);
    // A line every mode shows: the progress line goes first.
    void Line(std::string_view text);
    // Take the progress line off the terminal (nothing in the other modes).
    void Clear();

    ProgressMode mode() const { return m_mode; }
    void setMode(ProgressMode mode, size_t columns);

private:
    std::ostream& m_out;
    ProgressMode m_mode;
    size_t m_columns;
    bool m_shown = false; // a progress line is on the terminal
};

// The reporter of this process: stderr, Quiet until a command chooses.
ProgressLine& Progress();

} // namespace lumeth::cli
