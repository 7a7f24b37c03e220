#include "files/error_log.h"

#include <clocale>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "files/organisation.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

constexpr const char* kTime = "11/22/2026 7:52:18 AM"; // 21 characters

std::string FixedClock() {
    return kTime;
}

// The header as the log's readers expect it, line by line.
std::vector<std::string> ExpectedHeader() {
    // Appended piecewise: chained operator+ trips a false -Wrestrict in GCC 12.
    auto indented = [](std::string_view a, std::string_view b = {}, std::string_view c = {}) {
        std::string line(19, ' ');
        line.append(a).append(b).append(c);
        return line;
    };
    return {
        "             K O V   B R O A D C A S T   S Y S T E M S",
        "",
        indented(organisation::kStreet),
        indented(organisation::kCityLine),
        indented(organisation::kTelephone, " - ", organisation::kWeb),
        "",
        "",
        "KOV AdminPanel Error Logfile",
        "",
        " DATE     TIME           LOCATION                      MESSAGE DESCRIPTION",
        "--------------------------------------------------------------------------------",
    };
}

std::string CrLfLines(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& l : lines) {
        out += l + "\r\n";
    }
    return out;
}

TEST(ErrorLog, FirstRecordCreatesFileWithHeaderLaterRecordsAppend) {
    test::TempFolder dir;
    ErrorLog log(dir.path(), FixedClock);
    EXPECT_EQ(log.path(), dir.path() + "Errorlog.txt");
    log.WriteErrorLog("Message Length Error", "Alpha Download");
    log.WriteErrorLog("Invalid Data ", "Group Download");
    const std::string pad(60 - 24 - 14, ' ');
    EXPECT_EQ(dir.Read("Errorlog.txt"), CrLfLines(ExpectedHeader()) + kTime + "   Alpha Download" +
                                            pad + "Message Length Error\r\n" + kTime +
                                            "   Group Download" + pad + "Invalid Data \r\n");

    // A deleted log is created again, header first.
    std::filesystem::remove(dir.file("Errorlog.txt"));
    log.WriteErrorLog("two", "second");
    EXPECT_EQ(dir.Read("Errorlog.txt"), CrLfLines(ExpectedHeader()) +
                                            ErrorLog::FormatRecord(kTime, "second", "two") +
                                            "\r\n");
}

TEST(ErrorLog, RecordColumns) {
    // Location cut so date, time and location fill exactly 59 characters.
    const std::string location50(50, 'L');
    const std::string cut = ErrorLog::FormatRecord(kTime, location50, "MSG");
    EXPECT_EQ(cut, std::string(kTime) + "   " + std::string(35, 'L') + " MSG");
    EXPECT_EQ(cut.find("MSG"), 60u);

    // Empty location: the message still starts in column 61.
    const std::string empty = ErrorLog::FormatRecord(kTime, "", "MSG");
    EXPECT_EQ(empty, std::string(kTime) + std::string(60 - 21, ' ') + "MSG");

    // A location that fills column 59 exactly is not cut and gets one blank.
    const std::string exact = ErrorLog::FormatRecord(kTime, std::string(35, 'x'), "M");
    EXPECT_EQ(exact.substr(24), std::string(35, 'x') + " M");

    // Location starts in column 25 whatever the length of the date text.
    EXPECT_EQ(ErrorLog::FormatRecord("1/1/2027 1:02:03 PM", "Here", "M").find("Here"), 24u);

    // An empty message leaves the padded prefix only.
    EXPECT_EQ(ErrorLog::FormatRecord(kTime, "loc", "").size(), 60u);
}

TEST(ErrorLog, ReportErrorWritesNumberAndDescriptionUnderLocation) {
    test::TempFolder dir;
    ErrorLog log(dir.path(), FixedClock);
    log.ReportError("Error Loading Group Items", "Display Error",
                    Failure{ErrorCode::FileNotFound, "detail stays out of the log"});
    const std::string text = dir.Read("Errorlog.txt");
    const std::string record =
        ErrorLog::FormatRecord(kTime, "Error Loading Group Items", "Error # 53 - File not found");
    EXPECT_NE(text.find("\r\n" + record + "\r\n"), std::string::npos);
    EXPECT_EQ(text.find("Display Error"), std::string::npos);
    EXPECT_EQ(text.find("detail"), std::string::npos);
}

TEST(ErrorLog, FailureToWriteTheLogDoesNotRecurse) {
    test::TempFolder dir;
    // The folder does not exist: creating the log fails, and the report of
    // that failure must not try the log again and again.
    ErrorLog missing(dir.path() + "gone/", FixedClock);
    missing.WriteErrorLog("m", "loc");
    EXPECT_NE(missing.lastWriteFailure().code, ErrorCode::None);
    EXPECT_EQ(missing.droppedRecords(), 1);

    // The log's name is taken by a directory: appending fails.
    std::filesystem::create_directory(dir.file("Errorlog.txt"));
    ErrorLog blocked(dir.path(), FixedClock);
    blocked.ReportError("somewhere", "File Error", Failure{ErrorCode::Overflow, ""});
    EXPECT_NE(blocked.lastWriteFailure().code, ErrorCode::None);
    EXPECT_EQ(blocked.droppedRecords(), 1);

    // The log stays usable once the obstacle is gone.
    std::filesystem::remove(dir.file("Errorlog.txt"));
    blocked.WriteErrorLog("after", "recovered");
    EXPECT_NE(dir.Read("Errorlog.txt").find("after"), std::string::npos);
}

// The date and time follow the locale of the process, not one fixed form. A
// German locale is built for the test when the system can (localedef).
TEST(ErrorLog, DateAndTimeFollowTheLocale) {
    std::tm t{};
    t.tm_year = 2026 - 1900;
    t.tm_mon = 10;
    t.tm_mday = 22;
    t.tm_hour = 19;
    t.tm_min = 52;
    t.tm_sec = 8;
    const std::string before = std::setlocale(LC_TIME, nullptr);
    ASSERT_NE(std::setlocale(LC_TIME, "C"), nullptr);
    EXPECT_EQ(ErrorLog::FormatShortDateTime(t), "11/22/26 19:52:08");

    test::TempFolder dir;
    const std::string build =
        "localedef -i de_DE -f UTF-8 " + dir.path() + "de_DE.UTF-8 >/dev/null 2>&1";
    if (std::system(build.c_str()) == 0) {
        ::setenv("LOCPATH", dir.path().c_str(), 1);
        ASSERT_NE(std::setlocale(LC_TIME, "de_DE.UTF-8"), nullptr);
        EXPECT_EQ(ErrorLog::FormatShortDateTime(t), "22.11.2026 19:52:08");
        ::unsetenv("LOCPATH");
    }
    std::setlocale(LC_TIME, before.c_str());

    // The default clock stamps each record in that form, padded to column 25.
    ErrorLog log(dir.path());
    log.WriteErrorLog("msg", "loc");
    const std::string record = dir.Read("Errorlog.txt").substr(CrLfLines(ExpectedHeader()).size());
    EXPECT_EQ(record.find_first_not_of("0123456789/: "), 24u) << record;
    EXPECT_EQ(record.substr(24, 3), "loc");
    EXPECT_EQ(record.substr(60), "msg\r\n");
}

} // namespace
} // namespace lumeth
