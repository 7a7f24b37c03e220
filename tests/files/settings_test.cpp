#include "files/settings.h"

#include <gtest/gtest.h>

#include "files/ini_file.h"
#include "temp_folder.h"

namespace lumeth {
namespace {

// A settings file with one key set, the rest absent.
std::string FileWith(const std::string& key, const std::string& value) {
    return "[CONFIGURATION]\r\n" + key + "=" + value + "\r\n";
}

Settings ReadFrom(const std::string& fileText) {
    test::TempFolder dir;
    dir.Write("kovadmin.ini", fileText);
    Settings s;
    EXPECT_TRUE(ReadSettings(dir.path(), s));
    return s;
}

TEST(Settings, NoFileGivesDefaultsAndLeavesPortAndPacketSize) {
    test::TempFolder dir;
    dir.Write("udpserve.ini", "x");
    Settings s;
    s.serverPort = 0;
    s.packetSize = 4000;
    ASSERT_TRUE(ReadSettings(dir.path(), s));
    EXPECT_EQ(s.serverAddress, "127.0.0.1");
    EXPECT_EQ(s.serverPort, 0) << "start-up turns 0 into 1250, not the reader";
    EXPECT_EQ(s.packetSize, 4000);
    EXPECT_EQ(s.maxLogFileSize, 5000);
    EXPECT_EQ(s.maxErrorLog, 5000);
    EXPECT_TRUE(s.maintainLogFile);
    EXPECT_TRUE(s.archiveLogFiles);
    EXPECT_TRUE(s.maintainErrorFiles);
    EXPECT_TRUE(s.archiveErrorFiles);
    EXPECT_TRUE(dir.Exists("udpserve.ini")) << "only a failed read removes it";
}

TEST(Settings, EmptySectionAppliesEveryReadRule) {
    const Settings s = ReadFrom("[CONFIGURATION]\r\n");
    EXPECT_EQ(s.serverAddress, "127.0.0.1");
    EXPECT_EQ(s.serverPort, 1250);
    EXPECT_EQ(s.packetSize, 16383);
    EXPECT_EQ(s.maxLogFileSize, 5000);
    EXPECT_EQ(s.maxErrorLog, 5000);
    EXPECT_TRUE(s.maintainLogFile && s.archiveLogFiles && s.maintainErrorFiles &&
                s.archiveErrorFiles);
}

struct NumberCase {
    const char* text;
    int32_t expected;
};

class PacketSizeRule : public ::testing::TestWithParam<NumberCase> {};
TEST_P(PacketSizeRule, ClampsOutsideTheOpenRange) {
    EXPECT_EQ(ReadFrom(FileWith("Packet Size", GetParam().text)).packetSize, GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Settings, PacketSizeRule,
                         ::testing::Values(NumberCase{"1024", 16383}, NumberCase{"1025", 1025},
                                           NumberCase{"16382", 16382}, NumberCase{"16383", 16383},
                                           NumberCase{"20000", 16383}, NumberCase{"70000", 16383},
                                           NumberCase{"-4096", 16383}, NumberCase{"abc", 16383},
                                           NumberCase{"  2048 bytes", 2048}));

class ServerPortRule : public ::testing::TestWithParam<NumberCase> {};
TEST_P(ServerPortRule, NonPositiveBecomes1250) {
    EXPECT_EQ(ReadFrom(FileWith("Server IP Port", GetParam().text)).serverPort,
              GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Settings, ServerPortRule,
                         ::testing::Values(NumberCase{"0", 1250}, NumberCase{"-5", 1250},
                                           NumberCase{"", 1250}, NumberCase{"port", 1250},
                                           NumberCase{"8080", 8080}, NumberCase{"1", 1},
                                           NumberCase{"70000", 70000},
                                           NumberCase{"\"1300\"", 1300}));

TEST(Settings, LogLimitsTurnOnlyZeroInto5000) {
    EXPECT_EQ(ReadFrom(FileWith("Maximum Log File Size", "0")).maxLogFileSize, 5000);
    EXPECT_EQ(ReadFrom(FileWith("Maximum Log File Size", "-1")).maxLogFileSize, -1);
    EXPECT_EQ(ReadFrom(FileWith("Maximum Log File Size", "123456")).maxLogFileSize, 123456);
    EXPECT_EQ(ReadFrom(FileWith("Maximum Error Log", "0")).maxErrorLog, 5000);
    EXPECT_EQ(ReadFrom(FileWith("Maximum Error Log", "none")).maxErrorLog, 5000);
    EXPECT_EQ(ReadFrom(FileWith("Maximum Error Log", "9000")).maxErrorLog, 9000);
}

TEST(Settings, OnlyExactNoTurnsAFlagOff) {
    const char* const keys[] = {"Maintain Log File", "Archive Log Files", "Maintain Error Files",
                                "Archive Error Files"};
    auto flags = [](const Settings& s) {
        return std::array<bool, 4>{s.maintainLogFile, s.archiveLogFiles, s.maintainErrorFiles,
                                   s.archiveErrorFiles};
    };
    for (size_t k = 0; k < 4; ++k) {
        EXPECT_FALSE(flags(ReadFrom(FileWith(keys[k], "No")))[k]) << keys[k];
        // Blanks and quotes belong to the file syntax, not the value.
        EXPECT_FALSE(flags(ReadFrom(FileWith(keys[k], "  \"No\" ")))[k]) << keys[k];
        for (const char* on : {"no", "NO", "N", "Yes", "0", "", "No!"}) {
            EXPECT_TRUE(flags(ReadFrom(FileWith(keys[k], on)))[k]) << keys[k] << "=" << on;
        }
    }
}

TEST(Settings, AddressEmptyBecomesLoopbackElseKeptAsWritten) {
    EXPECT_EQ(ReadFrom(FileWith("Server IP Address", "")).serverAddress, "127.0.0.1");
    EXPECT_EQ(ReadFrom(FileWith("Server IP Address", "\"\"")).serverAddress, "127.0.0.1");
    EXPECT_EQ(ReadFrom(FileWith("Server IP Address", " 192.168.10.20 ")).serverAddress,
              "192.168.10.20");
}

TEST(Settings, HandWrittenFileWithOtherCaseAndLfIsRead) {
    const Settings s = ReadFrom("; written by hand\n"
                                "[configuration]\n"
                                "server ip address=10.0.0.9\n"
                                "SERVER IP PORT=2000\n"
                                "maintain log file=No\n"
                                "maintain error files=No\n");
    EXPECT_EQ(s.serverAddress, "10.0.0.9");
    EXPECT_EQ(s.serverPort, 2000);
    EXPECT_FALSE(s.maintainLogFile);
    EXPECT_FALSE(s.maintainErrorFiles);
}

TEST(Settings, WritesNineKeysInOrderWithWrittenNamesAndForms) {
    test::TempFolder dir;
    dir.Write("kovadmin.ini", "[OLD]\r\nstale=1\r\n");
    Settings s;
    s.serverAddress = "10.20.30.40";
    s.serverPort = 1251;
    s.packetSize = 2048;
    s.maintainLogFile = false;
    s.archiveLogFiles = true;
    s.maxLogFileSize = 0;
    s.maintainErrorFiles = false;
    s.archiveErrorFiles = false;
    s.maxErrorLog = 64000;
    ASSERT_TRUE(WriteSettings(dir.path(), s));
    EXPECT_EQ(dir.Read("kovadmin.ini"), "[CONFIGURATION]\r\n"
                                        "Server IP Address=10.20.30.40\r\n"
                                        "Server IP Port=1251\r\n"
                                        "Packet Size=2048\r\n"
                                        "Maintain Log Files=No\r\n"
                                        "Archive Log Files=Yes\r\n"
                                        "Maximum Log File Size=0\r\n"
                                        "Maintain Error Files=No\r\n"
                                        "Archive Error Files=No\r\n"
                                        "Maximum Error Log=64000\r\n");
}

TEST(Settings, RoundTripKeepsValuesButTurnsActivityLogOn) {
    test::TempFolder dir;
    Settings out;
    out.serverAddress = "172.16.0.5";
    out.serverPort = 4321;
    out.packetSize = 8000;
    out.maintainLogFile = false;
    out.archiveLogFiles = false;
    out.maxLogFileSize = 12000;
    out.maintainErrorFiles = false;
    out.archiveErrorFiles = true;
    out.maxErrorLog = 3000;
    ASSERT_TRUE(WriteSettings(dir.path(), out));

    Settings in;
    ASSERT_TRUE(ReadSettings(dir.path(), in));
    EXPECT_EQ(in.serverAddress, out.serverAddress);
    EXPECT_EQ(in.serverPort, out.serverPort);
    EXPECT_EQ(in.packetSize, out.packetSize);
    EXPECT_TRUE(in.maintainLogFile)
        << "written as 'Maintain Log Files', read as 'Maintain Log File'";
    EXPECT_FALSE(in.archiveLogFiles);
    EXPECT_EQ(in.maxLogFileSize, out.maxLogFileSize);
    EXPECT_FALSE(in.maintainErrorFiles);
    EXPECT_TRUE(in.archiveErrorFiles);
    EXPECT_EQ(in.maxErrorLog, out.maxErrorLog);
}

TEST(Settings, ReadFailureDeletesUdpserveIniAndKeepsOldValues) {
    test::TempFolder dir;
    std::filesystem::create_directory(dir.file("kovadmin.ini")); // exists, cannot be read
    dir.Write("udpserve.ini", "[x]\r\n");
    dir.Write("other.ini", "[x]\r\n");
    Settings s;
    s.serverAddress = "10.9.8.7";
    s.serverPort = 777;
    s.maxErrorLog = 42;
    const Status st = ReadSettings(dir.path(), s);
    EXPECT_FALSE(st.ok());
    EXPECT_NE(st.failure().code, ErrorCode::None);
    EXPECT_FALSE(dir.Exists("udpserve.ini"));
    EXPECT_TRUE(dir.Exists("other.ini"));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("kovadmin.ini")));
    EXPECT_EQ(s.serverAddress, "10.9.8.7");
    EXPECT_EQ(s.serverPort, 777);
    EXPECT_EQ(s.maxErrorLog, 42);
}

TEST(Settings, WriteFailureIsReported) {
    test::TempFolder dir;
    Settings s;
    EXPECT_FALSE(WriteSettings(dir.path() + "missing/", s).ok());

    // A non-empty directory in the file's place cannot be deleted.
    std::filesystem::create_directory(dir.file("kovadmin.ini"));
    dir.Write("kovadmin.ini/inside", "x");
    EXPECT_FALSE(WriteSettings(dir.path(), s).ok());
}

TEST(Settings, IniConversionMatchesTheFileForm) {
    // The pure conversion is what the file functions use; check it on a
    // parsed file so both paths agree.
    Settings s;
    SettingsFromIni(IniFile::Parse(FileWith("Packet Size", "3000")), s);
    EXPECT_EQ(s.packetSize, 3000);
    EXPECT_EQ(SettingsToIni(s).Get("CONFIGURATION", "Maintain Log Files"), "Yes");
    EXPECT_EQ(SettingsToIni(s).Get("CONFIGURATION", "Maintain Log File"), std::nullopt);
}

TEST(LeadingNumber, ReadsTheLeadingDecimalNumber) {
    EXPECT_EQ(LeadingNumber("1250"), 1250);
    EXPECT_EQ(LeadingNumber("   42abc"), 42);
    EXPECT_EQ(LeadingNumber("\t7"), 7);
    EXPECT_EQ(LeadingNumber("-17x"), -17);
    EXPECT_EQ(LeadingNumber("+9"), 9);
    EXPECT_EQ(LeadingNumber("12 34"), 12);
    EXPECT_EQ(LeadingNumber(""), 0);
    EXPECT_EQ(LeadingNumber("x12"), 0);
    EXPECT_EQ(LeadingNumber("-"), 0);
    EXPECT_EQ(LeadingNumber("2147483647"), INT32_MAX);
    EXPECT_EQ(LeadingNumber("2147483648"), INT32_MAX);
    EXPECT_EQ(LeadingNumber("-2147483648"), INT32_MIN);
    EXPECT_EQ(LeadingNumber("99999999999999999999999"), INT32_MAX);
    EXPECT_EQ(LeadingNumber("-99999999999999999999999"), INT32_MIN);
}

} // namespace
} // namespace lumeth
