#include "model/sub_type.h"

namespace lumeth {

namespace {

constexpr const char* kSubTypeNames[kSubTypeCount] = {"Input", "Output", "Opto", "Relay"};

// The sub type whose code `codeOf` gives `code`.
template <typename CodeOf> std::optional<SubType> FindSubType(int code, CodeOf codeOf) {
    for (SubType s : kAllSubTypes)
        if (codeOf(s) == code)
            return s;
    return std::nullopt;
}

} // namespace

std::optional<SubType> SubTypeFromAlphaCode(int code) {
    return FindSubType(code, AlphaTypeCode);
}

std::optional<SubType> SubTypeFromListCode(int code) {
    return FindSubType(code, ListTypeCode);
}

const char* SubTypeName(SubType s) {
    return Index(s) < kSubTypeCount ? kSubTypeNames[Index(s)] : "";
}

} // namespace lumeth
