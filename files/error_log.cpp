#include "files/error_log.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <utility>

#include "files/file_io.h"
#include "files/organisation.h"

namespace lumeth {

namespace {

constexpr const char* kFileName = "Errorlog.txt";
constexpr const char* kCrLf = "\r\n";
constexpr size_t kDateWidth = 24;
constexpr size_t kLocationEnd = 59;
constexpr size_t kMessageColumn = 60; // zero-based: the message starts in column 61

// "KOV Broadcast Systems" -> "K O V   B R O A D C A S T   S Y S T E M S":
// capitals, one blank between letters, three between words.
std::string SpacedCapitals(std::string_view name) {
    std::string out;
    bool pendingWordGap = false;
    for (char c : name) {
        if (c == ' ') {
            pendingWordGap = !out.empty();
            continue;
        }
        if (!out.empty()) {
            out += pendingWordGap ? "   " : " ";
        }
        pendingWordGap = false;
        out += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return out;
}

std::string SystemNow() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
#if defined(_WIN32)
    localtime_s(&local, &t);
#else
    localtime_r(&t, &local);
#endif
    return ErrorLog::FormatShortDateTime(local);
}

} // namespace

ErrorLog::ErrorLog(std::string folder, std::function<std::string()> now)
    : m_folder(std::move(folder)), m_now(now ? std::move(now) : SystemNow) {}

std::string ErrorLog::path() const {
    return m_folder + kFileName;
}

const std::vector<std::string>& ErrorLog::HeaderLines() {
    static const std::vector<std::string> lines = [] {
        // Built by appending: one expression of chained operator+ trips a
        // false -Wrestrict in GCC 12.
        auto indented = [](size_t blanks, std::initializer_list<std::string_view> parts) {
            std::string line(blanks, ' ');
            for (std::string_view p : parts) {
                line.append(p);
            }
            return line;
        };
        const std::string name = SpacedCapitals(organisation::kName);
        return std::vector<std::string>{
            indented(13, {name}),
            "",
            indented(19, {organisation::kStreet}),
            indented(19, {organisation::kCityLine}),
            indented(19, {organisation::kTelephone, " - ", organisation::kWeb}),
            "",
            "",
            "KOV AdminPanel Error Logfile",
            "",
            " DATE     TIME           LOCATION                      MESSAGE DESCRIPTION",
            std::string(80, '-'),
        };
    }();
    return lines;
}

std::string ErrorLog::FormatRecord(std::string_view dateTime, std::string_view location,
                                   std::string_view message) {
    std::string line(dateTime);
    if (line.size() < kDateWidth) {
        line.resize(kDateWidth, ' ');
    }
    line += location;
    if (line.size() > kLocationEnd) {
        line.resize(kLocationEnd);
    }
    line.resize(kMessageColumn, ' ');
    line += message;
    return line;
}

std::string ErrorLog::FormatShortDateTime(const std::tm& local) {
    char buf[128];
    const size_t n = std::strftime(buf, sizeof buf, "%x %X", &local);
    return std::string(buf, n);
}

void ErrorLog::WriteErrorLog(std::string_view message, std::string_view location) {
    // A failure while writing the log is itself reported through ReportError,
    // which lands here again; the log cannot take that record, so it is
    // dropped instead of looping.
    if (m_writing) {
        ++m_dropped;
        return;
    }
    m_writing = true;

    const std::string line = FormatRecord(m_now(), location, message) + kCrLf;
    const std::string file = path();
    std::error_code ec;
    if (!std::filesystem::exists(std::filesystem::symlink_status(file, ec))) {
        std::string header;
        for (const std::string& h : HeaderLines()) {
            header += h;
            header += kCrLf;
        }
        if (Status written = WriteFileBytes(file, "wb", header); !written) {
            const Failure& f = written.failure();
            m_lastWriteFailure = f;
            ReportError("Error creating Error file", "File Error", f);
            m_writing = false;
            return;
        }
    }
    if (Status written = WriteFileBytes(file, "ab", line); !written) {
        const Failure& f = written.failure();
        m_lastWriteFailure = f;
        ReportError("Error Writing to Error Log", "File Error", f);
    }
    m_writing = false;
}

void ErrorLog::ReportError(std::string_view location, std::string_view /*category*/,
                           const Failure& failure) {
    WriteErrorLog(failure.LogMessage(), location);
}

void ErrorLog::LogActivity(std::string_view /*text*/, std::string_view /*location*/) {
    // The activity log is not kept in this version: milestones are accepted
    // and nothing is written, so no file appears in the program's folder.
}

} // namespace lumeth
