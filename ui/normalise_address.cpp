#include "ui/normalise_address.h"

#include <algorithm>
#include <array>

#include "files/settings.h"

namespace lumeth {

namespace {
constexpr int kBackspace = 8;
}

bool NormaliseAddress(std::string_view text, std::string& normalised) {
    const size_t first = text.find('.');
    if (first == std::string_view::npos)
        return false;
    const size_t second = text.find('.', first + 1);
    if (second == std::string_view::npos)
        return false;
    const size_t third = text.find('.', second + 1);
    if (third == std::string_view::npos)
        return false;

    const std::array<std::string_view, 4> parts{
        text.substr(0, first), text.substr(first + 1, second - first - 1),
        text.substr(second + 1, third - second - 1), text.substr(third + 1)};
    std::string result;
    for (size_t i = 0; i < parts.size(); ++i) {
        const int32_t value = std::clamp<int32_t>(LeadingNumber(parts[i]), 0, 255);
        if (i > 0)
            result += '.';
        result += std::to_string(value);
    }
    normalised = std::move(result);
    return true;
}

bool AcceptsAddressKey(int code) {
    return (code >= '0' && code <= '9') || code == '.' || code == kBackspace;
}

bool AcceptsNumberKey(int code) {
    return (code >= 47 && code <= 57) || code == kBackspace;
}

} // namespace lumeth
