#include "files/ini_file.h"

#include "files/file_io.h"

#include <filesystem>
#include <utility>

namespace lumeth {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\r' || c == '\n';
}

std::string_view Trim(std::string_view s) {
    size_t b = 0;
    size_t e = s.size();
    while (b < e && IsBlank(s[b])) {
        ++b;
    }
    while (e > b && IsBlank(s[e - 1])) {
        --e;
    }
    return s.substr(b, e - b);
}

std::string StripQuotes(std::string_view v) {
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front()) {
        return std::string(v.substr(1, v.size() - 2));
    }
    return std::string(v);
}

char LowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (LowerAscii(a[i]) != LowerAscii(b[i])) {
            return false;
        }
    }
    return true;
}

IniFile IniFile::Parse(std::string_view bytes) {
    IniFile ini;
    Section* current = nullptr;
    size_t pos = 0;
    while (pos < bytes.size()) {
        size_t end = bytes.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) {
            end = bytes.size();
        }
        const std::string_view line = Trim(bytes.substr(pos, end - pos));
        pos = end + 1;

        if (line.empty() || line.front() == ';') {
            continue;
        }
        if (line.front() == '[') {
            const size_t close = line.find(']');
            if (close == std::string_view::npos) {
                continue; // not a header; skipped like any unreadable line
            }
            ini.m_sections.push_back(Section{std::string(Trim(line.substr(1, close - 1))), {}});
            current = &ini.m_sections.back();
            continue;
        }
        if (current == nullptr) {
            continue; // before the first section
        }
        const size_t eq = line.find('=');
        if (eq == std::string_view::npos) {
            current->entries.push_back(Entry{std::string(line), std::nullopt});
        } else {
            current->entries.push_back(Entry{std::string(Trim(line.substr(0, eq))),
                                             StripQuotes(Trim(line.substr(eq + 1)))});
        }
    }
    return ini;
}

Status IniFile::Load(const std::string& path, IniFile& out) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        return Status::Fail(ErrorCode::PathFileAccessError, path + ": is a directory");
    }
    std::string bytes;
    if (Status read = ReadFileBytes(path, bytes); !read) {
        return read;
    }
    out = Parse(bytes);
    return Status::Ok();
}

const IniFile::Section* IniFile::FindSection(std::string_view name) const {
    for (const Section& s : m_sections) {
        if (EqualsIgnoreCase(s.name, name)) {
            return &s;
        }
    }
    return nullptr;
}

IniFile::Section* IniFile::FindSection(std::string_view name) {
    return const_cast<Section*>(std::as_const(*this).FindSection(name));
}

std::optional<std::string> IniFile::Get(std::string_view section, std::string_view key) const {
    const Section* s = FindSection(section);
    if (s == nullptr) {
        return std::nullopt;
    }
    for (const Entry& e : s->entries) {
        if (EqualsIgnoreCase(e.key, key)) {
            return e.value;
        }
    }
    return std::nullopt;
}

std::string IniFile::GetString(std::string_view section, std::string_view key,
                               std::string_view fallback) const {
    std::optional<std::string> v = Get(section, key);
    return v ? *v : std::string(fallback);
}

void IniFile::Set(std::string_view section, std::string_view key, std::string_view value) {
    Section* s = FindSection(section);
    if (s == nullptr) {
        m_sections.push_back(Section{std::string(section), {}});
        s = &m_sections.back();
    }
    for (Entry& e : s->entries) {
        if (EqualsIgnoreCase(e.key, key)) {
            e.value = std::string(value);
            return;
        }
    }
    s->entries.push_back(Entry{std::string(key), std::string(value)});
}

std::string IniFile::Serialize() const {
    std::string out;
    for (size_t i = 0; i < m_sections.size(); ++i) {
        if (i > 0) {
            out += "\r\n";
        }
        out += '[';
        out += m_sections[i].name;
        out += "]\r\n";
        for (const Entry& e : m_sections[i].entries) {
            out += e.key;
            if (e.value) {
                out += '=';
                out += *e.value;
            }
            out += "\r\n";
        }
    }
    return out;
}

Status IniFile::Save(const std::string& path) const {
    // Replaced in one step, so a full disk or a crash while writing never
    // leaves the settings half written.
    return ReplaceFileContents(path, Serialize());
}

} // namespace lumeth
