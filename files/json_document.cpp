#include "files/json_document.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include <nlohmann/json.hpp>

#include "files/panel_data_file.h"
#include "model/alpha_sort.h"
#include "model/cp1252.h"

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
        for (int i = 0; i < ValidCount(store.groups.userGroupCount); ++i) {
            const UserGroup& group = At(store.groups.userGroups, i);
            Item(i, 4);
            Raw("{\"name\": ");
            Name(At(store.groups.userGroupNames, i), kNameWidth);
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
        Close(store.groups.userGroupCount > 0, 2, ']');
        Raw(",\n  \"templates\": [");
        for (int i = 0; i < ValidCount(store.templates.templateCount); ++i) {
            const ButtonTemplate& tmpl = At(store.templates.buttonTemplates, i);
            Item(i, 4);
            Raw("{\"name\": ");
            Name(At(store.templates.templateNames, i), kNameWidth);
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
        Close(store.templates.templateCount > 0, 2, ']');
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

std::string Element(const std::string& path, size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

// Where a value sits in the document decides what it must be.
enum class Slot {
    Document,
    Format,
    Version,
    Password,
    ListSections, // "display_lists": {"input": [...], ...}
    Lists,        // one sub type's display lists
    List,
    ListName,
    Channels,
    Channel,
    Groups,
    Group,
    GroupName,
    Entries,
    Entry,
    EntryType,
    EntryIndex,
    Templates,
    Template,
    TemplateName,
    TemplateNumber,
    Buttons,
    Button,
    ButtonType,
    CaptionOption,
    Label,
    ButtonChannel,
    ButtonChannel2,
    AlphaSections,
    Alphas,
    AlphaName,
};

struct Key {
    const char* name;
    Slot slot;
    int subType; // for the four sub type keys
};

// The keys an object may hold; the first `required` of them must be present.
struct ObjectRule {
    std::initializer_list<Key> keys;
    size_t required;
};

const ObjectRule* RuleFor(Slot slot) {
    static const ObjectRule kDocument{{{"format", Slot::Format, 0},
                                       {"version", Slot::Version, 0},
                                       {"display_lists", Slot::ListSections, 0},
                                       {"user_groups", Slot::Groups, 0},
                                       {"templates", Slot::Templates, 0},
                                       {"alphas", Slot::AlphaSections, 0},
                                       {"password", Slot::Password, 0}},
                                      2};
    static const ObjectRule kListSections{{{"input", Slot::Lists, 0},
                                           {"output", Slot::Lists, 1},
                                           {"opto", Slot::Lists, 2},
                                           {"relay", Slot::Lists, 3}},
                                          0};
    static const ObjectRule kList{{{"name", Slot::ListName, 0}, {"channels", Slot::Channels, 0}},
                                  2};
    static const ObjectRule kGroup{{{"name", Slot::GroupName, 0}, {"lists", Slot::Entries, 0}}, 2};
    static const ObjectRule kEntry{{{"type", Slot::EntryType, 0}, {"index", Slot::EntryIndex, 0}},
                                   2};
    static const ObjectRule kTemplate{{{"name", Slot::TemplateName, 0},
                                       {"number", Slot::TemplateNumber, 0},
                                       {"buttons", Slot::Buttons, 0}},
                                      3};
    static const ObjectRule kButton{{{"type", Slot::ButtonType, 0},
                                     {"caption_option", Slot::CaptionOption, 0},
                                     {"label", Slot::Label, 0},
                                     {"channel", Slot::ButtonChannel, 0},
                                     {"channel2", Slot::ButtonChannel2, 0}},
                                    5};
    static const ObjectRule kAlphaSections{{{"input", Slot::Alphas, 0},
                                            {"output", Slot::Alphas, 1},
                                            {"opto", Slot::Alphas, 2},
                                            {"relay", Slot::Alphas, 3}},
                                           0};
    switch (slot) {
    case Slot::Document:
        return &kDocument;
    case Slot::ListSections:
        return &kListSections;
    case Slot::List:
        return &kList;
    case Slot::Group:
        return &kGroup;
    case Slot::Entry:
        return &kEntry;
    case Slot::Template:
        return &kTemplate;
    case Slot::Button:
        return &kButton;
    case Slot::AlphaSections:
        return &kAlphaSections;
    default:
        return nullptr;
    }
}

// The slot of an array's elements, for the slots that are arrays.
std::optional<Slot> ElementSlot(Slot slot) {
    switch (slot) {
    case Slot::Lists:
        return Slot::List;
    case Slot::Channels:
        return Slot::Channel;
    case Slot::Groups:
        return Slot::Group;
    case Slot::Entries:
        return Slot::Entry;
    case Slot::Templates:
        return Slot::Template;
    case Slot::Buttons:
        return Slot::Button;
    case Slot::Alphas:
        return Slot::AlphaName;
    default:
        return std::nullopt;
    }
}

// What a slot holds, for "expected ..." messages.
const char* Expected(Slot slot) {
    if (RuleFor(slot) != nullptr) {
        return "an object";
    }
    if (ElementSlot(slot)) {
        return "an array";
    }
    switch (slot) {
    case Slot::ListName:
    case Slot::GroupName:
    case Slot::TemplateName:
    case Slot::Label:
    case Slot::AlphaName:
    case Slot::Password:
        return "a string";
    default:
        return "an integer";
    }
}

// Reads the document straight into store parts while the parser goes
// through the text (no tree of the whole document is built). Every value is
// checked against its slot as it arrives, so a value of the wrong kind stops
// the reading at once: nesting never goes deeper than the schema's five
// levels, and nothing is kept of a document that is refused.
class DocumentReader : public nlohmann::json_sax<Json> {
public:
    bool null() override { return Scalar("null"); }
    bool boolean(bool) override { return Scalar("boolean"); }
    bool number_integer(number_integer_t value) override { return Integer(value); }
    bool number_unsigned(number_unsigned_t value) override {
        return Integer(static_cast<int64_t>(std::min<uint64_t>(value, INT64_MAX)));
    }
    bool number_float(number_float_t, const string_t&) override {
        return Scalar("a fractional number");
    }
    bool binary(binary_t&) override { return Scalar("binary"); }

    bool string(string_t& value) override {
        const Slot slot = Begin();
        if (m_failed) {
            return false;
        }
        switch (slot) {
        case Slot::Format:
            return value == kFormatName || Mismatch(slot, "string");
        case Slot::ListName:
            return Text(value, kNameWidth, m_lists[m_subType].back().name);
        case Slot::GroupName:
            return Text(value, kNameWidth, m_groupNames.back());
        case Slot::TemplateName:
            return Text(value, kNameWidth, m_templateNames.back());
        case Slot::Label:
            return Text(value, kLabelWidth, m_templates.back().buttons.back().label);
        case Slot::AlphaName:
            m_alphas[m_subType].push_back(cp1252::FromUtf8(value));
            return true;
        case Slot::Password:
            m_password = cp1252::FromUtf8(value);
            return true;
        default:
            return Mismatch(slot, "string");
        }
    }

    bool start_object(std::size_t) override {
        const Slot slot = Begin();
        if (m_failed) {
            return false;
        }
        if (RuleFor(slot) == nullptr) {
            return Mismatch(slot, "object");
        }
        switch (slot) {
        case Slot::ListSections:
            // A repeated key replaces what came before, as in any JSON reader.
            for (int s = 0; s < 4; ++s) {
                m_lists[s].clear();
                m_listsSeen[s] = false;
            }
            break;
        case Slot::List:
            m_lists[m_subType].emplace_back();
            break;
        case Slot::Group:
            m_groupNames.emplace_back();
            m_groups.emplace_back();
            break;
        case Slot::Entry: {
            UserGroup& group = m_groups.back();
            group.listTypes.push_back(0);
            group.listIndexes.push_back(0);
            break;
        }
        case Slot::Template:
            m_templateNames.emplace_back();
            m_templates.emplace_back();
            break;
        case Slot::Button:
            m_templates.back().buttons.emplace_back();
            break;
        case Slot::AlphaSections:
            m_hasAlphas = true;
            for (auto& names : m_alphas) {
                names.clear();
            }
            break;
        default:
            break;
        }
        m_frames.emplace_back(slot, false);
        return true;
    }

    bool key(string_t& name) override {
        Frame& frame = m_frames.back();
        const ObjectRule& rule = *RuleFor(frame.slot);
        size_t bit = 0;
        for (const Key& key : rule.keys) {
            if (name == key.name) {
                frame.key = key.name;
                frame.child = key.slot;
                frame.seen |= 1u << bit;
                if (key.slot == Slot::Lists || key.slot == Slot::Alphas) {
                    m_subType = key.subType;
                }
                return true;
            }
            ++bit;
        }
        frame.key = name;
        return Fail(ErrorCode::InvalidFileFormat, "unknown key");
    }

    bool end_object() override {
        const Frame& frame = m_frames.back();
        const ObjectRule& rule = *RuleFor(frame.slot);
        size_t bit = 0;
        for (const Key& key : rule.keys) {
            if (bit == rule.required) {
                break;
            }
            if ((frame.seen & (1u << bit)) == 0) {
                m_frames.back().key = key.name;
                return Fail(ErrorCode::InvalidFileFormat, "missing");
            }
            ++bit;
        }
        // Counts from the array sizes; every array keeps at least one element.
        if (frame.slot == Slot::List) {
            DisplayList& list = m_lists[m_subType].back();
            list.channelCount = static_cast<int16_t>(list.channels.size());
            list.channels.resize(ArraySizeFor(list.channelCount));
        } else if (frame.slot == Slot::Group) {
            UserGroup& group = m_groups.back();
            group.listCount = static_cast<int16_t>(group.listTypes.size());
            group.listTypes.resize(ArraySizeFor(group.listCount));
            group.listIndexes.resize(ArraySizeFor(group.listCount));
        } else if (frame.slot == Slot::Template) {
            ButtonTemplate& tmpl = m_templates.back();
            tmpl.buttonCount = static_cast<int16_t>(tmpl.buttons.size());
            tmpl.buttons.resize(ArraySizeFor(tmpl.buttonCount));
        }
        m_frames.pop_back();
        return true;
    }

    bool start_array(std::size_t) override {
        const Slot slot = Begin();
        if (m_failed) {
            return false;
        }
        if (!ElementSlot(slot)) {
            return Mismatch(slot, "array");
        }
        switch (slot) {
        case Slot::Lists:
            m_lists[m_subType].clear();
            m_listsSeen[m_subType] = true;
            break;
        case Slot::Groups:
            m_groupsSeen = true;
            m_groupNames.clear();
            m_groups.clear();
            break;
        case Slot::Templates:
            m_templatesSeen = true;
            m_templateNames.clear();
            m_templates.clear();
            break;
        case Slot::Channels:
            m_lists[m_subType].back().channels.clear();
            break;
        case Slot::Entries:
            m_groups.back().listTypes.clear();
            m_groups.back().listIndexes.clear();
            break;
        case Slot::Buttons:
            m_templates.back().buttons.clear();
            break;
        case Slot::Alphas:
            m_alphas[m_subType].clear();
            break;
        default:
            break;
        }
        m_frames.emplace_back(slot, true);
        return true;
    }

    bool end_array() override {
        m_frames.pop_back();
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& e) override {
        // what() is "[json.exception.parse_error.101] parse error at line 1, ...".
        std::string message = e.what();
        const auto bracket = message.find("] ");
        if (bracket != std::string::npos) {
            message.erase(0, bracket + 2);
        }
        m_failed = true;
        m_status = Status::Fail(ErrorCode::InvalidFileFormat, "invalid JSON: " + message);
        return false;
    }

    const Status& status() const { return m_status; }

    // Replace the store's parts with what was read.
    void MoveInto(PanelStore& store, JsonReadResult& result) {
        static const char* const kListKeys[4] = {"display_lists.input", "display_lists.output",
                                                 "display_lists.opto", "display_lists.relay"};
        for (SubType s : kAllSubTypes) {
            const auto i = static_cast<size_t>(s);
            if (!m_listsSeen[i]) {
                result.missingSections.push_back(kListKeys[i]);
            }
            store.listCount(s) = static_cast<int16_t>(m_lists[i].size());
            store.lists(s) = std::move(m_lists[i]);
            store.lists(s).resize(ArraySizeFor(store.listCount(s)));
        }
        if (!m_groupsSeen) {
            result.missingSections.push_back("user_groups");
        }
        store.groups.userGroupCount = static_cast<int16_t>(m_groups.size());
        store.groups.userGroupNames = std::move(m_groupNames);
        store.groups.userGroups = std::move(m_groups);
        store.groups.userGroupIndex.clear();
        store.groups.userGroupNumber.clear();
        store.groups.Resize(store.groups.userGroupCount);
        OwnPositions(store.groups.userGroupIndex, store.groups.userGroupNumber, store.groups.userGroupCount);
        if (!m_templatesSeen) {
            result.missingSections.push_back("templates");
        }
        store.templates.templateCount = static_cast<int16_t>(m_templates.size());
        store.templates.templateNames = std::move(m_templateNames);
        store.templates.buttonTemplates = std::move(m_templates);
        store.templates.templateIndex.clear();
        store.templates.templatePosition.clear();
        store.templates.Resize(store.templates.templateCount);
        // Like a download: each template's index pair is its own position.
        OwnPositions(store.templates.templateIndex, store.templates.templatePosition, store.templates.templateCount);
        if (m_hasAlphas) {
            for (SubType s : kAllSubTypes) {
                BuildAlphaTable(store.alpha(s), std::move(m_alphas[static_cast<size_t>(s)]));
            }
        }
        result.hasAlphas = m_hasAlphas;
        result.password = std::move(m_password);
    }

private:
    // Both values of each entry's index pair are its own position.
    static void OwnPositions(std::vector<int16_t>& a, std::vector<int16_t>& b, int16_t count) {
        for (int16_t i = 0; i < count; ++i) {
            a[static_cast<size_t>(i)] = i;
            b[static_cast<size_t>(i)] = i;
        }
    }

    struct Frame {
        Frame(Slot s, bool isArray) : slot(s), array(isArray) {}
        Slot slot;
        bool array;
        size_t count = 0;            // array: elements begun so far
        std::string_view key;        // object: the current key
        Slot child = Slot::Document; // object: the slot of the current key
        unsigned seen = 0;           // object: bit per key of its rule
    };

    // The slot of the value that begins now. An array counts its element and
    // closes the element off with the count it finishes (lists, groups and
    // templates keep their counts from their array sizes).
    Slot Begin() {
        if (m_frames.empty()) {
            return Slot::Document;
        }
        Frame& frame = m_frames.back();
        if (!frame.array) {
            return frame.child;
        }
        const size_t limit = frame.slot == Slot::Alphas ? static_cast<size_t>(kNoChannel)
                                                        : static_cast<size_t>(INT16_MAX);
        if (frame.count == limit) {
            m_frames.back().count = SIZE_MAX; // the path names the array itself
            Fail(ErrorCode::Overflow, frame.slot == Slot::Alphas
                                          ? "more than " + std::to_string(kNoChannel) + " channels"
                                          : "more than " + std::to_string(INT16_MAX) + " entries");
            return frame.slot;
        }
        ++frame.count;
        return *ElementSlot(frame.slot);
    }

    bool Scalar(const char* found) {
        const Slot slot = Begin();
        if (m_failed) {
            return false;
        }
        return Mismatch(slot, found);
    }

    bool Integer(int64_t value) {
        const Slot slot = Begin();
        if (m_failed) {
            return false;
        }
        int64_t min = INT16_MIN;
        int64_t max = INT16_MAX;
        int16_t* target = nullptr;
        switch (slot) {
        case Slot::Version:
            return value == kFormatVersion || Mismatch(slot, "");
        case Slot::Channel:
            m_lists[m_subType].back().channels.push_back(0);
            target = &m_lists[m_subType].back().channels.back();
            min = 0;
            max = kNoChannel;
            break;
        case Slot::EntryType:
            target = &m_groups.back().listTypes.back();
            break;
        case Slot::EntryIndex:
            target = &m_groups.back().listIndexes.back();
            break;
        case Slot::TemplateNumber:
            target = &m_templates.back().number;
            break;
        case Slot::ButtonType:
            target = &m_templates.back().buttons.back().type;
            break;
        case Slot::CaptionOption:
            target = &m_templates.back().buttons.back().captionOption;
            break;
        case Slot::ButtonChannel:
        case Slot::ButtonChannel2: {
            PanelButton& button = m_templates.back().buttons.back();
            target = slot == Slot::ButtonChannel ? &button.channel : &button.channel2;
            min = 0;
            max = kNoChannel;
            break;
        }
        default:
            return Mismatch(slot, "an integer");
        }
        if (value < min || value > max) {
            return Fail(ErrorCode::Overflow,
                        "out of range " + std::to_string(min) + ".." + std::to_string(max));
        }
        *target = static_cast<int16_t>(value);
        return true;
    }

    // Characters are counted after the UTF-8 text is mapped to Windows-1252
    // bytes, one byte per character.
    bool Text(const std::string& utf8, size_t maxChars, std::string& target) {
        if (cp1252::Utf8Length(utf8) > maxChars) {
            return Fail(ErrorCode::Overflow,
                        "longer than " + std::to_string(maxChars) + " characters");
        }
        target = cp1252::FromUtf8(utf8);
        return true;
    }

    // A value of the wrong kind (format and version: of the wrong value).
    bool Mismatch(Slot slot, const char* found) {
        if (slot == Slot::Format) {
            return Fail(ErrorCode::InvalidFileFormat,
                        std::string("expected \"") + kFormatName + "\"");
        }
        if (slot == Slot::Version) {
            return Fail(ErrorCode::InvalidFileFormat,
                        "unsupported version (expected " + std::to_string(kFormatVersion) + ")");
        }
        return Fail(ErrorCode::TypeMismatch,
                    std::string("expected ") + Expected(slot) + ", found " + found);
    }

    // Fails naming the value being read: the path down the open containers.
    bool Fail(ErrorCode code, const std::string& message) {
        std::string path;
        for (const Frame& frame : m_frames) {
            if (frame.array) {
                if (frame.count != SIZE_MAX) {
                    path = Element(path, frame.count - 1);
                }
            } else {
                if (!path.empty()) {
                    path += '.';
                }
                path.append(frame.key);
            }
        }
        m_failed = true;
        m_status = Status::Fail(code, (path.empty() ? "(document)" : path) + ": " + message);
        return false;
    }

    std::vector<Frame> m_frames;
    bool m_failed = false;
    Status m_status;
    size_t m_subType = 0;
    std::array<std::vector<DisplayList>, 4> m_lists;
    std::array<bool, 4> m_listsSeen{};
    bool m_groupsSeen = false;
    std::vector<std::string> m_groupNames;
    std::vector<UserGroup> m_groups;
    bool m_templatesSeen = false;
    std::vector<std::string> m_templateNames;
    std::vector<ButtonTemplate> m_templates;
    bool m_hasAlphas = false;
    std::array<std::vector<std::string>, 4> m_alphas;
    std::optional<std::string> m_password;
};

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
    for (int i = 0; i < ValidCount(store.templates.templateCount); ++i) {
        const ButtonTemplate& tmpl = At(store.templates.buttonTemplates, i);
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
    // A bad document leaves the store as it was: the parts are only moved in
    // once the whole text has been read.
    DocumentReader reader;
    if (!Json::sax_parse(text.begin(), text.end(), &reader)) {
        result.status = reader.status();
        return result;
    }
    reader.MoveInto(store, result);
    return result;
}

} // namespace lumeth
