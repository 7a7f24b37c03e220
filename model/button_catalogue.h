#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// One programmable button function: its position in the template editor's
// type list, the 16-bit code stored in templates, files and on the wire, the
// long name for the type list, the short label under the button, and which
// channel table each of the button's two channel fields draws from.
struct ButtonFunction {
    int16_t index;
    int16_t code;
    std::string_view longName;
    std::string_view shortLabel;
    std::optional<SubType> channelSubType;
    std::optional<SubType> channel2SubType; // tally or listen channel; nullopt: unused
};

inline constexpr int kButtonFunctionCount = 16;
inline constexpr int16_t kInactiveButtonType = 16383;

// The fixed table of functions, in type-list order.
const std::array<ButtonFunction, kButtonFunctionCount>& ButtonCatalogue();

// The code at type-list position `index`; 16383 ("Inactive") outside 0..15.
int16_t GetButtonTypeFromIndex(int index);
// The type-list position of `code`; 0 ("Inactive") for a code not in the table.
int16_t GetButtonIndexFromType(int code);
// The catalogue row of `code`, or of "Inactive" for an unknown code.
const ButtonFunction& ButtonFunctionOf(int code);

// The system label of a button from its function code and channel: "None"
// without a channel, else the channel's name in the table the code range
// selects (0/40 Input, 150/800/810 Output, 1000..1012 Relay, 1100..1112 Opto),
// else "Unknown". A channel beyond that table's names yields "" and, when
// `status` is given, a SubscriptOutOfRange failure.
std::string SystemButtonLabel(const PanelStore& store, int code, int channel,
                              Status* status = nullptr);
// The system label of button `button` of template `templatePos`. A template
// or button position outside the arrays yields "" and SubscriptOutOfRange.
std::string GetButtonLabel(const PanelStore& store, int templatePos, int button,
                           Status* status = nullptr);

// A channel drop-down list: "Undefined" (channel 16383), then one entry per
// channel of `subType` in channel order, "MIC 1 [0001]"; the entry at position
// p stands for channel p - 1. Without a sub type only "Undefined".
std::vector<std::string> ChannelNameList(const PanelStore& store, std::optional<SubType> subType);

// The two channel lists for a function code; the second is disabled (holds
// only "Undefined") when the function has no second channel.
struct ChannelLists {
    std::vector<std::string> first;
    std::vector<std::string> second;
    bool secondEnabled = false;
};
ChannelLists ChannelListsForType(const PanelStore& store, int code);

// Position in a channel list for a channel value, and back.
int ChannelListPosition(int channel);   // 16383 -> 0, n -> n + 1
int16_t ChannelFromListPosition(int p); // 0 or negative (nothing selected) -> 16383

} // namespace lumeth
