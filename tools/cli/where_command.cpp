#include <algorithm>
#include <array>
#include <charconv>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "files/configuration_file.h"
#include "model/cp1252.h"
#include "model/record_names.h"
#include "model/where_used.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

namespace {

// Exit codes of where.
constexpr int kUsed = 0;
constexpr int kUnused = 1;
constexpr int kBadInput = 2;

std::optional<SubType> KindNamed(std::string kind) {
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    constexpr std::array<std::string_view, kSubTypeCount> kKinds{"input", "output", "opto",
                                                                 "relay"};
    for (size_t i = 0; i < kKinds.size(); ++i)
        if (kind == kKinds[i])
            return kAllSubTypes[i];
    return std::nullopt;
}

// The number after `prefix` in `key` ("Ch.0013" gives 13), when all of the
// rest is decimal digits.
std::optional<int> KeyDigits(std::string_view key, std::string_view prefix) {
    if (!key.starts_with(prefix) || key.size() == prefix.size())
        return std::nullopt;
    key.remove_prefix(prefix.size());
    int number = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), number);
    if (error != std::errc() || end != key.data() + key.size())
        return std::nullopt;
    return number;
}

int BadInput(const std::string& line) {
    return Error(static_cast<ExitCode>(kBadInput), line);
}

int Report(const PanelStore& store, const std::string& subject,
           const std::vector<StoreLocation>& uses) {
    for (const std::string& line : WhereUsedLines(store, subject, uses))
        std::cout << cp1252::ToUtf8(line) << "\n";
    return uses.empty() ? kUnused : kUsed;
}

} // namespace

// where FILE KIND KEY: what uses channel KEY (Ch.NNNN, as the window shows
// it) or display list KEY (Lst.NNN) of KIND. Exit 0 used, 1 unused, 2 bad
// input (arguments included).
int RunWhere(const std::vector<std::string>& args) {
    if (args.size() != 3 || args[0].starts_with("-")) {
        UsageError("where needs FILE KIND KEY");
        return kBadInput;
    }
    const std::optional<SubType> subType = KindNamed(args[1]);
    if (!subType)
        return BadInput("unknown KIND \"" + args[1] + "\" (expected input, output, opto or relay)");
    const std::optional<int> channelKey = KeyDigits(args[2], "Ch.");
    const std::optional<int> listKey = KeyDigits(args[2], "Lst.");
    // Channel keys count from 1 (Ch.0001 is channel 0); list keys from 0.
    if (!(channelKey && *channelKey >= 1 && *channelKey <= kMax14Bit) && !listKey)
        return BadInput("unknown KEY \"" + args[2] +
                        "\" (expected Ch.NNNN from Ch.0001, or Lst.NNN)");
    const Configuration config = ReadConfiguration(args[0]);
    if (!config.status)
        return InputError(args[0], config.status);
    const PanelStore& store = config.store;
    if (channelKey) {
        const int channel = *channelKey - 1;
        return Report(store, ChannelRecordName(store, *subType, channel),
                      ChannelUses(store, *subType, channel));
    }
    if (*listKey >= ValidCount(store.listCount(*subType)))
        return BadInput(args[0] + ": no " + ListRecordName(store, *subType, *listKey) + " (" +
                        std::to_string(ValidCount(store.listCount(*subType))) + " " +
                        SubTypeName(*subType) + " lists)");
    return Report(store, ListRecordName(store, *subType, *listKey),
                  ListUses(store, *subType, *listKey));
}

} // namespace lumeth::cli
