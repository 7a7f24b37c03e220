#include "files/crosspoint_map.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

constexpr const char* kHeader = "sub_type,list,list_name,position,channel,key,channel_name\r\n";

PanelStore TwoLists() {
    PanelStore s;
    s.listCount(SubType::Input) = 1;
    s.lists(SubType::Input) = {DisplayList{2, "Line\nBreak \xe9 ", {1, 0}}};
    s.listCount(SubType::Output) = 1;
    s.lists(SubType::Output) = {DisplayList{1, "Out", {10000}}};
    // Opto and Relay lists are not part of the map.
    s.listCount(SubType::Opto) = 1;
    s.lists(SubType::Opto) = {DisplayList{1, "Lights", {0}}};
    return s;
}

TEST(CrosspointMap, WithoutChannelNamesTheNameColumnStaysEmpty) {
    std::string csv;
    ASSERT_TRUE(EncodeCrosspointMap(TwoLists(), csv));
    EXPECT_EQ(csv, std::string(kHeader) + "Input,0,\"Line\nBreak \xc3\xa9\",1,1,Ch.0002,\r\n"
                                          "Input,0,\"Line\nBreak \xc3\xa9\",2,0,Ch.0001,\r\n"
                                          "Output,0,Out,1,10000,Ch.10001,\r\n");
}

TEST(CrosspointMap, ACountBeyondItsArrayFailsAndNothingIsWritten) {
    PanelStore s = TwoLists();
    s.lists(SubType::Output)[0].channelCount = 2;
    test::TempFolder folder;
    const Status saved = SaveCrosspointMap(folder.file("map.csv"), s);
    EXPECT_EQ(saved.failure().code, ErrorCode::SubscriptOutOfRange);
    EXPECT_EQ(folder.EntryCount(), 0u);

    s.lists(SubType::Output)[0].channelCount = 0;
    ASSERT_TRUE(SaveCrosspointMap(folder.file("map.csv"), s));
    EXPECT_EQ(folder.Read("map.csv").substr(0, std::string(kHeader).size()), kHeader);
    EXPECT_EQ(folder.EntryCount(), 1u);
}

} // namespace
} // namespace lumeth
