#include "model/button_catalogue.h"

#include <gtest/gtest.h>

#include "model/alpha_sort.h"

namespace lumeth {
namespace {

// Names out of alphabetical order, so that sorted order and channel order differ.
PanelStore StoreWithAlphas() {
    PanelStore store;
    store.ResetToDefaults();
    BuildAlphaTable(store.alpha(SubType::Input), {"MIC 1", "CD 2", "AUX"});
    BuildAlphaTable(store.alpha(SubType::Output), {"PGM", "AUD"});
    BuildAlphaTable(store.alpha(SubType::Opto), {"ON AIR", "DOOR"});
    BuildAlphaTable(store.alpha(SubType::Relay), {"LIGHT", "BELL", "FAN"});
    return store;
}

// All sixteen rows: type-list position, code, long name, short label and the
// table each channel list draws from (seen through the first channel's name).
TEST(ButtonCatalogue, EveryRowWithItsNamesAndChannelTables) {
    const PanelStore store = StoreWithAlphas();
    struct Row {
        int16_t code;
        const char* longName;
        const char* shortLabel;
        const char* first;  // entry 1 of the channel list; nullptr: only "Undefined"
        const char* second; // the same for the second channel
    };
    const char* in = "MIC 1 [0001]";
    const char* out = "PGM [0001]";
    const char* opto = "ON AIR [0001]";
    const char* relay = "LIGHT [0001]";
    const Row rows[kButtonFunctionCount] = {
        {16383, "Inactive", "Inactive", nullptr, nullptr},
        {40, "Source Select", "SrcSel", in, nullptr},
        {150, "Talk", "Talk", out, nullptr},
        {800, "Output Select", "OutSel", out, nullptr},
        {810, "Output Select W/Listen", "OutSel", out, in},
        {0, "Console Source Select", "CnsSrc", in, nullptr},
        {1000, "Relay Toggle", "RlyTgl", relay, nullptr},
        {1002, "Relay Momentary", "RlyMom", relay, nullptr},
        {1010, "Relay Toggle - Opto Tally", "RlyTgl", relay, opto},
        {1012, "Relay Momentary - Opto Tally", "RlyMom", relay, opto},
        {1100, "Opto Toggle", "OptoTgl", opto, nullptr},
        {1102, "Opto Momentary", "OptoMom", opto, nullptr},
        {1105, "Opto Toggle - Opto Tally", "OptoTgl", opto, opto},
        {1107, "Opto Momentary - Opto Tally", "OptoMom", opto, opto},
        {1110, "Opto Toggle - Relay Tally", "OptoTgl", opto, relay},
        {1112, "Opto Momentary - Relay Tally", "OptoMom", opto, relay},
    };
    const auto expectList = [](const std::vector<std::string>& list, const char* entry) {
        if (entry == nullptr) {
            EXPECT_EQ(list, std::vector<std::string>{"Undefined"});
        } else {
            ASSERT_GT(list.size(), 1u);
            EXPECT_EQ(list[1], entry);
        }
    };
    for (int i = 0; i < kButtonFunctionCount; ++i) {
        const Row& row = rows[i];
        SCOPED_TRACE(row.longName);
        EXPECT_EQ(GetButtonTypeFromIndex(i), row.code);
        EXPECT_EQ(GetButtonIndexFromType(row.code), i);
        const ButtonFunction& f = ButtonCatalogue()[static_cast<size_t>(i)];
        EXPECT_EQ(f.index, i);
        EXPECT_EQ(f.code, row.code);
        EXPECT_EQ(f.longName, row.longName);
        EXPECT_EQ(f.shortLabel, row.shortLabel);
        const ChannelLists lists = ChannelListsForType(store, row.code);
        expectList(lists.first, row.first);
        expectList(lists.second, row.second);
        EXPECT_EQ(lists.secondEnabled, row.second != nullptr);
    }
    // Positions outside the list and codes outside the table mean "Inactive".
    for (int index : {-1, 16, -32768}) {
        EXPECT_EQ(GetButtonTypeFromIndex(index), 16383) << index;
    }
    for (int code : {1004, 1, 41, -1, 1101, 32767}) {
        EXPECT_EQ(GetButtonIndexFromType(code), 0) << code;
    }
}

TEST(ButtonLabel, CodeRangeSelectsTheTableAndChannelTheName) {
    const PanelStore store = StoreWithAlphas();
    struct Case {
        int code, channel;
        const char* label;
    };
    const Case cases[] = {
        {40, 16383, "None"},  {16383, 16383, "None"}, {16383, 1, "Unknown"},
        {0, 0, "MIC 1"},      {40, 1, "CD 2"},        {150, 0, "PGM"},
        {810, 1, "AUD"},      {1000, 2, "FAN"},       {1004, 1, "BELL"}, // a range, not a lookup
        {1012, 0, "LIGHT"},   {1100, 1, "DOOR"},      {1112, 0, "ON AIR"},
        {1, 0, "Unknown"},    {151, 0, "Unknown"},    {999, 0, "Unknown"},
        {1013, 0, "Unknown"}, {1099, 0, "Unknown"},   {1113, 0, "Unknown"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(SystemButtonLabel(store, c.code, c.channel), c.label)
            << c.code << "/" << c.channel;
    }
    Status st;
    for (int channel : {3, -2}) {
        EXPECT_EQ(SystemButtonLabel(store, 40, channel, &st), "");
        EXPECT_EQ(st.failure().code, ErrorCode::SubscriptOutOfRange);
    }
}

TEST(ChannelLists, EntriesFollowChannelOrderWithFourDigitNumbers) {
    const PanelStore store = StoreWithAlphas();
    EXPECT_EQ(ChannelNameList(store, SubType::Input),
              (std::vector<std::string>{"Undefined", "MIC 1 [0001]", "CD 2 [0002]", "AUX [0003]"}));
    EXPECT_EQ(ChannelNameList(store, std::nullopt), (std::vector<std::string>{"Undefined"}));
    EXPECT_EQ(ChannelNameList(PanelStore{}, SubType::Relay),
              (std::vector<std::string>{"Undefined"}));

    PanelStore big;
    BuildAlphaTable(big.alpha(SubType::Output), std::vector<std::string>(10000, "X"));
    const auto list = ChannelNameList(big, SubType::Output);
    ASSERT_EQ(list.size(), 10001u);
    EXPECT_EQ(list[9999], "X [9999]");
    EXPECT_EQ(list[10000], "X [10000]");
}

} // namespace
} // namespace lumeth
