#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"

namespace lumeth {

// A sectioned settings file with the semantics of the Windows profile
// functions, so files written by earlier installations read the same way:
// - section and key names compare case-insensitively (ASCII);
// - blanks (spaces and tabs) around names and values are trimmed;
// - one pair of matching outer quotes (' or ") is stripped from a value;
// - of duplicate keys in a section the first wins, and of duplicate sections
//   the first wins;
// - only a line whose first non-blank character is ';' is a comment, so a ';'
//   after a value is part of the value;
// - lines before the first section header are ignored;
// - a line inside a section without '=' is a key without a value, which reads
//   as missing (and, being first, hides a later line with that key).
// Lines end in LF, CR LF or a lone CR. Files are written with CR LF.
class IniFile {
public:
    struct Entry {
        std::string key;
        std::optional<std::string> value; // nullopt: the line had no '='
    };
    struct Section {
        std::string name;
        std::vector<Entry> entries;
    };

    IniFile() = default;

    // Parse bytes; never fails (anything unrecognised is skipped).
    static IniFile Parse(std::string_view bytes);
    // Read and parse a file. Fails when the file is missing or cannot be read.
    static Status Load(const std::string& path, IniFile& out);

    // The value of `key` in `section` (quotes stripped), or nullopt when the
    // section or key is absent or the key line had no '='.
    std::optional<std::string> Get(std::string_view section, std::string_view key) const;
    // As Get, with a default for a missing value.
    std::string GetString(std::string_view section, std::string_view key,
                          std::string_view fallback = {}) const;

    // Replace the value of the first `key` in the first `section`, or append
    // the key (and the section) when absent.
    void Set(std::string_view section, std::string_view key, std::string_view value);

    // "[name]" and "key=value" lines with CR LF; a blank line separates sections.
    std::string Serialize() const;
    // Write Serialize() to `path`, replacing any file of that name atomically.
    Status Save(const std::string& path) const;

    const std::vector<Section>& sections() const { return m_sections; }

private:
    const Section* FindSection(std::string_view name) const;
    Section* FindSection(std::string_view name);

    std::vector<Section> m_sections;
};

// ASCII case-insensitive comparison, as the profile functions compare names.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

} // namespace lumeth
