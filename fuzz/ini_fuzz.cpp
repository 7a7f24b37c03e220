// Fuzzes the settings-file reader and the settings rules applied to it.
// Besides not crashing, it checks the properties the program relies on:
// values read always satisfy the clamps, what is written reads back the same
// (apart from the activity log option, which the key names turn on), and a
// parse/serialise round trip keeps every section and key.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "files/ini_file.h"
#include "files/settings.h"

namespace {

void Check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool HasOuterBlanksOrQuotes(const std::string& v) {
    if (v.empty()) {
        return false;
    }
    auto blank = [](char c) {
        return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\r' || c == '\n';
    };
    if (blank(v.front()) || blank(v.back())) {
        return true;
    }
    return v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front();
}

void CheckRoundTrip(const lumeth::IniFile& ini) {
    const lumeth::IniFile again = lumeth::IniFile::Parse(ini.Serialize());
    const auto& a = ini.sections();
    const auto& b = again.sections();
    Check(a.size() == b.size());
    for (size_t s = 0; s < a.size(); ++s) {
        Check(a[s].name == b[s].name);
        Check(a[s].entries.size() == b[s].entries.size());
        for (size_t e = 0; e < a[s].entries.size(); ++e) {
            const auto& x = a[s].entries[e];
            const auto& y = b[s].entries[e];
            Check(x.key == y.key);
            Check(x.value.has_value() == y.value.has_value());
            if (x.value && !HasOuterBlanksOrQuotes(*x.value)) {
                Check(*x.value == *y.value);
            }
        }
    }
}

void CheckSettings(const lumeth::IniFile& ini) {
    lumeth::Settings s;
    lumeth::SettingsFromIni(ini, s);
    Check(!s.serverAddress.empty());
    Check(s.serverPort > 0);
    Check(s.packetSize > 1024 && s.packetSize <= 16383);
    Check(s.maxLogFileSize != 0 && s.maxErrorLog != 0);

    lumeth::Settings back;
    lumeth::SettingsFromIni(lumeth::IniFile::Parse(lumeth::SettingsToIni(s).Serialize()), back);
    if (!HasOuterBlanksOrQuotes(s.serverAddress)) {
        Check(back.serverAddress == s.serverAddress);
    }
    Check(back.serverPort == s.serverPort);
    Check(back.packetSize == s.packetSize);
    Check(back.maintainLogFile);
    Check(back.archiveLogFiles == s.archiveLogFiles);
    Check(back.maxLogFileSize == s.maxLogFileSize);
    Check(back.maintainErrorFiles == s.maintainErrorFiles);
    Check(back.archiveErrorFiles == s.archiveErrorFiles);
    Check(back.maxErrorLog == s.maxErrorLog);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const lumeth::IniFile ini = lumeth::IniFile::Parse(bytes);
    CheckRoundTrip(ini);
    CheckSettings(ini);
    // The leading-number conversion sees whole values in the field; give it
    // the raw input too.
    const int32_t n = lumeth::LeadingNumber(bytes);
    Check(lumeth::LeadingNumber(std::to_string(n)) == n);
    return 0;
}
