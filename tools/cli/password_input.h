#pragma once

#include <optional>
#include <string>

namespace lumeth::cli {

// Where a password comes from, in this order: a file named on the command
// line, the environment variable, a prompt on the terminal without echo.
// Passwords are never taken from the command line itself, where other users
// could read them in the process list.
struct PasswordSource {
    std::optional<std::string> file; // --password-file / --new-password-file
    const char* environmentVariable = "LUMETH_PASSWORD";
    const char* prompt = "Password: ";
};

struct PasswordResult {
    std::optional<std::string> password;
    std::string error; // set when there is no password; names what to do
};

PasswordResult ReadPassword(const PasswordSource& source);

} // namespace lumeth::cli
