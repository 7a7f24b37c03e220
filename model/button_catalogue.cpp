#include "model/button_catalogue.h"

#include "model/limits.h"
#include "model/number_text.h"

namespace lumeth {

namespace {

constexpr auto kIn = SubType::Input;
constexpr auto kOut = SubType::Output;
constexpr auto kOpto = SubType::Opto;
constexpr auto kRelay = SubType::Relay;
constexpr std::optional<SubType> kNone = std::nullopt;

// The codes are sparse and not in list order ("Console Source Select" is 0,
// "Inactive" 16383), and the tally variants step by odd amounts; panels in the
// field store these exact values.
constexpr std::array<ButtonFunction, kButtonFunctionCount> kCatalogue{{
    {0, 16383, "Inactive", "Inactive", kNone, kNone},
    {1, 40, "Source Select", "SrcSel", kIn, kNone},
    {2, 150, "Talk", "Talk", kOut, kNone},
    {3, 800, "Output Select", "OutSel", kOut, kNone},
    {4, 810, "Output Select W/Listen", "OutSel", kOut, kIn},
    {5, 0, "Console Source Select", "CnsSrc", kIn, kNone},
    {6, 1000, "Relay Toggle", "RlyTgl", kRelay, kNone},
    {7, 1002, "Relay Momentary", "RlyMom", kRelay, kNone},
    {8, 1010, "Relay Toggle - Opto Tally", "RlyTgl", kRelay, kOpto},
    {9, 1012, "Relay Momentary - Opto Tally", "RlyMom", kRelay, kOpto},
    {10, 1100, "Opto Toggle", "OptoTgl", kOpto, kNone},
    {11, 1102, "Opto Momentary", "OptoMom", kOpto, kNone},
    {12, 1105, "Opto Toggle - Opto Tally", "OptoTgl", kOpto, kOpto},
    {13, 1107, "Opto Momentary - Opto Tally", "OptoMom", kOpto, kOpto},
    {14, 1110, "Opto Toggle - Relay Tally", "OptoTgl", kOpto, kRelay},
    {15, 1112, "Opto Momentary - Relay Tally", "OptoMom", kOpto, kRelay},
}};

// Which channel table the system label reads. These are range tests on the
// code, not catalogue lookups, so e.g. 1004 counts as a relay function.
std::optional<SubType> LabelSubType(int code) {
    if (code == 0 || code == 40) {
        return SubType::Input;
    }
    if (code == 150 || code == 800 || code == 810) {
        return SubType::Output;
    }
    if (code >= 1000 && code <= 1012) {
        return SubType::Relay;
    }
    if (code >= 1100 && code <= 1112) {
        return SubType::Opto;
    }
    return std::nullopt;
}

void SetStatus(Status* status, Status value) {
    if (status != nullptr) {
        *status = std::move(value);
    }
}

} // namespace

const std::array<ButtonFunction, kButtonFunctionCount>& ButtonCatalogue() {
    return kCatalogue;
}

int16_t GetButtonTypeFromIndex(int index) {
    if (index < 0 || index >= kButtonFunctionCount) {
        return kInactiveButtonType;
    }
    return kCatalogue[static_cast<size_t>(index)].code;
}

int16_t GetButtonIndexFromType(int code) {
    for (const ButtonFunction& f : kCatalogue) {
        if (f.code == code) {
            return f.index;
        }
    }
    return 0;
}

const ButtonFunction& ButtonFunctionOf(int code) {
    return kCatalogue[static_cast<size_t>(GetButtonIndexFromType(code))];
}

std::string SystemButtonLabel(const PanelStore& store, int code, int channel, Status* status) {
    SetStatus(status, Status::Ok());
    if (channel == kNoChannel) {
        return "None";
    }
    const std::optional<SubType> sub = LabelSubType(code);
    if (!sub) {
        return "Unknown";
    }
    const std::vector<std::string>& names = store.alpha(*sub).channelNames;
    if (channel < 0 || static_cast<size_t>(channel) >= names.size()) {
        SetStatus(status, Status::Fail(ErrorCode::SubscriptOutOfRange,
                                       std::string(SubTypeName(*sub)) + " channel " +
                                           std::to_string(channel) + " has no name"));
        return {};
    }
    return names[static_cast<size_t>(channel)];
}

std::string GetButtonLabel(const PanelStore& store, int templatePos, int button, Status* status) {
    if (templatePos < 0 ||
        static_cast<size_t>(templatePos) >= store.templates.buttonTemplates.size()) {
        SetStatus(status, Status::Fail(ErrorCode::SubscriptOutOfRange,
                                       "template " + std::to_string(templatePos)));
        return {};
    }
    const std::vector<PanelButton>& buttons =
        store.templates.buttonTemplates[static_cast<size_t>(templatePos)].buttons;
    if (button < 0 || static_cast<size_t>(button) >= buttons.size()) {
        SetStatus(status,
                  Status::Fail(ErrorCode::SubscriptOutOfRange, "button " + std::to_string(button)));
        return {};
    }
    const PanelButton& b = buttons[static_cast<size_t>(button)];
    return SystemButtonLabel(store, b.type, b.channel, status);
}

std::vector<std::string> ChannelNameList(const PanelStore& store, std::optional<SubType> subType) {
    std::vector<std::string> list{"Undefined"};
    if (!subType) {
        return list;
    }
    const AlphaTable& table = store.alpha(*subType);
    const int count = ValidCount(table.count);
    list.reserve(static_cast<size_t>(count) + 1);
    for (int n = 0; n < count; ++n) {
        const std::string& name = RefAt(table.channelNames, n);
        list.push_back(name + " [" + ZeroPadded(n + 1, 4) + "]");
    }
    return list;
}

ChannelLists ChannelListsForType(const PanelStore& store, int code) {
    const ButtonFunction& f = ButtonFunctionOf(code);
    ChannelLists lists;
    lists.first = ChannelNameList(store, f.channelSubType);
    lists.second = ChannelNameList(store, f.channel2SubType);
    lists.secondEnabled = f.channel2SubType.has_value();
    return lists;
}

int ChannelListPosition(int channel) {
    return channel == kNoChannel ? 0 : channel + 1;
}

int16_t ChannelFromListPosition(int p) {
    return p <= 0 ? kNoChannel : static_cast<int16_t>(p - 1);
}

} // namespace lumeth
