#include "files/settings.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

// Settings read from a kovadmin.ini holding `fileText`.
Settings ReadFrom(const std::string& fileText) {
    test::TempFolder dir;
    dir.Write("kovadmin.ini", fileText);
    Settings s;
    EXPECT_TRUE(ReadSettings(dir.path(), s));
    return s;
}

Settings ReadKey(const std::string& key, const std::string& value) {
    return ReadFrom("[CONFIGURATION]\r\n" + key + "=" + value + "\r\n");
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
    EXPECT_TRUE(s.maintainLogFile && s.archiveLogFiles && s.maintainErrorFiles &&
                s.archiveErrorFiles);
    EXPECT_TRUE(dir.Exists("udpserve.ini")) << "only a failed read removes it";
}

TEST(Settings, NumberRules) {
    using Field = int64_t (*)(const Settings&);
    const Field packet = [](const Settings& s) -> int64_t { return s.packetSize; };
    const Field port = [](const Settings& s) -> int64_t { return s.serverPort; };
    const Field logSize = [](const Settings& s) -> int64_t { return s.maxLogFileSize; };
    const Field errorLog = [](const Settings& s) -> int64_t { return s.maxErrorLog; };
    struct Case {
        const char* key;
        const char* text;
        Field field;
        int64_t expected;
    };
    // Packet size: 16383 outside the open range 1024..16384. Port: anything not
    // positive becomes 1250. Log limits: only zero becomes 5000.
    const Case cases[] = {{"Packet Size", "1024", packet, 16383},
                          {"Packet Size", "1025", packet, 1025},
                          {"Packet Size", "16382", packet, 16382},
                          {"Packet Size", "20000", packet, 16383},
                          {"Packet Size", "70000", packet, 16383},
                          {"Packet Size", "-4096", packet, 16383},
                          {"Packet Size", "abc", packet, 16383},
                          {"Packet Size", "  2048 bytes", packet, 2048},
                          {"Server IP Port", "0", port, 1250},
                          {"Server IP Port", "-5", port, 1250},
                          {"Server IP Port", "port", port, 1250},
                          {"Server IP Port", "1", port, 1},
                          {"Server IP Port", "70000", port, 70000},
                          {"Server IP Port", "\"1300\"", port, 1300},
                          {"Maximum Log File Size", "0", logSize, 5000},
                          {"Maximum Log File Size", "-1", logSize, -1},
                          {"Maximum Log File Size", "123456", logSize, 123456},
                          {"Maximum Error Log", "none", errorLog, 5000},
                          {"Maximum Error Log", "9000", errorLog, 9000}};
    for (const Case& c : cases) {
        EXPECT_EQ(c.field(ReadKey(c.key, c.text)), c.expected) << c.key << "=" << c.text;
    }
}

TEST(Settings, OnlyExactNoTurnsAFlagOff) {
    const char* const keys[] = {"Maintain Log File", "Archive Log Files", "Maintain Error Files",
                                "Archive Error Files"};
    auto flag = [](const Settings& s, size_t k) {
        return std::array<bool, 4>{s.maintainLogFile, s.archiveLogFiles, s.maintainErrorFiles,
                                   s.archiveErrorFiles}[k];
    };
    for (size_t k = 0; k < 4; ++k) {
        EXPECT_FALSE(flag(ReadKey(keys[k], "No"), k)) << keys[k];
        // Blanks and quotes belong to the file syntax, not the value.
        EXPECT_FALSE(flag(ReadKey(keys[k], "  \"No\" "), k)) << keys[k];
        for (const char* on : {"no", "NO", "Yes", "", "No!"}) {
            EXPECT_TRUE(flag(ReadKey(keys[k], on), k)) << keys[k] << "=" << on;
        }
    }
}

TEST(Settings, WritesNineKeysAndReadsThemBackExceptTheActivityLogFlag) {
    test::TempFolder dir;
    dir.Write("kovadmin.ini", "[OLD]\r\nstale=1\r\n");
    Settings s;
    s.serverAddress = "10.20.30.40";
    s.serverPort = 1251;
    s.packetSize = 2048;
    s.maintainLogFile = false;
    s.archiveLogFiles = true;
    s.maxLogFileSize = 12000;
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
                                        "Maximum Log File Size=12000\r\n"
                                        "Maintain Error Files=No\r\n"
                                        "Archive Error Files=No\r\n"
                                        "Maximum Error Log=64000\r\n");
    Settings in;
    ASSERT_TRUE(ReadSettings(dir.path(), in));
    EXPECT_EQ(in.serverAddress, s.serverAddress);
    EXPECT_EQ(in.serverPort, s.serverPort);
    EXPECT_EQ(in.packetSize, s.packetSize);
    EXPECT_TRUE(in.maintainLogFile)
        << "written as 'Maintain Log Files', read as 'Maintain Log File'";
    EXPECT_TRUE(in.archiveLogFiles);
    EXPECT_EQ(in.maxLogFileSize, s.maxLogFileSize);
    EXPECT_FALSE(in.maintainErrorFiles);
    EXPECT_FALSE(in.archiveErrorFiles);
    EXPECT_EQ(in.maxErrorLog, s.maxErrorLog);
}

TEST(Settings, ReadFailureDeletesUdpserveIniAndKeepsOldValues) {
    test::TempFolder dir;
    std::filesystem::create_directory(dir.file("kovadmin.ini")); // exists, cannot be read
    dir.Write("udpserve.ini", "[x]\r\n");
    dir.Write("other.ini", "[x]\r\n");
    Settings s;
    s.serverAddress = "10.9.8.7";
    s.maxErrorLog = 42;
    EXPECT_FALSE(ReadSettings(dir.path(), s).ok());
    EXPECT_FALSE(dir.Exists("udpserve.ini"));
    EXPECT_TRUE(dir.Exists("other.ini"));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("kovadmin.ini")));
    EXPECT_EQ(s.serverAddress, "10.9.8.7");
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

} // namespace
} // namespace lumeth
