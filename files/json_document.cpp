#include "files/json_document.h"

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

std::string Cut(const std::string& text, size_t width) {
    return cp1252::ToUtf8(std::string_view(text).substr(0, width));
}

template <typename T> const T& At(const std::vector<T>& v, int i) {
    static const T kEmpty{};
    const auto pos = static_cast<size_t>(i);
    return pos < v.size() ? v[pos] : kEmpty;
}

int ValidCount(int16_t count) {
    return count < 0 ? 0 : count;
}

Json WriteDisplayLists(const PanelStore& store) {
    Json lists = Json::object();
    for (SubType s : kAllSubTypes) {
        Json array = Json::array();
        for (int i = 0; i < ValidCount(store.listCount(s)); ++i) {
            const DisplayList& list = At(store.lists(s), i);
            Json channels = Json::array();
            for (int k = 0; k < ValidCount(list.channelCount); ++k) {
                channels.push_back(At(list.channels, k));
            }
            array.push_back(
                Json{{"name", Cut(list.name, kNameWidth)}, {"channels", std::move(channels)}});
        }
        lists[kSubTypeKeys[static_cast<size_t>(s)]] = std::move(array);
    }
    return lists;
}

Json WriteUserGroups(const PanelStore& store) {
    Json groups = Json::array();
    for (int i = 0; i < ValidCount(store.userGroupCount); ++i) {
        const UserGroup& group = At(store.userGroups, i);
        Json entries = Json::array();
        for (int k = 0; k < ValidCount(group.listCount); ++k) {
            entries.push_back(
                Json{{"type", At(group.listTypes, k)}, {"index", At(group.listIndexes, k)}});
        }
        groups.push_back(Json{{"name", Cut(At(store.userGroupNames, i), kNameWidth)},
                              {"lists", std::move(entries)}});
    }
    return groups;
}

Json WriteTemplates(const PanelStore& store) {
    Json templates = Json::array();
    for (int i = 0; i < ValidCount(store.templateCount); ++i) {
        const ButtonTemplate& tmpl = At(store.buttonTemplates, i);
        Json buttons = Json::array();
        for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
            const PanelButton& b = At(tmpl.buttons, k);
            buttons.push_back(Json{{"type", b.type},
                                   {"caption_option", b.captionOption},
                                   {"label", Cut(b.label, kLabelWidth)},
                                   {"channel", b.channel},
                                   {"channel2", b.channel2}});
        }
        templates.push_back(Json{{"name", Cut(At(store.templateNames, i), kNameWidth)},
                                 {"number", tmpl.number},
                                 {"buttons", std::move(buttons)}});
    }
    return templates;
}

// ---- reading ----------------------------------------------------------------

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

void ReadDisplayLists(const Json& doc, PanelStore& store) {
    const std::string path = "display_lists";
    const Json empty = Json::object();
    const Json& section = doc.contains(path) ? doc[path] : empty;
    CheckKeys(section, path, {"input", "output", "opto", "relay"}, {});
    for (SubType s : kAllSubTypes) {
        const char* key = kSubTypeKeys[static_cast<size_t>(s)];
        const std::string listsPath = Member(path, key);
        auto& lists = store.lists(s);
        if (!section.contains(key)) {
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

void ReadUserGroups(const Json& doc, PanelStore& store) {
    const std::string path = "user_groups";
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

void ReadTemplates(const Json& doc, PanelStore& store) {
    const std::string path = "templates";
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

std::string WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options) {
    Json doc;
    doc["format"] = kFormatName;
    doc["version"] = kFormatVersion;
    doc["display_lists"] = WriteDisplayLists(store);
    doc["user_groups"] = WriteUserGroups(store);
    doc["templates"] = WriteTemplates(store);
    if (options.includeAlphas) {
        Json alphas = Json::object();
        for (SubType s : kAllSubTypes) {
            Json names = Json::array();
            for (const std::string& name : store.alpha(s).channelNames) {
                names.push_back(cp1252::ToUtf8(name));
            }
            alphas[kSubTypeKeys[static_cast<size_t>(s)]] = std::move(names);
        }
        doc["alphas"] = std::move(alphas);
    }
    if (options.password) {
        doc["password"] = cp1252::ToUtf8(*options.password);
    }
    return doc.dump(2) + "\n";
}

JsonReadResult ReadJsonDocument(std::string_view text, PanelStore& store) {
    JsonReadResult result;
    Json doc;
    try {
        doc = Json::parse(text.begin(), text.end());
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
        ReadDisplayLists(doc, next);
        ReadUserGroups(doc, next);
        ReadTemplates(doc, next);
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
        return result;
    }
    store = std::move(next);
    return result;
}

} // namespace lumeth
