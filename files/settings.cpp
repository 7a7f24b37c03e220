#include "files/settings.h"

#include <filesystem>
#include <system_error>

#include "files/ini_file.h"

namespace lumeth {

namespace {

constexpr const char* kFileName = "kovadmin.ini";
// Left behind by an older installation; removed whenever the settings cannot
// be read, so that a damaged setup does not linger.
constexpr const char* kStaleFileName = "udpserve.ini";
constexpr const char* kSection = "CONFIGURATION";

constexpr const char* kKeyAddress = "Server IP Address";
constexpr const char* kKeyPort = "Server IP Port";
constexpr const char* kKeyPacketSize = "Packet Size";
// The activity log option is read from "Maintain Log File" but written as
// "Maintain Log Files"; a file this program wrote therefore reads the option as
// on. Installed systems depend on that, so both names stay as they are.
constexpr const char* kKeyMaintainLogRead = "Maintain Log File";
constexpr const char* kKeyMaintainLogWrite = "Maintain Log Files";
constexpr const char* kKeyArchiveLog = "Archive Log Files";
constexpr const char* kKeyMaxLog = "Maximum Log File Size";
constexpr const char* kKeyMaintainError = "Maintain Error Files";
constexpr const char* kKeyArchiveError = "Archive Error Files";
constexpr const char* kKeyMaxError = "Maximum Error Log";

constexpr const char* kDefaultAddress = "127.0.0.1";
constexpr int32_t kDefaultPort = 1250;
constexpr int16_t kDefaultPacketSize = 16383;
constexpr int32_t kDefaultLogLimit = 5000;

std::string PathIn(const std::string& folder, const char* name) {
    return folder + name;
}

// Only the exact text "No" switches an option off.
bool FlagOn(const std::string& text) {
    return text != "No";
}
const char* FlagText(bool on) {
    return on ? "Yes" : "No";
}

void DeleteStaleFile(const std::string& folder) {
    std::error_code ec;
    std::filesystem::remove(PathIn(folder, kStaleFileName), ec);
}

} // namespace

void SettingsFromIni(const IniFile& ini, Settings& settings) {
    auto text = [&](const char* key) { return ini.GetString(kSection, key); };

    settings.serverAddress = text(kKeyAddress);
    if (settings.serverAddress.empty()) {
        settings.serverAddress = kDefaultAddress;
    }

    settings.serverPort = LeadingNumber(text(kKeyPort));
    if (settings.serverPort <= 0) {
        settings.serverPort = kDefaultPort;
    }

    const int32_t packet = LeadingNumber(text(kKeyPacketSize));
    settings.packetSize = (packet <= 1024 || packet >= kDefaultPacketSize)
                              ? kDefaultPacketSize
                              : static_cast<int16_t>(packet);

    settings.maintainLogFile = FlagOn(text(kKeyMaintainLogRead));
    settings.archiveLogFiles = FlagOn(text(kKeyArchiveLog));

    settings.maxLogFileSize = LeadingNumber(text(kKeyMaxLog));
    if (settings.maxLogFileSize == 0) {
        settings.maxLogFileSize = kDefaultLogLimit;
    }

    settings.maintainErrorFiles = FlagOn(text(kKeyMaintainError));
    settings.archiveErrorFiles = FlagOn(text(kKeyArchiveError));

    settings.maxErrorLog = LeadingNumber(text(kKeyMaxError));
    if (settings.maxErrorLog == 0) {
        settings.maxErrorLog = kDefaultLogLimit;
    }
}

IniFile SettingsToIni(const Settings& settings) {
    IniFile ini;
    ini.Set(kSection, kKeyAddress, settings.serverAddress);
    ini.Set(kSection, kKeyPort, std::to_string(settings.serverPort));
    ini.Set(kSection, kKeyPacketSize, std::to_string(settings.packetSize));
    ini.Set(kSection, kKeyMaintainLogWrite, FlagText(settings.maintainLogFile));
    ini.Set(kSection, kKeyArchiveLog, FlagText(settings.archiveLogFiles));
    ini.Set(kSection, kKeyMaxLog, std::to_string(settings.maxLogFileSize));
    ini.Set(kSection, kKeyMaintainError, FlagText(settings.maintainErrorFiles));
    ini.Set(kSection, kKeyArchiveError, FlagText(settings.archiveErrorFiles));
    ini.Set(kSection, kKeyMaxError, std::to_string(settings.maxErrorLog));
    return ini;
}

Status ReadSettings(const std::string& folder, Settings& settings) {
    const std::string path = PathIn(folder, kFileName);
    std::error_code ec;
    const bool exists = std::filesystem::exists(std::filesystem::symlink_status(path, ec));
    if (!exists) {
        settings.serverAddress = kDefaultAddress;
        settings.maxLogFileSize = kDefaultLogLimit;
        settings.maxErrorLog = kDefaultLogLimit;
        settings.maintainLogFile = true;
        settings.archiveLogFiles = true;
        settings.maintainErrorFiles = true;
        settings.archiveErrorFiles = true;
        return Status::Ok();
    }

    IniFile ini;
    if (Status st = IniFile::Load(path, ini); !st) {
        DeleteStaleFile(folder);
        return st;
    }

    SettingsFromIni(ini, settings);
    return Status::Ok();
}

Status WriteSettings(const std::string& folder, const Settings& settings) {
    const std::string path = PathIn(folder, kFileName);
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, ec))) {
        if (!std::filesystem::remove(path, ec) || ec) {
            return Status::Fail(ErrorCode::PathFileAccessError,
                                path + ": cannot delete: " + ec.message());
        }
    }

    return SettingsToIni(settings).Save(path);
}

} // namespace lumeth
