#include "model/view_keys.h"

#include "model/number_text.h"

namespace lumeth {

std::string GroupKey(int userGroupIndex) {
    return "Gr." + ZeroPadded(userGroupIndex + 1, 3);
}
std::string ListKey(int position) {
    return "Lst." + ZeroPadded(position, 3);
}
std::string ChannelKey(int channel) {
    return "Ch." + ZeroPadded(channel + 1, 4);
}

std::string GroupEntryKey(SubType subType, int position) {
    return std::string(SubTypeName(subType)) + "." + ZeroPadded(position + 1, 4);
}

int KeyNumber(std::string_view key) {
    return LeadingNumber(key.size() > 3 ? key.substr(key.size() - 3) : key);
}

int KeyEntryNumber(std::string_view key) {
    const size_t dot = key.rfind('.');
    return LeadingNumber(dot == std::string_view::npos ? key : key.substr(dot + 1)) - 1;
}

} // namespace lumeth
