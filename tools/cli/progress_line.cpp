#include "tools/cli/progress_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <ostream>

namespace lumeth::cli {

namespace {

constexpr size_t kDefaultColumns = 80;
constexpr const char* kClearToEnd = "\x1b[K";

// `text` cut to at most `limit` bytes without splitting a UTF-8 character.
std::string_view CutTo(std::string_view text, size_t limit) {
    if (text.size() <= limit) {
        return text;
    }
    size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

} // namespace

ProgressMode ChooseProgressMode(bool verbose) {
    if (verbose) {
        return ProgressMode::Verbose;
    }
    const char* forced = std::getenv("LUMETH_CLI_TTY");
    if (forced != nullptr && *forced != '\0') {
        return std::string_view(forced) != "0" ? ProgressMode::InPlace : ProgressMode::Quiet;
    }
    // A terminal that cannot clear to the end of a line gets no progress line.
    const char* term = std::getenv("TERM");
    const bool terminal =
        ::isatty(STDERR_FILENO) == 1 && !(term != nullptr && std::string_view(term) == "dumb");
    return terminal ? ProgressMode::InPlace : ProgressMode::Quiet;
}

size_t TerminalColumns() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    if (const char* columns = std::getenv("COLUMNS"); columns != nullptr) {
        const long value = std::strtol(columns, nullptr, 10);
        if (value > 0) {
            return static_cast<size_t>(value);
        }
    }
    return kDefaultColumns;
}

ProgressLine::ProgressLine(std::ostream& out, ProgressMode mode, size_t columns)
    : m_out(out), m_mode(mode), m_columns(columns) {}

void ProgressLine::setMode(ProgressMode mode, size_t columns) {
    Clear();
    m_mode = mode;
    m_columns = columns;
}

void ProgressLine::Step(std::string_view text) {
    switch (m_mode) {
    case ProgressMode::Quiet:
        return;
    case ProgressMode::Verbose:
        m_out << text << "\n" << std::flush;
        return;
    case ProgressMode::InPlace:
        // A line longer than the terminal would wrap, and "\r" returns only
        // to the start of its last row: the rest would stay behind.
        m_out << "\r" << CutTo(text, m_columns > 1 ? m_columns - 1 : 1) << kClearToEnd
              << std::flush;
        m_shown = true;
        return;
    }
}

void ProgressLine::Line(std::string_view text) {
    Clear();
    m_out << text << "\n" << std::flush;
}

void ProgressLine::Clear() {
    if (m_shown) {
        m_out << "\r" << kClearToEnd << std::flush;
        m_shown = false;
    }
}

ProgressLine& Progress() {
    static ProgressLine progress(std::cerr, ProgressMode::Quiet, kDefaultColumns);
    return progress;
}

} // namespace lumeth::cli
