#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"

namespace lumeth {

// Where failures are recorded: Errorlog.txt in the program's folder, one line
// per failure, created with its header on the first write.
class ErrorLog {
public:
    // `folder` is the program's folder, ending in a path separator.
    // `now` gives the current date and time as text (short date and time);
    // tests pass a fixed clock. The default uses the system's local time.
    explicit ErrorLog(std::string folder, std::function<std::string()> now = {});

    const std::string& folder() const { return m_folder; }
    std::string path() const; // folder + "Errorlog.txt"

    // Append one record: date/time padded to 24, location, the whole cut at 59,
    // padded to 60, then the message; CR LF.
    void WriteErrorLog(std::string_view message, std::string_view location);
    // "Error # N - description" under `location`; the category is accepted but not used.
    void ReportError(std::string_view location, std::string_view category, const Failure& failure);
    // Activity milestones: writes nothing.
    void LogActivity(std::string_view text, std::string_view location);

    // The header's eleven lines (without line ends), for tests and tools.
    static const std::vector<std::string>& HeaderLines();
    // Build one record line (without CR LF).
    static std::string FormatRecord(std::string_view dateTime, std::string_view location,
                                    std::string_view message);
    // The default clock's form of a local time: the short date and time of
    // the process's locale (LC_TIME; the programs take the system's with
    // setlocale at start), "11/22/26 07:52:18" in the C locale,
    // "22.11.2026 07:52:18" in German.
    static std::string FormatShortDateTime(const std::tm& local);

    // The last failure to write the log itself (code None when there was none)
    // and how many records were dropped because they arrived while a record
    // was being written (the recursion guard).
    const Failure& lastWriteFailure() const { return m_lastWriteFailure; }
    int droppedRecords() const { return m_dropped; }

private:
    std::string m_folder;
    std::function<std::string()> m_now;
    bool m_writing = false; // recursion guard
    Failure m_lastWriteFailure;
    int m_dropped = 0;
};

} // namespace lumeth
