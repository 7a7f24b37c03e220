#include "files/ini_file.h"

#include <gtest/gtest.h>

#include "temp_folder.h"

namespace lumeth {
namespace {

TEST(IniFile, NamesCompareCaseInsensitivelyAndBlanksAreTrimmed) {
    const IniFile ini = IniFile::Parse("  [ Configuration ]  \r\n"
                                       "\tServer IP Port   =   1300  \r\n"
                                       "PACKET SIZE=2048\r\n");
    EXPECT_EQ(ini.Get("CONFIGURATION", "server ip port"), "1300");
    EXPECT_EQ(ini.Get("configuration", "Packet Size"), "2048");
    EXPECT_EQ(ini.Get("CONFIGURATION", "Missing"), std::nullopt);
    EXPECT_EQ(ini.Get("OTHER", "Packet Size"), std::nullopt);
    EXPECT_EQ(ini.GetString("OTHER", "x", "fallback"), "fallback");
}

TEST(IniFile, OnePairOfMatchingOuterQuotesIsStripped) {
    const IniFile ini = IniFile::Parse("[S]\n"
                                       "double=\"10.0.0.1\"\n"
                                       "single='Yes'\n"
                                       "mixed=\"abc'\n"
                                       "lone=\"\n"
                                       "nested=\"\"x\"\"\n"
                                       "inner=a \"b\" c\n"
                                       "blanks=\"  padded  \"\n"
                                       "empty=\"\"\n");
    EXPECT_EQ(ini.Get("S", "double"), "10.0.0.1");
    EXPECT_EQ(ini.Get("S", "single"), "Yes");
    EXPECT_EQ(ini.Get("S", "mixed"), "\"abc'");
    EXPECT_EQ(ini.Get("S", "lone"), "\"");
    EXPECT_EQ(ini.Get("S", "nested"), "\"x\"");
    EXPECT_EQ(ini.Get("S", "inner"), "a \"b\" c");
    EXPECT_EQ(ini.Get("S", "blanks"), "  padded  ");
    EXPECT_EQ(ini.Get("S", "empty"), "");
}

TEST(IniFile, FirstDuplicateKeyAndFirstDuplicateSectionWin) {
    const IniFile ini =
        IniFile::Parse("[A]\nk=first\nK=second\n[B]\nk=b\n[a]\nk=third\nonly=later\n");
    EXPECT_EQ(ini.Get("A", "k"), "first");
    EXPECT_EQ(ini.Get("B", "k"), "b");
    // Keys of a repeated section are not seen: the first section of the name answers.
    EXPECT_EQ(ini.Get("A", "only"), std::nullopt);
}

TEST(IniFile, OnlyLeadingSemicolonMakesAComment) {
    const IniFile ini = IniFile::Parse("[S]\n"
                                       ";a=1\n"
                                       "   ; b=2\n"
                                       "c=3 ; not a comment\n"
                                       "d=;value\n");
    EXPECT_EQ(ini.Get("S", "a"), std::nullopt);
    EXPECT_EQ(ini.Get("S", ";a"), std::nullopt);
    EXPECT_EQ(ini.Get("S", "b"), std::nullopt);
    EXPECT_EQ(ini.Get("S", "c"), "3 ; not a comment");
    EXPECT_EQ(ini.Get("S", "d"), ";value");
}

TEST(IniFile, LinesBeforeTheFirstSectionAreIgnored) {
    const IniFile ini = IniFile::Parse("k=outside\nloose line\n[S]\nk=inside\n");
    ASSERT_EQ(ini.sections().size(), 1u);
    EXPECT_EQ(ini.Get("S", "k"), "inside");
    EXPECT_EQ(ini.Get("", "k"), std::nullopt);
}

TEST(IniFile, KeyLineWithoutEqualsReadsAsMissingAndHidesLaterValue) {
    const IniFile ini = IniFile::Parse("[S]\nflag\nflag=Yes\nother = 1\n");
    EXPECT_EQ(ini.Get("S", "flag"), std::nullopt);
    EXPECT_EQ(ini.GetString("S", "flag", "dflt"), "dflt");
    EXPECT_EQ(ini.Get("S", "other"), "1");
}

TEST(IniFile, AcceptsLfCrLfAndLoneCrLineEnds) {
    for (const char* eol : {"\n", "\r\n", "\r"}) {
        const std::string text = std::string("[S]") + eol + "a=1" + eol + "b=2" + eol + "c=3";
        const IniFile ini = IniFile::Parse(text);
        EXPECT_EQ(ini.Get("S", "a"), "1");
        EXPECT_EQ(ini.Get("S", "b"), "2");
        EXPECT_EQ(ini.Get("S", "c"), "3") << "last line without a line end";
    }
}

TEST(IniFile, ValueMayContainEqualsAndBracketsAfterTheFirst) {
    const IniFile ini = IniFile::Parse("[S]\nexpr = a=b [c]\n[T] trailing text\nx=1\n");
    EXPECT_EQ(ini.Get("S", "expr"), "a=b [c]");
    EXPECT_EQ(ini.Get("T", "x"), "1");
}

TEST(IniFile, SerializesWithCrLfAndSetReplacesFirstMatch) {
    IniFile ini;
    ini.Set("CONFIGURATION", "Server IP Address", "10.1.2.3");
    ini.Set("CONFIGURATION", "Packet Size", "4096");
    ini.Set("configuration", "packet size", "8192"); // same key, other case
    ini.Set("OTHER", "k", "v");
    EXPECT_EQ(ini.Serialize(), "[CONFIGURATION]\r\n"
                               "Server IP Address=10.1.2.3\r\n"
                               "Packet Size=8192\r\n"
                               "\r\n"
                               "[OTHER]\r\n"
                               "k=v\r\n");
    EXPECT_EQ(IniFile().Serialize(), "");
}

TEST(IniFile, SaveAndLoadRoundTripThroughAFile) {
    test::TempFolder dir;
    IniFile ini;
    ini.Set("CONFIGURATION", "Maximum Error Log", "7000");
    ini.Set("CONFIGURATION", "Archive Log Files", "No");
    ASSERT_TRUE(ini.Save(dir.file("a.ini")));
    EXPECT_EQ(dir.Read("a.ini"),
              "[CONFIGURATION]\r\nMaximum Error Log=7000\r\nArchive Log Files=No\r\n");

    IniFile back;
    ASSERT_TRUE(IniFile::Load(dir.file("a.ini"), back));
    EXPECT_EQ(back.Get("CONFIGURATION", "maximum error log"), "7000");
    EXPECT_EQ(back.Get("CONFIGURATION", "Archive Log Files"), "No");
}

TEST(IniFile, LoadReportsMissingFileAndDirectory) {
    test::TempFolder dir;
    IniFile ini;
    const Status missing = IniFile::Load(dir.file("none.ini"), ini);
    EXPECT_EQ(missing.failure().code, ErrorCode::FileNotFound);

    std::filesystem::create_directory(dir.file("d.ini"));
    const Status isDir = IniFile::Load(dir.file("d.ini"), ini);
    EXPECT_EQ(isDir.failure().code, ErrorCode::PathFileAccessError);

    const Status save = IniFile().Save(dir.file("no/such/folder.ini"));
    EXPECT_FALSE(save.ok());
}

} // namespace
} // namespace lumeth
