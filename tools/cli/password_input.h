#pragma once

#include <optional>
#include <string>

#include "model/failure.h"

namespace lumeth::cli {

// Where a password comes from, in this order: a file named on the command
// line, the environment variable, a prompt on the terminal without echo.
// Passwords are never taken from the command line itself, where other users
// could read them in the process list.
struct PasswordSource {
    std::optional<std::string> file; // --password-file / --new-password-file
    const char* environmentVariable = "LUMETH_PASSWORD";
    const char* prompt = "Password: ";
    const char* fileOption = "--password-file"; // named when there is no password
};

struct PasswordResult {
    std::optional<std::string> password; // UTF-8 text as read
    Status status;                       // fails when there is no password, naming what to do
};

PasswordResult ReadPassword(const PasswordSource& source);

// The password's bytes on the link: the text through the same Windows-1252
// table as the window's password boxes.
std::string PasswordBytes(const std::string& utf8);

// For a password about to be stored in the server module: fails, saying why
// in one line, unless the set-password message carries `utf8` whole. A character outside the table,
// or one that becomes a byte at or above 0x80, cannot cross the link; a control character cannot be
// typed at the window's login.
Status CheckNewPassword(const std::string& utf8);

} // namespace lumeth::cli
