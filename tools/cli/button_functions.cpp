#include "tools/cli/button_functions.h"

#include <array>

namespace lumeth::cli {

namespace {
constexpr auto In = SubType::Input;
constexpr auto Out = SubType::Output;
constexpr auto Opto = SubType::Opto;
constexpr auto Relay = SubType::Relay;

const std::array<ButtonFunction, 16> kFunctions{{
    {16383, "Inactive", std::nullopt, std::nullopt},
    {40, "Source Select", In, std::nullopt},
    {150, "Talk", Out, std::nullopt},
    {800, "Output Select", Out, std::nullopt},
    {810, "Output Select W/Listen", Out, In},
    {0, "Console Source Select", In, std::nullopt},
    {1000, "Relay Toggle", Relay, std::nullopt},
    {1002, "Relay Momentary", Relay, std::nullopt},
    {1010, "Relay Toggle - Opto Tally", Relay, Opto},
    {1012, "Relay Momentary - Opto Tally", Relay, Opto},
    {1100, "Opto Toggle", Opto, std::nullopt},
    {1102, "Opto Momentary", Opto, std::nullopt},
    {1105, "Opto Toggle - Opto Tally", Opto, Opto},
    {1107, "Opto Momentary - Opto Tally", Opto, Opto},
    {1110, "Opto Toggle - Relay Tally", Opto, Relay},
    {1112, "Opto Momentary - Relay Tally", Opto, Relay},
}};
} // namespace

const ButtonFunction* FindButtonFunction(int16_t code) {
    for (const ButtonFunction& f : kFunctions) {
        if (f.code == code) {
            return &f;
        }
    }
    return nullptr;
}

} // namespace lumeth::cli
