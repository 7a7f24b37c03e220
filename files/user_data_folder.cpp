#include "files/user_data_folder.h"

#include <cstdlib>

namespace lumeth {

namespace {

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

} // namespace

std::string UserDataFolder() {
    // A relative XDG_DATA_HOME is invalid and ignored, as the XDG base
    // directory rules say.
    std::string base = Environment("XDG_DATA_HOME");
    if (base.empty() || base.front() != '/') {
        base = Environment("HOME") + "/.local/share";
    }
    if (base.back() != '/') {
        base += '/';
    }
    return base + std::string(kDataOrganisation) + "/" + std::string(kDataApplication) + "/";
}

} // namespace lumeth
