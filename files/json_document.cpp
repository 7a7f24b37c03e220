#include "files/json_document.h"

#include <charconv>
#include <initializer_list>
#include <limits>

#include <nlohmann/json.hpp>

#include "files/cp1252.h"
#include "files/panel_data_file.h"
#include "model/alpha_sort.h"

namespace lumeth {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFormatName = "lumeth-panel-data";
constexpr int kFormatVersion = 1;
constexpr const char* kSubTypeKeys[4] = {"input", "output", "opto", "relay"};

// ---- writing ----------------------------------------------------------------

template <typename T> const T& At(const std::vector<T>& v, int i) {
    static const T kEmpty{};
    const auto pos = static_cast<size_t>(i);
    return pos < v.size() ? v[pos] : kEmpty;
}

int ValidCount(int16_t count) {
    return count < 0 ? 0 : count;
}

// Writes the document for people and for diff: one display list, group,
// button or channel name per line, with its channel numbers or list entries
// inline and written compactly ([0,13,26]; {"type":11,"index":0}), two-space
// indentation. The text goes to the sink in pieces of about
// 64 KiB, so a large configuration is never held as a whole.
class DocumentWriter {
public:
    explicit DocumentWriter(const ByteSink& sink) : m_sink(sink) {
        m_buffer.reserve(kChunk + 4096);
    }

    bool Write(const PanelStore& store, const JsonDocumentOptions& options) {
        Raw("{\n  \"format\": ");
        String(kFormatName);
        Raw(",\n  \"version\": ");
        Number(kFormatVersion);
        Raw(",\n  \"display_lists\": {");
        for (SubType s : kAllSubTypes) {
            Raw(s == SubType::Input ? "\n    " : ",\n    ");
            String(kSubTypeKeys[static_cast<size_t>(s)]);
            Raw(": [");
            for (int i = 0; i < ValidCount(store.listCount(s)); ++i) {
                const DisplayList& list = At(store.lists(s), i);
                Item(i, 6);
                Raw("{\"name\": ");
                Name(list.name, kNameWidth);
                Raw(", \"channels\": [");
                for (int k = 0; k < ValidCount(list.channelCount); ++k) {
                    if (k > 0) {
                        m_buffer += ',';
                    }
                    Number(At(list.channels, k));
                }
                Raw("]}");
            }
            Close(store.listCount(s) > 0, 4, ']');
        }
        Raw("\n  },\n  \"user_groups\": [");
        for (int i = 0; i < ValidCount(store.userGroupCount); ++i) {
            const UserGroup& group = At(store.userGroups, i);
            Item(i, 4);
            Raw("{\"name\": ");
            Name(At(store.userGroupNames, i), kNameWidth);
            Raw(", \"lists\": [");
            for (int k = 0; k < ValidCount(group.listCount); ++k) {
                Raw(k > 0 ? ",{\"type\":" : "{\"type\":");
                Number(At(group.listTypes, k));
                Raw(",\"index\":");
                Number(At(group.listIndexes, k));
                Raw("}");
            }
            Raw("]}");
        }
        Close(store.userGroupCount > 0, 2, ']');
        Raw(",\n  \"templates\": [");
        for (int i = 0; i < ValidCount(store.templateCount); ++i) {
            const ButtonTemplate& tmpl = At(store.buttonTemplates, i);
            Item(i, 4);
            Raw("{\"name\": ");
            Name(At(store.templateNames, i), kNameWidth);
            Raw(", \"number\": ");
            Number(tmpl.number);
            Raw(", \"buttons\": [");
            for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
                const PanelButton& b = At(tmpl.buttons, k);
                Item(k, 6);
                Raw("{\"type\": ");
                Number(b.type);
                Raw(", \"caption_option\": ");
                Number(b.captionOption);
                Raw(", \"label\": ");
                Name(b.label, kLabelWidth);
                Raw(", \"channel\": ");
                Number(b.channel);
                Raw(", \"channel2\": ");
                Number(b.channel2);
                Raw("}");
            }
            Close(tmpl.buttonCount > 0, 4, ']');
            Raw("}");
        }
        Close(store.templateCount > 0, 2, ']');
        if (options.includeAlphas) {
            Raw(",\n  \"alphas\": {");
            for (SubType s : kAllSubTypes) {
                Raw(s == SubType::Input ? "\n    " : ",\n    ");
                String(kSubTypeKeys[static_cast<size_t>(s)]);
                Raw(": [");
                const auto& names = store.alpha(s).channelNames;
                for (size_t i = 0; i < names.size(); ++i) {
                    Item(static_cast<int>(i), 6);
                    Name(names[i], std::string::npos);
                }
                Close(!names.empty(), 4, ']');
            }
            Raw("\n  }");
        }
        if (options.password) {
            Raw(",\n  \"password\": ");
            Name(*options.password, std::string::npos);
        }
        Raw("\n}\n");
        return Flush();
    }

private:
    static constexpr size_t kChunk = 64 * 1024;

    void Raw(std::string_view text) {
        m_buffer += text;
        if (m_buffer.size() >= kChunk) {
            Flush();
        }
    }

    bool Flush() {
        if (m_ok && !m_buffer.empty()) {
            m_ok = m_sink(m_buffer);
        }
        m_buffer.clear();
        return m_ok;
    }

    // The start of array element `index` on a line of its own.
    void Item(int index, int indent) {
        Raw(index > 0 ? ",\n" : "\n");
        m_buffer.append(static_cast<size_t>(indent), ' ');
    }

    // The end of an array or object: on its own line after elements, right
    // after the opening bracket when there were none.
    void Close(bool hadElements, int indent, char bracket) {
        if (hadElements) {
            m_buffer += '\n';
            m_buffer.append(static_cast<size_t>(indent), ' ');
        }
        m_buffer += bracket;
    }

    void Number(int value) {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        m_buffer.append(digits, end);
    }

    // Bytes of the store as a JSON string: cut to `width`, then Windows-1252
    // to UTF-8.
    void Name(const std::string& bytes, size_t width) {
        String(cp1252::ToUtf8(std::string_view(bytes).substr(0, width)));
    }

    void String(std::string_view utf8) {
        static constexpr char kHex[] = "0123456789abcdef";
        m_buffer += '"';
        for (const char c : utf8) {
            const auto byte = static_cast<unsigned char>(c);
            switch (c) {
            case '"':
                m_buffer += "\\\"";
                break;
            case '\\':
                m_buffer += "\\\\";
                break;
            case '\n':
                m_buffer += "\\n";
                break;
            case '\r':
                m_buffer += "\\r";
                break;
            case '\t':
                m_buffer += "\\t";
                break;
            default:
                if (byte < 0x20) {
                    m_buffer += "\\u00";
                    m_buffer += kHex[byte >> 4];
                    m_buffer += kHex[byte & 0xF];
                } else {
                    m_buffer += c;
                }
            }
        }
        m_buffer += '"';
        if (m_buffer.size() >= kChunk) {
            Flush();
        }
    }

    const ByteSink& m_sink;
    std::string m_buffer;
    bool m_ok = true;
};

// ---- reading ----------------------------------------------------------------

struct NestedTooDeep {};

// Thrown inside the reader only; turned into a Status at its boundary.
struct ReadError {
    ErrorCode code;
    std::string path;
    std::string message;
};

[[noreturn]] void Fail(ErrorCode code, const std::string& path, std::string message) {
    throw ReadError{code, path, std::move(message)};
}

std::string Member(const std::string& path, const char* key) {
    return path.empty() ? std::string(key) : path + "." + key;
}

std::string Element(const std::string& path, size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

const char* TypeName(const Json& value) {
    if (value.is_number_integer()) {
        return "an integer";
    }
    if (value.is_number_float()) {
        return "a fractional number";
    }
    return value.type_name();
}

void ExpectType(const Json& value, bool ok, const std::string& path, const char* expected) {
    if (!ok) {
        Fail(ErrorCode::TypeMismatch, path,
             std::string("expected ") + expected + ", found " + TypeName(value));
    }
}

// An object whose keys must all be among `allowed`; `required` ones must be
// present.
void CheckKeys(const Json& object, const std::string& path,
               std::initializer_list<const char*> allowed,
               std::initializer_list<const char*> required) {
    ExpectType(object, object.is_object(), path.empty() ? std::string("(document)") : path,
               "an object");
    for (const auto& item : object.items()) {
        bool known = false;
        for (const char* key : allowed) {
            known = known || item.key() == key;
        }
        if (!known) {
            Fail(ErrorCode::InvalidFileFormat, Member(path, item.key().c_str()), "unknown key");
        }
    }
    for (const char* key : required) {
        if (!object.contains(key)) {
            Fail(ErrorCode::InvalidFileFormat, Member(path, key), "missing");
        }
    }
}

int16_t Integer(const Json& value, const std::string& path, int min, int max) {
    ExpectType(value, value.is_number_integer(), path, "an integer");
    // Unsigned values above the int64 range compare correctly as unsigned.
    if (value.is_number_unsigned() ? value.get<uint64_t>() > static_cast<uint64_t>(max)
                                   : value.get<int64_t>() < min || value.get<int64_t>() > max) {
        Fail(ErrorCode::Overflow, path,
             "out of range " + std::to_string(min) + ".." + std::to_string(max));
    }
    return static_cast<int16_t>(value.get<int64_t>());
}

int16_t Code(const Json& value, const std::string& path) {
    return Integer(value, path, std::numeric_limits<int16_t>::min(),
                   std::numeric_limits<int16_t>::max());
}

int16_t Channel(const Json& value, const std::string& path) {
    return Integer(value, path, 0, kNoChannel);
}

// Characters are counted after the UTF-8 text is mapped to Windows-1252 bytes,
// one byte per character.
std::string Text(const Json& value, const std::string& path, size_t maxChars,
                 const char* limitText) {
    ExpectType(value, value.is_string(), path, "a string");
    const auto& utf8 = value.get_ref<const std::string&>();
    if (maxChars > 0 && cp1252::Utf8Length(utf8) > maxChars) {
        Fail(ErrorCode::Overflow, path, limitText);
    }
    return cp1252::FromUtf8(utf8);
}

const Json& Array(const Json& value, const std::string& path) {
    ExpectType(value, value.is_array(), path, "an array");
    if (value.size() > static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
        Fail(ErrorCode::Overflow, path,
             "more than " + std::to_string(std::numeric_limits<int16_t>::max()) + " entries");
    }
    return value;
}

void ReadDisplayLists(const Json& doc, PanelStore& store, std::vector<std::string>& missing) {
    const std::string path = "display_lists";
    const Json empty = Json::object();
    const Json& section = doc.contains(path) ? doc[path] : empty;
    CheckKeys(section, path, {"input", "output", "opto", "relay"}, {});
    for (SubType s : kAllSubTypes) {
        const char* key = kSubTypeKeys[static_cast<size_t>(s)];
        const std::string listsPath = Member(path, key);
        auto& lists = store.lists(s);
        if (!section.contains(key)) {
            missing.push_back(listsPath);
            store.listCount(s) = 0;
            lists.assign(1, DisplayList{});
            continue;
        }
        const Json& array = Array(section[key], listsPath);
        store.listCount(s) = static_cast<int16_t>(array.size());
        lists.assign(ArraySizeFor(store.listCount(s)), DisplayList{});
        for (size_t i = 0; i < array.size(); ++i) {
            const std::string at = Element(listsPath, i);
            const Json& item = array[i];
            CheckKeys(item, at, {"name", "channels"}, {"name", "channels"});
            DisplayList& list = lists[i];
            list.name =
                Text(item["name"], Member(at, "name"), kNameWidth, "longer than 16 characters");
            const Json& channels = Array(item["channels"], Member(at, "channels"));
            list.channelCount = static_cast<int16_t>(channels.size());
            list.channels.assign(ArraySizeFor(list.channelCount), 0);
            for (size_t k = 0; k < channels.size(); ++k) {
                list.channels[k] = Channel(channels[k], Element(Member(at, "channels"), k));
            }
        }
    }
}

void ReadUserGroups(const Json& doc, PanelStore& store, std::vector<std::string>& missing) {
    const std::string path = "user_groups";
    if (!doc.contains(path)) {
        missing.push_back(path);
    }
    const Json empty = Json::array();
    const Json& array = Array(doc.contains(path) ? doc[path] : empty, path);
    const auto count = static_cast<int16_t>(array.size());
    store.userGroupCount = count;
    store.userGroupNames.assign(ArraySizeFor(count), std::string());
    store.userGroups.assign(ArraySizeFor(count), UserGroup{});
    store.userGroupIndex.assign(ArraySizeFor(count), 0);
    store.userGroupNumber.assign(ArraySizeFor(count), 0);
    for (size_t i = 0; i < array.size(); ++i) {
        const std::string at = Element(path, i);
        const Json& item = array[i];
        CheckKeys(item, at, {"name", "lists"}, {"name", "lists"});
        store.userGroupNames[i] =
            Text(item["name"], Member(at, "name"), kNameWidth, "longer than 16 characters");
        const std::string entriesPath = Member(at, "lists");
        const Json& entries = Array(item["lists"], entriesPath);
        UserGroup& group = store.userGroups[i];
        group.listCount = static_cast<int16_t>(entries.size());
        group.listIndexes.assign(ArraySizeFor(group.listCount), 0);
        group.listTypes.assign(ArraySizeFor(group.listCount), 0);
        for (size_t k = 0; k < entries.size(); ++k) {
            const std::string entryPath = Element(entriesPath, k);
            CheckKeys(entries[k], entryPath, {"type", "index"}, {"type", "index"});
            group.listTypes[k] = Code(entries[k]["type"], Member(entryPath, "type"));
            group.listIndexes[k] = Code(entries[k]["index"], Member(entryPath, "index"));
        }
        store.userGroupIndex[i] = static_cast<int16_t>(i);
        store.userGroupNumber[i] = static_cast<int16_t>(i);
    }
}

void ReadTemplates(const Json& doc, PanelStore& store, std::vector<std::string>& missing) {
    const std::string path = "templates";
    if (!doc.contains(path)) {
        missing.push_back(path);
    }
    const Json empty = Json::array();
    const Json& array = Array(doc.contains(path) ? doc[path] : empty, path);
    const auto count = static_cast<int16_t>(array.size());
    store.templateCount = count;
    store.templateNames.assign(ArraySizeFor(count), std::string());
    store.buttonTemplates.assign(ArraySizeFor(count), ButtonTemplate{});
    // Like a download: each template's index pair is its own position.
    store.templateIndex.assign(ArraySizeFor(count), 0);
    store.templatePosition.assign(ArraySizeFor(count), 0);
    for (size_t i = 0; i < array.size(); ++i) {
        const std::string at = Element(path, i);
        const Json& item = array[i];
        CheckKeys(item, at, {"name", "number", "buttons"}, {"name", "number", "buttons"});
        store.templateNames[i] =
            Text(item["name"], Member(at, "name"), kNameWidth, "longer than 16 characters");
        ButtonTemplate& tmpl = store.buttonTemplates[i];
        tmpl.number = Code(item["number"], Member(at, "number"));
        const std::string buttonsPath = Member(at, "buttons");
        const Json& buttons = Array(item["buttons"], buttonsPath);
        tmpl.buttonCount = static_cast<int16_t>(buttons.size());
        tmpl.buttons.assign(ArraySizeFor(tmpl.buttonCount), PanelButton{});
        for (size_t k = 0; k < buttons.size(); ++k) {
            const std::string bp = Element(buttonsPath, k);
            const Json& b = buttons[k];
            CheckKeys(b, bp, {"type", "caption_option", "label", "channel", "channel2"},
                      {"type", "caption_option", "label", "channel", "channel2"});
            PanelButton& button = tmpl.buttons[k];
            button.type = Code(b["type"], Member(bp, "type"));
            button.captionOption = Code(b["caption_option"], Member(bp, "caption_option"));
            button.label =
                Text(b["label"], Member(bp, "label"), kLabelWidth, "longer than 8 characters");
            button.channel = Channel(b["channel"], Member(bp, "channel"));
            button.channel2 = Channel(b["channel2"], Member(bp, "channel2"));
        }
        store.templateIndex[i] = static_cast<int16_t>(i);
        store.templatePosition[i] = static_cast<int16_t>(i);
    }
}

void ReadAlphas(const Json& section, PanelStore& store) {
    const std::string path = "alphas";
    CheckKeys(section, path, {"input", "output", "opto", "relay"}, {});
    for (SubType s : kAllSubTypes) {
        const char* key = kSubTypeKeys[static_cast<size_t>(s)];
        std::vector<std::string> names;
        if (section.contains(key)) {
            const std::string namesPath = Member(path, key);
            const Json& array = Array(section[key], namesPath);
            // Channels are numbered 0..16382 (16383 means "no channel").
            if (array.size() > static_cast<size_t>(kNoChannel)) {
                Fail(ErrorCode::Overflow, namesPath,
                     "more than " + std::to_string(kNoChannel) + " channels");
            }
            names.reserve(array.size());
            for (size_t i = 0; i < array.size(); ++i) {
                names.push_back(Text(array[i], Element(namesPath, i), 0, ""));
            }
        }
        BuildAlphaTable(store.alpha(s), std::move(names));
    }
}

} // namespace

Status CheckJsonDocumentSize(uintmax_t bytes) {
    if (bytes <= kMaxJsonDocumentBytes) {
        return Status::Ok();
    }
    return Status::Fail(ErrorCode::Overflow, "larger than " +
                                                 std::to_string(kMaxJsonDocumentBytes >> 20) +
                                                 " MiB, more than a JSON document is read");
}

Status JsonReadResult::RequireAllSections() const {
    if (missingSections.empty()) {
        return Status::Ok();
    }
    std::string names;
    for (const std::string& name : missingSections) {
        names += (names.empty() ? "" : ", ") + name;
    }
    return Status::Fail(ErrorCode::InvalidFileFormat,
                        "missing " + names +
                            " (every section is sent; write [] to send an empty one)");
}

bool WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options,
                       const ByteSink& sink) {
    return DocumentWriter(sink).Write(store, options);
}

std::string WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options) {
    std::string text;
    WriteJsonDocument(store, options, [&text](std::string_view piece) {
        text += piece;
        return true;
    });
    return text;
}

Status CheckJsonDocumentValues(const PanelStore& store) {
    const auto outside = [](int16_t channel) { return channel < 0 || channel > kNoChannel; };
    const auto fail = [](const std::string& path) {
        return Status::Fail(ErrorCode::Overflow,
                            path + ": out of range 0.." + std::to_string(kNoChannel));
    };
    for (SubType s : kAllSubTypes) {
        for (int i = 0; i < ValidCount(store.listCount(s)); ++i) {
            const DisplayList& list = At(store.lists(s), i);
            for (int k = 0; k < ValidCount(list.channelCount); ++k) {
                if (outside(At(list.channels, k))) {
                    return fail(std::string("display_lists.") +
                                kSubTypeKeys[static_cast<size_t>(s)] +
                                Element("", static_cast<size_t>(i)) + ".channels" +
                                Element("", static_cast<size_t>(k)));
                }
            }
        }
    }
    for (int i = 0; i < ValidCount(store.templateCount); ++i) {
        const ButtonTemplate& tmpl = At(store.buttonTemplates, i);
        for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
            const PanelButton& b = At(tmpl.buttons, k);
            const std::string at = "templates" + Element("", static_cast<size_t>(i)) + ".buttons" +
                                   Element("", static_cast<size_t>(k));
            if (outside(b.channel)) {
                return fail(at + ".channel");
            }
            if (outside(b.channel2)) {
                return fail(at + ".channel2");
            }
        }
    }
    for (SubType s : kAllSubTypes) {
        if (store.alpha(s).channelNames.size() > static_cast<size_t>(kNoChannel)) {
            return Status::Fail(ErrorCode::Overflow,
                                std::string("alphas.") + kSubTypeKeys[static_cast<size_t>(s)] +
                                    ": more than " + std::to_string(kNoChannel) + " channels");
        }
    }
    return Status::Ok();
}

JsonReadResult ReadJsonDocument(std::string_view text, PanelStore& store) {
    JsonReadResult result;
    result.status = CheckJsonDocumentSize(text.size());
    if (!result.status) {
        return result;
    }
    Json doc;
    try {
        // The document nests five levels at most; a deeper one is refused
        // while it is being read, before it can take memory.
        const Json::parser_callback_t limitDepth = [](int depth, Json::parse_event_t event, Json&) {
            if ((event == Json::parse_event_t::object_start ||
                 event == Json::parse_event_t::array_start) &&
                depth >= kMaxJsonDepth) {
                throw NestedTooDeep{};
            }
            return true;
        };
        doc = Json::parse(text.begin(), text.end(), limitDepth);
    } catch (const NestedTooDeep&) {
        result.status = Status::Fail(ErrorCode::InvalidFileFormat,
                                     "invalid JSON: nested deeper than " +
                                         std::to_string(kMaxJsonDepth) + " levels");
        return result;
    } catch (const Json::exception& e) {
        // A syntax error or a number too large to hold (out_of_range.406).
        // what() is "[json.exception.parse_error.101] parse error at line 1, ...".
        std::string message = e.what();
        const auto bracket = message.find("] ");
        if (bracket != std::string::npos) {
            message.erase(0, bracket + 2);
        }
        result.status = Status::Fail(ErrorCode::InvalidFileFormat, "invalid JSON: " + message);
        return result;
    }

    // Everything is read into a copy so that a bad document leaves the store
    // as it was.
    PanelStore next = store;
    try {
        CheckKeys(doc, "",
                  {"format", "version", "display_lists", "user_groups", "templates", "alphas",
                   "password"},
                  {"format", "version"});
        if (!doc["format"].is_string() ||
            doc["format"].get_ref<const std::string&>() != kFormatName) {
            Fail(ErrorCode::InvalidFileFormat, "format",
                 std::string("expected \"") + kFormatName + "\"");
        }
        if (!doc["version"].is_number_integer() ||
            doc["version"].get<int64_t>() != kFormatVersion) {
            Fail(ErrorCode::InvalidFileFormat, "version",
                 "unsupported version (expected " + std::to_string(kFormatVersion) + ")");
        }
        ReadDisplayLists(doc, next, result.missingSections);
        ReadUserGroups(doc, next, result.missingSections);
        ReadTemplates(doc, next, result.missingSections);
        if (doc.contains("alphas")) {
            ReadAlphas(doc["alphas"], next);
            result.hasAlphas = true;
        }
        if (doc.contains("password")) {
            result.password = Text(doc["password"], "password", 0, "");
        }
    } catch (const ReadError& e) {
        result.status = Status::Fail(e.code, e.path + ": " + e.message);
        result.hasAlphas = false;
        result.password.reset();
        result.missingSections.clear();
        return result;
    }
    store = std::move(next);
    return result;
}

} // namespace lumeth
