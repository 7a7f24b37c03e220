#include "model/sub_type.h"

namespace lumeth {

std::optional<SubType> SubTypeFromAlphaCode(int code) {
    switch (code) {
    case 10:
        return SubType::Input;
    case 20:
        return SubType::Output;
    case 30:
        return SubType::Opto;
    case 40:
        return SubType::Relay;
    default:
        return std::nullopt;
    }
}

std::optional<SubType> SubTypeFromListCode(int code) {
    switch (code) {
    case 11:
        return SubType::Input;
    case 21:
        return SubType::Output;
    case 31:
        return SubType::Opto;
    case 41:
        return SubType::Relay;
    default:
        return std::nullopt;
    }
}

const char* SubTypeName(SubType s) {
    switch (s) {
    case SubType::Input:
        return "Input";
    case SubType::Output:
        return "Output";
    case SubType::Opto:
        return "Opto";
    case SubType::Relay:
        return "Relay";
    }
    return "";
}

} // namespace lumeth
