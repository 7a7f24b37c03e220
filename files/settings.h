#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/failure.h"
#include "model/number_text.h"

namespace lumeth {

// The program's few settings, kept in kovadmin.ini in the program's folder.
struct Settings {
    std::string serverAddress;
    int32_t serverPort = 0;
    int16_t packetSize = 16383;
    bool maintainLogFile = false;
    bool archiveLogFiles = false;
    int32_t maxLogFileSize = 0;
    bool maintainErrorFiles = false;
    bool archiveErrorFiles = false;
    int32_t maxErrorLog = 0;
};

class IniFile;

// The rules of reading applied to a parsed settings file (section
// "CONFIGURATION"), and the file's content for a set of values.
void SettingsFromIni(const IniFile& ini, Settings& settings);
IniFile SettingsToIni(const Settings& settings);

// Read folder + "kovadmin.ini" into `settings` with the defaults and clamps of
// the settings file. On a failure reading stops (values read so far stay),
// udpserve.ini in the folder is deleted if present, and the failure is returned.
Status ReadSettings(const std::string& folder, Settings& settings);
// Delete and rewrite folder + "kovadmin.ini".
Status WriteSettings(const std::string& folder, const Settings& settings);

// The locations under which the callers record the two failures.
inline constexpr std::string_view kReadSettingsLocation = "Error Reading ini file";
inline constexpr std::string_view kWriteSettingsLocation = "Error Writing ini file";

} // namespace lumeth
