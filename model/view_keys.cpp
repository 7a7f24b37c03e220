#include "model/view_keys.h"

#include <cstdio>

#include "model/leading_number.h"

namespace lumeth {

namespace {
std::string Keyed(const char* prefix, int width, int value) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%0*d", width, value);
    return prefix + std::string(digits);
}
} // namespace

std::string GroupKey(int userGroupIndex) {
    return Keyed("Gr.", 3, userGroupIndex + 1);
}
std::string ListKey(int position) {
    return Keyed("Lst.", 3, position);
}
std::string ChannelKey(int channel) {
    return Keyed("Ch.", 4, channel + 1);
}

std::string GroupEntryKey(SubType subType, int position) {
    return Keyed((std::string(SubTypeName(subType)) + ".").c_str(), 4, position + 1);
}

int KeyNumber(std::string_view key) {
    return LeadingNumber(key.size() > 3 ? key.substr(key.size() - 3) : key);
}

int KeyEntryNumber(std::string_view key) {
    const size_t dot = key.rfind('.');
    return LeadingNumber(dot == std::string_view::npos ? key : key.substr(dot + 1)) - 1;
}

} // namespace lumeth
