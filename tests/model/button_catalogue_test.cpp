#include "model/button_catalogue.h"

#include <gtest/gtest.h>

#include <set>

#include "model/alpha_sort.h"

namespace lumeth {
namespace {

TEST(ButtonCatalogue, CodesByTypeListPositionAndFallbacks) {
    // Codes as stored by panels in the field, by type-list position.
    const int16_t expected[16] = {16383, 40,   150,  800,  810,  0,    1000, 1002,
                                  1010,  1012, 1100, 1102, 1105, 1107, 1110, 1112};
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(GetButtonTypeFromIndex(i), expected[i]) << i;
        EXPECT_EQ(GetButtonIndexFromType(expected[i]), i) << expected[i];
    }
    // Out-of-range positions and unknown codes fall back to Inactive.
    for (int index : {-1, 16, -32768}) {
        EXPECT_EQ(GetButtonTypeFromIndex(index), 16383) << index;
    }
    for (int code : {1004, 1, 41, -1, 1101, 32767}) {
        EXPECT_EQ(GetButtonIndexFromType(code), 0) << code;
    }
    EXPECT_EQ(ButtonFunctionOf(1004).longName, "Inactive");
}

TEST(ButtonCatalogue, NamesAreUniqueAndLabelsFitEightCharacters) {
    std::set<std::string_view> longNames;
    for (const ButtonFunction& f : ButtonCatalogue()) {
        longNames.insert(f.longName);
        EXPECT_LE(f.shortLabel.size(), 8u) << f.longName;
    }
    EXPECT_EQ(longNames.size(), 16u);
    EXPECT_EQ(ButtonFunctionOf(810).longName, "Output Select W/Listen");
    EXPECT_EQ(ButtonFunctionOf(0).shortLabel, "CnsSrc");
    // Tally variants show the label of their plain variant.
    EXPECT_EQ(ButtonFunctionOf(1010).shortLabel, ButtonFunctionOf(1000).shortLabel);
    EXPECT_EQ(ButtonFunctionOf(1112).shortLabel, "OptoMom");
}

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

TEST(ButtonLabel, ReadsTheButtonOfTheTemplate) {
    PanelStore store = StoreWithAlphas();
    store.ResizeTemplates(2);
    store.templateCount = 2;
    ButtonTemplate& t = store.buttonTemplates[1];
    t.buttonCount = 2;
    t.buttons.assign(2, PanelButton::Cleared());
    t.buttons[1].type = 1010; // Relay Toggle - Opto Tally
    t.buttons[1].channel = 1;

    Status st;
    EXPECT_EQ(GetButtonLabel(store, 1, 1, &st), "BELL");
    EXPECT_TRUE(st.ok());
    EXPECT_EQ(GetButtonLabel(store, 1, 0, &st), "None");
    for (auto [pos, button] : {std::pair{2, 0}, std::pair{1, 2}}) {
        EXPECT_EQ(GetButtonLabel(store, pos, button, &st), "");
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

TEST(ChannelLists, EachFieldDrawsFromItsOwnTable) {
    const PanelStore store = StoreWithAlphas();
    const ChannelLists relayOpto = ChannelListsForType(store, 1010);
    EXPECT_EQ(relayOpto.first[1], "LIGHT [0001]");
    EXPECT_EQ(relayOpto.second[1], "ON AIR [0001]");
    EXPECT_TRUE(relayOpto.secondEnabled);

    const ChannelLists optoRelay = ChannelListsForType(store, 1110);
    EXPECT_EQ(optoRelay.first[2], "DOOR [0002]");
    EXPECT_EQ(optoRelay.second[3], "FAN [0003]");

    const ChannelLists listen = ChannelListsForType(store, 810);
    EXPECT_EQ(listen.first[1], "PGM [0001]");
    EXPECT_EQ(listen.second[1], "MIC 1 [0001]");

    const ChannelLists single = ChannelListsForType(store, 1000);
    EXPECT_EQ(single.first.size(), 4u);
    EXPECT_EQ(single.second, (std::vector<std::string>{"Undefined"}));
    EXPECT_FALSE(single.secondEnabled);
    EXPECT_EQ(ChannelListsForType(store, 16383).first, (std::vector<std::string>{"Undefined"}));
}

TEST(ChannelLists, PositionsStandForChannelMinusOne) {
    EXPECT_EQ(ChannelListPosition(16383), 0);
    EXPECT_EQ(ChannelFromListPosition(0), 16383);
    EXPECT_EQ(ChannelFromListPosition(-1), 16383);
    for (int ch : {0, 1, 57, 16382}) {
        EXPECT_EQ(ChannelListPosition(ch), ch + 1);
        EXPECT_EQ(ChannelFromListPosition(ChannelListPosition(ch)), ch);
    }
}

} // namespace
} // namespace lumeth
