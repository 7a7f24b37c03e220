#include "tools/cli/password_input.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include <termios.h>
#include <unistd.h>

#include "link/codec.h"
#include "model/cp1252.h"

namespace lumeth::cli {

namespace {

// Far more than the 127 bytes the link carries.
constexpr size_t kPasswordFileReadLimit = 4096;

// The first line, without its line end (a file written by an editor usually
// ends in a newline that is not part of the password).
std::string FirstLine(const std::string& text) {
    std::string line = text.substr(0, text.find('\n'));
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::optional<std::string> PromptWithoutEcho(const char* prompt) {
    if (::isatty(STDIN_FILENO) == 0) {
        return std::nullopt;
    }
    termios saved{};
    const bool haveTerminal = ::tcgetattr(STDIN_FILENO, &saved) == 0;
    if (haveTerminal) {
        termios quiet = saved;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        quiet.c_lflag |= ECHONL;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    std::cerr << prompt << std::flush;
    std::string line;
    const bool read = static_cast<bool>(std::getline(std::cin, line));
    if (haveTerminal) {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    }
    if (!read) {
        return std::nullopt;
    }
    return FirstLine(line);
}

} // namespace

PasswordResult ReadPassword(const PasswordSource& source) {
    PasswordResult result;
    if (source.file) {
        std::ifstream in(*source.file, std::ios::binary);
        if (!in) {
            result.status = Status::Fail(ErrorCode::PathFileAccessError,
                                         *source.file + ": cannot read the password file");
            return result;
        }
        // Only the first line counts: no more is read than a password can
        // take, so a file without line ends (/dev/zero) ends the reading too.
        std::string text(kPasswordFileReadLimit, '\0');
        in.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<size_t>(in.gcount()));
        result.password = FirstLine(text);
        return result;
    }
    if (const char* value = std::getenv(source.environmentVariable)) {
        result.password = std::string(value);
        return result;
    }
    result.password = PromptWithoutEcho(source.prompt);
    if (!result.password) {
        result.status =
            Status::Fail(ErrorCode::InvalidProcedureCall,
                         std::string("no password: give one with ") + source.fileOption +
                             " FILE, " + source.environmentVariable + ", or a terminal");
    }
    return result;
}

std::string PasswordBytes(const std::string& utf8) {
    return cp1252::FromUtf8(utf8);
}

Status CheckNewPassword(const std::string& utf8) {
    const std::string bytes = PasswordBytes(utf8);
    // A control character crosses the link but cannot be typed at the
    // window's login: the operators would be locked out.
    const bool printable = std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) != 0x7F;
    });
    if (printable && cp1252::ToUtf8(bytes) == utf8 && codec::PasswordFitsMessage(bytes)) {
        return Status::Ok();
    }
    return Status::Fail(ErrorCode::InvalidProcedureCall,
                        "the new password cannot be sent to the server module: it takes at "
                        "most 127 characters, each a letter, digit, blank or sign of plain ASCII");
}

} // namespace lumeth::cli
