#include "model/parts.h"

namespace lumeth {

static_assert([] {
    for (size_t i = 0; i < kPartCount; ++i)
        if (static_cast<size_t>(kParts[i].part) != i)
            return false;
    return true;
}());

std::string JoinPartNames(PartSet set) {
    std::string text;
    ForEachPart(set, [&](Part p) {
        if (!text.empty())
            text += ", ";
        text += PartName(p);
    });
    return text;
}

} // namespace lumeth
