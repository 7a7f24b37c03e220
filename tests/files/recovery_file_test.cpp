// The recovery file: what is written reads back, and a damaged file is
// refused whole.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "files/recovery_file.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

RecoveredEdits Sample() {
    PanelStore store;
    store.groups.userGroupCount = 1;
    store.groups.userGroupNames[0] = "A name of twenty ch."; // longer than a panel data file keeps
    DisplayList& list = store.lists(SubType::Relay)[0];
    list.name = "Relays";
    list.channels = {3, 7, 11};
    list.channelCount = 3;
    return {PartSet{Part::UserGroups, Part::RelayLists}, TakeSnapshot(store)};
}

TEST(RecoveryFile, WhatIsWrittenReadsBackThroughTheFolder) {
    test::TempFolder folder;
    const std::string path = folder.file(kRecoveryFileName);
    const RecoveredEdits written = Sample();
    ASSERT_TRUE(WriteRecoveryFile(path, written).ok());

    RecoveredEdits read;
    ASSERT_TRUE(ReadRecoveryFile(path, read).ok());
    EXPECT_EQ(read.parts, written.parts);
    EXPECT_EQ(read.edits, written.edits);

    ASSERT_TRUE(RemoveRecoveryFile(path).ok());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(RemoveRecoveryFile(path).ok()) << "no file is nothing to remove";
    EXPECT_EQ(ReadRecoveryFile(path, read).failure().code, ErrorCode::FileNotFound);
}

// The marker (8 bytes), the parts (2), the payload's length (4) and checksum (4).
constexpr size_t kHeader = 18;

TEST(RecoveryFile, DamagedFilesAreRefusedWhole) {
    const std::string good = EncodeRecoveryFile(Sample());
    auto flipped = [&](size_t at) {
        std::string bytes = good;
        bytes[at] = static_cast<char>(bytes[at] ^ 0x20);
        return bytes;
    };
    // A payload cut short but with its length and checksum made to match.
    std::string shortPayload = good.substr(0, good.size() - 2);
    const uint32_t size = static_cast<uint32_t>(shortPayload.size() - kHeader);
    uint32_t hash = 2166136261u;
    for (size_t i = kHeader; i < shortPayload.size(); ++i)
        hash = (hash ^ static_cast<unsigned char>(shortPayload[i])) * 16777619u;
    for (int i = 0; i < 4; ++i) {
        shortPayload[10 + size_t(i)] = static_cast<char>(size >> (8 * i));
        shortPayload[14 + size_t(i)] = static_cast<char>(hash >> (8 * i));
    }
    std::string unknownPart = good;
    unknownPart[8] = static_cast<char>(unknownPart[8] | 0x01); // the password
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"a panel data file", good.substr(kHeader)},
        {"the marker", flipped(2)},
        {"the length", flipped(10)},
        {"the checksum", flipped(15)},
        {"a group name", flipped(good.size() / 2)},
        {"the last byte", flipped(good.size() - 1)},
        {"one byte short", good.substr(0, good.size() - 1)},
        {"one byte more", good + "x"},
        {"a part that is never kept", unknownPart},
        {"a table cut short", shortPayload},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RecoveredEdits read;
        read.parts = PartSet{Part::Templates};
        const Status status = DecodeRecoveryFile(c.bytes, read);
        EXPECT_EQ(status.failure().code, ErrorCode::InvalidFileFormat);
        EXPECT_EQ(read.parts, PartSet{Part::Templates}) << "nothing taken from a damaged file";
    }
}

TEST(RecoveryFile, EveryTornLengthIsRefused) {
    const std::string good = EncodeRecoveryFile(Sample());
    for (size_t size = 0; size < good.size(); ++size) {
        RecoveredEdits read;
        EXPECT_FALSE(DecodeRecoveryFile(good.substr(0, size), read).ok()) << size;
    }
}

} // namespace
} // namespace lumeth
