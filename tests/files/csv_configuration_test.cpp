#include "files/csv_configuration.h"

#include <sys/stat.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "link/codec.h"
#include "tests/support/store_builders.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

using test::Group;
using test::List;

// Everything the files must carry: lists of three sub types (one empty, a
// channel at the 14-bit limit), no Relay lists, mixed and empty groups, a
// template without keys, a code the catalogue lacks, names needing quotes
// and Windows-1252 bytes, no channel names at all.
PanelStore Varied() {
    PanelStore s;
    s.ResetToDefaults();
    s.listTable(SubType::Input) = {2, {List("Mics, \"A\"", {0, 5, 16383}), List("Empty", {})}};
    s.listTable(SubType::Output) = {1, {List("Caf\xe9\nOut", {12})}};
    s.listTable(SubType::Opto) = {1, {List("Lights   ", {1})}};
    s.listTable(SubType::Relay) = {};
    s.groups.userGroupCount = 2;
    s.groups.Resize(2);
    s.groups.userGroupNames = {"Studio \x80", "Nobody"};
    s.groups.userGroups = {Group({{1, 11}, {0, 31}, {7, 21}}), Group({})};
    s.templates.templateCount = 2;
    s.templates.Resize(2);
    s.templates.templateNames = {"Host", "Blank"};
    ButtonTemplate& host = s.templates.buttonTemplates[0];
    host.number = 42;
    host.buttonCount = 3;
    host.buttons = {PanelButton{40, 1, "CD,1", 4, kNoChannel}, PanelButton{1010, 0, "", 2, 3},
                    PanelButton{1004, 0, "", kNoChannel, 0}};
    return s;
}

CsvTexts Export(const PanelStore& s) {
    CsvTexts texts;
    EXPECT_TRUE(ExportCsv(s, texts));
    return texts;
}

TEST(CsvConfiguration, ExportThenImportSendsTheSameUploads) {
    const PanelStore original = Varied();
    PanelStore back;
    back.alpha(SubType::Input).channelNames = {"kept"}; // the files hold no channel names
    back.currentUserGroup = 1;
    const CsvTexts texts = Export(original);
    ASSERT_FALSE(ImportCsv(texts, back));
    ForEachPart(kUploadParts, [&](Part part) {
        EXPECT_EQ(codec::UploadMessage(back, part).message,
                  codec::UploadMessage(original, part).message)
            << Info(part).name;
    });
    EXPECT_EQ(back.alpha(SubType::Input).channelNames, std::vector<std::string>{"kept"});
    EXPECT_EQ(back.currentUserGroup, 1);
    EXPECT_EQ(Export(back), texts);

    EXPECT_NE(texts[0].find("Input,Lst.001,Empty,,,\r\n"), std::string::npos);
    EXPECT_NE(texts[0].find("Input,Lst.000,\"Mics, \"\"A\"\"\",3,Ch.16384,\r\n"),
              std::string::npos);
    EXPECT_NE(texts[1].find("Gr.001,Studio \xe2\x82\xac,2,Opto,Lst.000,Lights\r\n"),
              std::string::npos);
    EXPECT_NE(texts[2].find("template 01,Host,42,Btn 2,Relay Toggle - Opto Tally,0,,Ch.0003,,"
                            "Ch.0004,\r\n"),
              std::string::npos);
    EXPECT_NE(texts[2].find(",Btn 3,1004,0,,,,Ch.0001,\r\n"), std::string::npos);
}

TEST(CsvConfiguration, ChannelAndListNamesStandBesideTheirKeys) {
    PanelStore s = Varied();
    for (SubType t : kAllSubTypes) {
        AlphaTable& table = s.alpha(t);
        for (int n = 0; n < 20; ++n)
            table.channelNames.push_back(SubTypeName(t) + std::to_string(n));
        table.count = 20;
        table.names = table.channelNames;
        for (int n = 0; n < 20; ++n) {
            table.numbers.push_back(static_cast<int16_t>(n));
            table.positionOf.push_back(static_cast<int16_t>(n));
        }
    }
    const CsvTexts texts = Export(s);
    EXPECT_NE(texts[0].find(",2,Ch.0006,Input5\r\n"), std::string::npos);
    EXPECT_NE(texts[1].find("Gr.001,Studio \xe2\x82\xac,1,Input,Lst.001,Empty\r\n"),
              std::string::npos);
    EXPECT_NE(texts[2].find(",Ch.0003,Relay2,Ch.0004,Opto3\r\n"), std::string::npos);
}

TEST(CsvConfiguration, ReadmeListsTheColumnsOfEachFile) {
    const std::string readme = test::ReadFile(LUMETH_SOURCE_DIR "/README.md");
    for (CsvFile file : kCsvFiles) {
        std::string line = "`";
        line.append(CsvFileName(file)).append("`: `").append(CsvHeader(file)).append("`");
        EXPECT_NE(readme.find(line), std::string::npos) << line;
    }
}

TEST(CsvConfiguration, ValuesTheFilesCannotHoldFailTheExportNamingTheRecord) {
    PanelStore negative = Varied();
    negative.lists(SubType::Input)[0].channels[1] = -5;
    PanelStore noSubType = Varied();
    noSubType.groups.userGroups[0].listTypes[2] = 55;
    CsvTexts texts;
    EXPECT_EQ(ExportCsv(negative, texts).failure().detail,
              "Input Lst.000 \"Mics, \"A\"\" position 2: -5 is outside 0 to 16383");
    EXPECT_EQ(ExportCsv(noSubType, texts).failure().detail,
              "Gr.001 \"Studio \x80\" entry 3: list type 55 is no sub type");
}

// A row put in place of line `line` (from 1, the header counts) of a good export.
struct BadRow {
    CsvFile file;
    int line;
    std::string row;
    std::string reason;
};

TEST(CsvConfiguration, ABadRowIsRefusedWithItsLineAndTheStoreKept) {
    const std::string listRow = "Input,Lst.000,\"Mics, \"\"A\"\"\",";
    const std::string hostRow = "template 01,Host,42,";
    const BadRow cases[] = {
        {CsvFile::DisplayLists, 1, "sub_type,list",
         "the first row is not the header "
         "sub_type,list,list_name,position,channel,"
         "channel_name"},
        {CsvFile::DisplayLists, 2, "Input,Lst.000", "6 fields expected, 2 found"},
        {CsvFile::DisplayLists, 2, listRow + "1,Ch.16385,",
         "Ch.16385 is past Ch.16384, the last "
         "channel the panels carry"},
        {CsvFile::DisplayLists, 2, listRow + "1,Ch.12,",
         "\"Ch.12\" is not a channel key such "
         "as Ch.0001"},
        {CsvFile::DisplayLists, 3, listRow + "3,Ch.0002,",
         "position 3 out of order: position 2 "
         "comes next"},
        {CsvFile::DisplayLists, 2, "Mixer,Lst.000,x,1,Ch.0001,",
         "unknown sub type \"Mixer\" "
         "(Input, Output, Opto or Relay)"},
        {CsvFile::DisplayLists, 2, "Input,Lst.001,x,1,Ch.0001,",
         "Input Lst.001 before Input Lst.000: records are numbered from the first without gaps"},
        {CsvFile::DisplayLists, 6, "Input,Lst.000,x,,,",
         "Input Lst.000 again after other rows: a record's rows go together"},
        {CsvFile::DisplayLists, 3, "Input,Lst.000,Mics,2,Ch.0006,",
         "the list name differs from the record's first row"},
        {CsvFile::DisplayLists, 5, "Input,Lst.001,Empty,,Ch.0001,",
         "a row without an entry has nothing in channel"},
        {CsvFile::UserGroups, 2, "Gr.001,\xe4\xb8\xad,1,Input,Lst.001,",
         "the group name holds U+4E2D, a character Windows-1252 does not have"},
        {CsvFile::UserGroups, 2, "Gr.001,\xff,1,Input,Lst.001,",
         "the group name is not UTF-8 text"},
        {CsvFile::UserGroups, 5, "Gr.002,Nobody,,,,\r\nGr.002,Nobody,1,Input,Lst.000,",
         "Gr.002 was given without entries, on one row"},
        {CsvFile::Templates, 2, hostRow + "Btn 1,Source Selector,1,CD,Ch.0005,,,",
         "unknown function \"Source Selector\""},
        {CsvFile::Templates, 2, hostRow + "Btn 1,Talk,16384,CD,Ch.0005,,,",
         "the caption option \"16384\" is not a number from 0 to 16383"},
        {CsvFile::Templates, 2, hostRow + "Btn 33,Talk,1,CD,Ch.0005,,,",
         "Btn 33 is past Btn 32, the last button the panels carry"},
        {CsvFile::Templates, 3, "template 01,Host,41,Btn 2,Talk,0,,,,,",
         "the template number differs from the record's first row"},
    };
    const PanelStore original = Varied();
    const CsvTexts good = Export(original);
    for (const BadRow& c : cases) {
        SCOPED_TRACE(c.row);
        CsvTexts texts = good;
        std::string& text = texts[size_t(c.file)];
        size_t start = 0;
        for (int l = 1; l < c.line; ++l)
            start = text.find("\r\n", start) + 2;
        text.replace(start, text.find("\r\n", start) - start, c.row);
        PanelStore store = original;
        const auto problem = ImportCsv(texts, store);
        ASSERT_TRUE(problem);
        EXPECT_EQ(problem->file, c.file);
        // A replacement of two rows is refused at its second.
        EXPECT_EQ(problem->problem.line, c.line + (c.row.find('\n') != std::string::npos));
        EXPECT_EQ(problem->problem.reason, c.reason);
        EXPECT_EQ(Export(store), good);
    }
}

TEST(CsvConfiguration, AFolderRoundTripsAndItsBadRowNamesFileAndLine) {
    test::TempFolder folder;
    const std::string dir = folder.file("csv");
    ASSERT_TRUE(WriteCsvFolder(dir, Export(Varied())));
    PanelStore back;
    ASSERT_TRUE(ImportCsvFolder(dir, back));
    EXPECT_EQ(Export(back), Export(Varied()));

    folder.Write("csv/user_groups.csv", "group,group_name,entry,sub_type,list,list_name\r\n"
                                        "Gr.001,A,1,Input,Lst.000,\r\nGr.001,A,1,Input,Lst.000,");
    const Status bad = ImportCsvFolder(dir, back);
    EXPECT_EQ(bad.failure().detail,
              CsvPath(dir, CsvFile::UserGroups) + ":3: entry 1 out of order: entry 2 comes next");
    // Refused before it is read: too large, no regular file, missing.
    const std::string groupsPath = CsvPath(dir, CsvFile::UserGroups);
    std::filesystem::resize_file(groupsPath, (size_t(64) << 20) + 1);
    EXPECT_EQ(ImportCsvFolder(dir, back).failure().detail, groupsPath + ": larger than 64 MiB");
    std::filesystem::remove(groupsPath);
    ASSERT_EQ(::mkfifo(groupsPath.c_str(), 0600), 0);
    EXPECT_EQ(ImportCsvFolder(dir, back).failure().detail, groupsPath + ": not a regular file");
    std::filesystem::remove(groupsPath);
    EXPECT_EQ(ImportCsvFolder(dir, back).failure().code, ErrorCode::FileNotFound);
    EXPECT_EQ(Export(back), Export(Varied()));
}

} // namespace
} // namespace lumeth
