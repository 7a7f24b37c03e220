#include "model/button_catalogue.h"

#include <gtest/gtest.h>

#include <set>

#include "model/alpha_sort.h"

namespace lumeth {
namespace {

TEST(ButtonCatalogue, CodesOfTheTypeListPositions) {
    // Codes as stored by panels in the field, by type-list position.
    const int16_t expected[16] = {16383, 40,   150,  800,  810,  0,    1000, 1002,
                                  1010,  1012, 1100, 1102, 1105, 1107, 1110, 1112};
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(GetButtonTypeFromIndex(i), expected[i]) << i;
        EXPECT_EQ(GetButtonIndexFromType(expected[i]), i) << expected[i];
        EXPECT_EQ(ButtonCatalogue()[static_cast<size_t>(i)].index, i);
    }
}

TEST(ButtonCatalogue, OutOfRangeIndexAndUnknownCodeFallBackToInactive) {
    for (int index : {-1, 16, 100, -32768}) {
        EXPECT_EQ(GetButtonTypeFromIndex(index), 16383) << index;
    }
    for (int code : {1004, 1, 41, 16383, -1, 1101, 32767}) {
        EXPECT_EQ(GetButtonIndexFromType(code), 0) << code;
    }
    EXPECT_EQ(GetButtonTypeFromIndex(GetButtonIndexFromType(1004)), 16383);
    EXPECT_EQ(ButtonFunctionOf(1004).longName, "Inactive");
}

TEST(ButtonCatalogue, NamesAndLabels) {
    std::set<std::string_view> longNames;
    for (const ButtonFunction& f : ButtonCatalogue()) {
        longNames.insert(f.longName);
        EXPECT_LE(f.shortLabel.size(), 8u) << f.longName;
    }
    EXPECT_EQ(longNames.size(), 16u);
    EXPECT_EQ(ButtonFunctionOf(810).longName, "Output Select W/Listen");
    EXPECT_EQ(ButtonFunctionOf(810).shortLabel, "OutSel");
    EXPECT_EQ(ButtonFunctionOf(0).longName, "Console Source Select");
    EXPECT_EQ(ButtonFunctionOf(0).shortLabel, "CnsSrc");
    EXPECT_EQ(ButtonFunctionOf(16383).shortLabel, "Inactive");
    EXPECT_EQ(ButtonFunctionOf(150).shortLabel, "Talk");
    // Tally variants show the label of their plain variant.
    EXPECT_EQ(ButtonFunctionOf(1010).shortLabel, ButtonFunctionOf(1000).shortLabel);
    EXPECT_EQ(ButtonFunctionOf(1012).shortLabel, "RlyMom");
    EXPECT_EQ(ButtonFunctionOf(1105).shortLabel, "OptoTgl");
    EXPECT_EQ(ButtonFunctionOf(1112).shortLabel, "OptoMom");
    EXPECT_EQ(ButtonFunctionOf(1110).longName, "Opto Toggle - Relay Tally");
}

// A store whose tables have names out of alphabetical order, so that sorted
// order and channel order differ.
PanelStore StoreWithAlphas() {
    PanelStore store;
    store.ResetToDefaults();
    BuildAlphaTable(store.alpha(SubType::Input), {"MIC 1", "CD 2", "AUX"});
    BuildAlphaTable(store.alpha(SubType::Output), {"PGM", "AUD"});
    BuildAlphaTable(store.alpha(SubType::Opto), {"ON AIR", "DOOR"});
    BuildAlphaTable(store.alpha(SubType::Relay), {"LIGHT", "BELL", "FAN"});
    return store;
}

TEST(ButtonLabel, ChannelAndCodeRangeSelectTheName) {
    const PanelStore store = StoreWithAlphas();
    EXPECT_EQ(SystemButtonLabel(store, 40, 16383), "None");
    EXPECT_EQ(SystemButtonLabel(store, 16383, 16383), "None");
    EXPECT_EQ(SystemButtonLabel(store, 16383, 1), "Unknown");
    EXPECT_EQ(SystemButtonLabel(store, 0, 0), "MIC 1") << "code 0 is a real function";
    EXPECT_EQ(SystemButtonLabel(store, 40, 1), "CD 2");
    EXPECT_EQ(SystemButtonLabel(store, 150, 0), "PGM");
    EXPECT_EQ(SystemButtonLabel(store, 800, 1), "AUD");
    EXPECT_EQ(SystemButtonLabel(store, 810, 0), "PGM");
    EXPECT_EQ(SystemButtonLabel(store, 1000, 2), "FAN");
    EXPECT_EQ(SystemButtonLabel(store, 1004, 1), "BELL") << "range test, not a catalogue lookup";
    EXPECT_EQ(SystemButtonLabel(store, 1012, 0), "LIGHT");
    EXPECT_EQ(SystemButtonLabel(store, 1100, 1), "DOOR");
    EXPECT_EQ(SystemButtonLabel(store, 1112, 0), "ON AIR");
    for (int code : {1, 41, 151, 999, 1013, 1099, 1113}) {
        EXPECT_EQ(SystemButtonLabel(store, code, 0), "Unknown") << code;
    }
}

TEST(ButtonLabel, ChannelWithoutANameIsReported) {
    const PanelStore store = StoreWithAlphas();
    Status st;
    EXPECT_EQ(SystemButtonLabel(store, 40, 3, &st), "");
    EXPECT_EQ(st.failure().code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(SystemButtonLabel(store, 40, -2, &st), "");
    EXPECT_EQ(st.failure().code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(SystemButtonLabel(store, 40, 2, &st), "AUX");
    EXPECT_TRUE(st.ok());
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
    t.buttons[1].channel2 = 0;

    Status st;
    EXPECT_EQ(GetButtonLabel(store, 1, 1, &st), "BELL");
    EXPECT_TRUE(st.ok());
    EXPECT_EQ(GetButtonLabel(store, 1, 0, &st), "None");
    EXPECT_EQ(GetButtonLabel(store, 2, 0, &st), "");
    EXPECT_EQ(st.failure().code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(GetButtonLabel(store, 1, 2, &st), "");
    EXPECT_EQ(st.failure().code, ErrorCode::SubscriptOutOfRange);
}

TEST(ChannelLists, EntriesFollowChannelOrderWithFourDigitNumbers) {
    const PanelStore store = StoreWithAlphas();
    EXPECT_EQ(ChannelNameList(store, SubType::Input),
              (std::vector<std::string>{"Undefined", "MIC 1 [0001]", "CD 2 [0002]", "AUX [0003]"}));
    EXPECT_EQ(ChannelNameList(store, std::nullopt), (std::vector<std::string>{"Undefined"}));

    PanelStore empty;
    EXPECT_EQ(ChannelNameList(empty, SubType::Relay), (std::vector<std::string>{"Undefined"}));

    PanelStore big;
    std::vector<std::string> names(10000, "X");
    BuildAlphaTable(big.alpha(SubType::Output), names);
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

    const ChannelLists inactive = ChannelListsForType(store, 16383);
    EXPECT_EQ(inactive.first, (std::vector<std::string>{"Undefined"}));
    EXPECT_FALSE(inactive.secondEnabled);
}

TEST(ChannelLists, PositionsStandForChannelMinusOne) {
    EXPECT_EQ(ChannelListPosition(16383), 0);
    EXPECT_EQ(ChannelListPosition(0), 1);
    EXPECT_EQ(ChannelFromListPosition(0), 16383);
    EXPECT_EQ(ChannelFromListPosition(-1), 16383);
    for (int ch : {0, 1, 57, 16382}) {
        EXPECT_EQ(ChannelFromListPosition(ChannelListPosition(ch)), ch);
    }
}

} // namespace
} // namespace lumeth
