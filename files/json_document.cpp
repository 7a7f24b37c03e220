#include "files/json_document.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include <nlohmann/json.hpp>

#include "files/json_schema.h"
#include "files/json_token_guard.h"
#include "files/panel_data_file.h"
#include "model/alpha_sort.h"
#include "model/cp1252.h"

namespace lumeth {

namespace {

using Json = nlohmann::ordered_json;

// The longest text a value holds is an alpha name or a password: the link
// carries their width or length in one 7-bit byte, so 127 characters (names
// and labels are shorter). A character takes at most six bytes in a JSON
// string ("\u00e9"), so a longer string is no value of the document and is
// refused as soon as it passes this, before the parser has buffered more.
constexpr size_t kLongestTextCharacters = 127;
constexpr size_t kLongestStringBytes = kLongestTextCharacters * 6;
// An integer value has at most 20 characters ("-9223372036854775808"); a
// fraction or exponent is refused anyway, once read.
constexpr size_t kLongestNumber = 64;

// ---- writing ----------------------------------------------------------------

// Writes the document for people and for diff: one display list, group,
// button or channel name per line, with its channel numbers or list entries
// inline and written compactly ([0,13,26]; {"type":11,"index":0}), two-space
// indentation. The text goes to the sink in pieces of about
// 64 KiB, so a large configuration is never held as a whole.
class DocumentWriter {
public:
    explicit DocumentWriter(const ByteSink& sink) : m_sink(sink) {
        m_buffer.reserve(kChunk + 4096);
        // Each key with what comes before it and its colon: the
        // document's members one per line, a record's inline after its
        // opening brace, a group's list entries without blanks.
        for (const JsonNode& node : JsonSchema()) {
            if (node.key == nullptr || node.slot == JsonSlot::Lists ||
                node.slot == JsonSlot::Alphas) {
                continue; // array elements; sub type sections are written by part
            }
            const bool first = JsonMembers(node.parent).front() == &node;
            const bool compact = node.parent == JsonSlot::Entry;
            std::string& text = m_keys[static_cast<size_t>(node.slot)];
            if (node.parent == JsonSlot::Document) {
                text = first ? "\n  " : ",\n  ";
            } else {
                text = first ? "{" : (compact ? "," : ", ");
            }
            text += '"' + std::string(node.key) + (compact ? "\":" : "\": ");
        }
    }

    bool Write(const PanelStore& store, const JsonDocumentOptions& options) {
        Raw("{");
        Member(JsonSlot::Format);
        String(kJsonFormatName);
        Member(JsonSlot::Version);
        Number(kJsonFormatVersion);
        Member(JsonSlot::ListSections);
        Raw("{");
        for (SubType s : kAllSubTypes) {
            DisplayLists(store, s);
        }
        Raw("\n  }");
        UserGroups(store.groups);
        Templates(store.templates);
        if (options.includeAlphas) {
            Member(JsonSlot::AlphaSections);
            Raw("{");
            for (SubType s : kAllSubTypes) {
                Alphas(store.alpha(s).channelNames, s);
            }
            Raw("\n  }");
        }
        if (options.password) {
            Member(JsonSlot::Password);
            Name(*options.password, std::string::npos);
        }
        Raw("\n}\n");
        return Flush();
    }

private:
    static constexpr size_t kChunk = 64 * 1024;

    // A sub type's section opens its object's first line without a comma.
    void SectionKey(Part part, SubType s) {
        Raw(s == SubType::Input ? "\n    \"" : ",\n    \"");
        Raw(JsonSection(part).key);
        Raw("\": [");
    }

    void DisplayLists(const PanelStore& store, SubType s) {
        SectionKey(ListsPart(s), s);
        for (int i = 0; i < ValidCount(store.listCount(s)); ++i) {
            const DisplayList& list = RefAt(store.lists(s), i);
            Item(i, 6);
            Member(JsonSlot::ListName);
            Name(list.name, kNameWidth);
            Member(JsonSlot::Channels);
            Raw("[");
            for (int k = 0; k < ValidCount(list.channelCount); ++k) {
                if (k > 0) {
                    m_buffer += ',';
                }
                Number(RefAt(list.channels, k));
            }
            Raw("]}");
        }
        Close(store.listCount(s) > 0, 4, ']');
    }

    void UserGroups(const UserGroupTable& groups) {
        Member(JsonSlot::Groups);
        Raw("[");
        for (int i = 0; i < ValidCount(groups.userGroupCount); ++i) {
            const UserGroup& group = RefAt(groups.userGroups, i);
            Item(i, 4);
            Member(JsonSlot::GroupName);
            Name(RefAt(groups.userGroupNames, i), kNameWidth);
            Member(JsonSlot::Entries);
            Raw("[");
            for (int k = 0; k < ValidCount(group.listCount); ++k) {
                if (k > 0) {
                    m_buffer += ',';
                }
                Member(JsonSlot::EntryType);
                Number(RefAt(group.listTypes, k));
                Member(JsonSlot::EntryIndex);
                Number(RefAt(group.listIndexes, k));
                Raw("}");
            }
            Raw("]}");
        }
        Close(groups.userGroupCount > 0, 2, ']');
    }

    void Templates(const TemplateTable& templates) {
        Member(JsonSlot::Templates);
        Raw("[");
        for (int i = 0; i < ValidCount(templates.templateCount); ++i) {
            const ButtonTemplate& tmpl = RefAt(templates.buttonTemplates, i);
            Item(i, 4);
            Member(JsonSlot::TemplateName);
            Name(RefAt(templates.templateNames, i), kNameWidth);
            Member(JsonSlot::TemplateNumber);
            Number(tmpl.number);
            Member(JsonSlot::Buttons);
            Raw("[");
            for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
                Item(k, 6);
                Button(RefAt(tmpl.buttons, k));
            }
            Close(tmpl.buttonCount > 0, 4, ']');
            Raw("}");
        }
        Close(templates.templateCount > 0, 2, ']');
    }

    void Button(const PanelButton& b) {
        Member(JsonSlot::ButtonType);
        Number(b.type);
        Member(JsonSlot::CaptionOption);
        Number(b.captionOption);
        Member(JsonSlot::Label);
        Name(b.label, kLabelWidth);
        Member(JsonSlot::ButtonChannel);
        Number(b.channel);
        Member(JsonSlot::ButtonChannel2);
        Number(b.channel2);
        Raw("}");
    }

    void Alphas(const std::vector<std::string>& names, SubType s) {
        SectionKey(AlphasPart(s), s);
        for (size_t i = 0; i < names.size(); ++i) {
            Item(static_cast<int>(i), 6);
            Name(names[i], std::string::npos);
        }
        Close(!names.empty(), 4, ']');
    }

    // The key of `slot` with its colon, after the separator before it.
    void Member(JsonSlot slot) { Raw(m_keys[static_cast<size_t>(slot)]); }

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
    std::array<std::string, kJsonSlotCount> m_keys;
    std::string m_buffer;
    bool m_ok = true;
};

// ---- reading ----------------------------------------------------------------

using Slot = JsonSlot;

// What a slot holds, for "expected ..." messages.
const char* Expected(Slot slot) {
    switch (JsonNodeOf(slot).value) {
    case JsonValue::Object:
        return "an object";
    case JsonValue::Array:
        return "an array";
    case JsonValue::Text:
        return "a string";
    case JsonValue::Integer:
        break;
    }
    return "an integer";
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
        const JsonNode& node = Begin();
        const Slot slot = node.slot;
        if (m_failed) {
            return false;
        }
        switch (slot) {
        case Slot::Format:
            return value == kJsonFormatName || Mismatch(slot, "string");
        case Slot::ListName:
            return Text(node, value, m_lists[m_subType].back().name);
        case Slot::GroupName:
            return Text(node, value, m_groupNames.back());
        case Slot::TemplateName:
            return Text(node, value, m_templateNames.back());
        case Slot::Label:
            return Text(node, value, m_templates.back().buttons.back().label);
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
        const JsonNode& node = Begin();
        const Slot slot = node.slot;
        if (m_failed) {
            return false;
        }
        if (node.value != JsonValue::Object) {
            return Mismatch(slot, "object");
        }
        switch (slot) {
        case Slot::ListSections:
            // A repeated key replaces what came before, as in any JSON reader.
            for (SubType s : kAllSubTypes) {
                m_lists[Index(s)].clear();
                m_sections.remove(ListsPart(s));
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
        m_frames.emplace_back(node, false);
        return true;
    }

    bool key(string_t& name) override {
        Frame& frame = m_frames.back();
        size_t bit = 0;
        for (const JsonNode* member : JsonMembers(frame.slot)) {
            if (name == member->key) {
                frame.key = member->key;
                frame.child = member;
                frame.seen |= 1u << bit;
                if (member->slot == Slot::Lists || member->slot == Slot::Alphas) {
                    m_part = *member->part;
                    m_subType = Index(*Info(m_part).subType);
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
        size_t bit = 0;
        for (const JsonNode* member : JsonMembers(frame.slot)) {
            if (member->required && (frame.seen & (1u << bit)) == 0) {
                m_frames.back().key = member->key;
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
        const JsonNode& node = Begin();
        const Slot slot = node.slot;
        if (m_failed) {
            return false;
        }
        if (node.value != JsonValue::Array) {
            return Mismatch(slot, "array");
        }
        switch (slot) {
        case Slot::Lists:
            m_lists[m_subType].clear();
            m_sections.add(m_part);
            break;
        case Slot::Groups:
            m_sections.add(Part::UserGroups);
            m_groupNames.clear();
            m_groups.clear();
            break;
        case Slot::Templates:
            m_sections.add(Part::Templates);
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
            m_sections.add(m_part);
            break;
        default:
            break;
        }
        m_frames.emplace_back(node, true);
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

    explicit DocumentReader(const JsonTokenGuard& guard) : m_guard(guard) {}

    const Status& status() const { return m_status; }

    // The input was cut off inside a value not yet read: name the element
    // being read.
    Status Refuse(const std::string& reason) {
        if (!m_frames.empty() && m_frames.back().array) {
            ++m_frames.back().count;
        }
        Fail(ErrorCode::Overflow, reason);
        return m_status;
    }

    // Replace the store's parts with what was read.
    void MoveInto(PanelStore& store, JsonReadResult& result) {
        for (SubType s : kAllSubTypes) {
            const size_t i = Index(s);
            store.listCount(s) = static_cast<int16_t>(m_lists[i].size());
            store.lists(s) = std::move(m_lists[i]);
            store.lists(s).resize(ArraySizeFor(store.listCount(s)));
        }
        UserGroupTable& groups = store.groups;
        groups.userGroupNames = std::move(m_groupNames);
        groups.userGroups = std::move(m_groups);
        Finish(groups, groups.userGroupCount, groups.userGroups.size(), groups.userGroupIndex,
               groups.userGroupNumber);
        TemplateTable& templates = store.templates;
        templates.templateNames = std::move(m_templateNames);
        templates.buttonTemplates = std::move(m_templates);
        Finish(templates, templates.templateCount, templates.buttonTemplates.size(),
               templates.templateIndex, templates.templatePosition);
        if (m_hasAlphas) {
            for (SubType s : kAllSubTypes) {
                BuildAlphaTable(store.alpha(s), std::move(m_alphas[Index(s)]));
            }
        }
        if (m_password) {
            m_sections.add(Part::Password);
        }
        result.sections = m_sections;
        result.hasAlphas = m_hasAlphas;
        result.password = std::move(m_password);
    }

private:
    // The count from the records read, every array sized for it, and both
    // values of each record's index pair its own position, as a download
    // leaves them.
    template <typename Table>
    static void Finish(Table& table, int16_t& count, size_t records, std::vector<int16_t>& index,
                       std::vector<int16_t>& position) {
        count = static_cast<int16_t>(records);
        index.clear();
        position.clear();
        table.Resize(count);
        for (int16_t i = 0; i < count; ++i) {
            index[static_cast<size_t>(i)] = i;
            position[static_cast<size_t>(i)] = i;
        }
    }

    struct Frame {
        Frame(const JsonNode& node, bool isArray)
            : slot(node.slot), array(isArray), limit(static_cast<size_t>(node.max)),
              element(isArray ? &JsonNodeOf(*JsonElement(node.slot)) : nullptr) {}
        Slot slot;
        bool array;
        size_t limit;                    // array: the most elements
        const JsonNode* element;         // array: the node of its elements
        size_t count = 0;                // array: elements begun so far
        std::string_view key;            // object: the current key
        const JsonNode* child = nullptr; // object: the node of the current key
        unsigned seen = 0;               // object: bit per key of its schema node
    };

    // The schema node of the value that begins now. An array counts its
    // element (lists, groups and templates keep their counts from their
    // array sizes).
    const JsonNode& Begin() {
        if (m_guard.stopped()) {
            // A number cut off by the guard still reaches here: not a value.
            m_failed = true;
            return JsonNodeOf(Slot::Document);
        }
        if (m_frames.empty()) {
            return JsonNodeOf(Slot::Document);
        }
        Frame& frame = m_frames.back();
        if (!frame.array) {
            return *frame.child;
        }
        if (frame.count == frame.limit) {
            frame.count = SIZE_MAX; // the path names the array itself
            Fail(ErrorCode::Overflow, "more than " + std::to_string(frame.limit) +
                                          (frame.slot == Slot::Alphas ? " channels" : " entries"));
            return JsonNodeOf(frame.slot);
        }
        ++frame.count;
        return *frame.element;
    }

    bool Scalar(const char* found) {
        const JsonNode& node = Begin();
        if (m_failed) {
            return false;
        }
        return Mismatch(node.slot, found);
    }

    bool Integer(int64_t value) {
        const JsonNode& node = Begin();
        if (m_failed) {
            return false;
        }
        if (node.value != JsonValue::Integer) {
            return Mismatch(node.slot, "an integer");
        }
        if (value < node.min || value > node.max) {
            if (node.slot == Slot::Version) {
                return Mismatch(node.slot, "");
            }
            return Fail(ErrorCode::Overflow, "out of range " + std::to_string(node.min) + ".." +
                                                 std::to_string(node.max));
        }
        *Target(node.slot) = static_cast<int16_t>(value);
        return true;
    }

    // Where the store keeps the integer of `slot`.
    int16_t* Target(Slot slot) {
        switch (slot) {
        case Slot::Version:
            return &m_version; // its range allows the one version read
        case Slot::Channel:
            return &m_lists[m_subType].back().channels.emplace_back();
        case Slot::EntryType:
            return &m_groups.back().listTypes.back();
        case Slot::EntryIndex:
            return &m_groups.back().listIndexes.back();
        case Slot::TemplateNumber:
            return &m_templates.back().number;
        case Slot::ButtonType:
            return &m_templates.back().buttons.back().type;
        case Slot::CaptionOption:
            return &m_templates.back().buttons.back().captionOption;
        case Slot::ButtonChannel:
            return &m_templates.back().buttons.back().channel;
        default:
            return &m_templates.back().buttons.back().channel2;
        }
    }

    // Characters are counted after the UTF-8 text is mapped to Windows-1252
    // bytes, one byte per character.
    bool Text(const JsonNode& node, const std::string& utf8, std::string& target) {
        const auto maxChars = static_cast<size_t>(node.max);
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
                        std::string("expected \"") + kJsonFormatName + "\"");
        }
        if (slot == Slot::Version) {
            return Fail(ErrorCode::InvalidFileFormat, "unsupported version (expected " +
                                                          std::to_string(kJsonFormatVersion) + ")");
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
                    path += JsonIndex(frame.count - 1);
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
    const JsonTokenGuard& m_guard;
    bool m_failed = false;
    Status m_status;
    Part m_part = Part::InputLists; // the sub type section being read
    size_t m_subType = 0;
    PartSet m_sections;
    std::array<std::vector<DisplayList>, 4> m_lists;
    std::vector<std::string> m_groupNames;
    std::vector<UserGroup> m_groups;
    std::vector<std::string> m_templateNames;
    std::vector<ButtonTemplate> m_templates;
    bool m_hasAlphas = false;
    std::array<std::vector<std::string>, 4> m_alphas;
    std::optional<std::string> m_password;
    int16_t m_version = 0;
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

Status RequireJsonSections(PartSet present) {
    return RequireSections(present, "every section is sent; write [] to send an empty one");
}

Status JsonReadResult::RequireAllSections() const {
    return RequireJsonSections(sections);
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
    const auto fail = [](const StoreLocation& at) {
        return Status::Fail(ErrorCode::Overflow,
                            JsonPath(at) + ": out of range 0.." + std::to_string(kNoChannel));
    };
    for (SubType s : kAllSubTypes) {
        for (int i = 0; i < ValidCount(store.listCount(s)); ++i) {
            const DisplayList& list = RefAt(store.lists(s), i);
            for (int k = 0; k < ValidCount(list.channelCount); ++k) {
                if (outside(RefAt(list.channels, k))) {
                    return fail({ListsPart(s), i, StoreField::Channel, k});
                }
            }
        }
    }
    for (int i = 0; i < ValidCount(store.templates.templateCount); ++i) {
        const ButtonTemplate& tmpl = RefAt(store.templates.buttonTemplates, i);
        for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
            const PanelButton& b = RefAt(tmpl.buttons, k);
            if (outside(b.channel)) {
                return fail({Part::Templates, i, StoreField::ButtonChannel, k});
            }
            if (outside(b.channel2)) {
                return fail({Part::Templates, i, StoreField::ButtonChannel2, k});
            }
        }
    }
    for (SubType s : kAllSubTypes) {
        if (store.alpha(s).channelNames.size() > static_cast<size_t>(kNoChannel)) {
            return Status::Fail(ErrorCode::Overflow, JsonPath({AlphasPart(s)}) + ": more than " +
                                                         std::to_string(kNoChannel) + " channels");
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
    JsonTokenGuard guard(text, kLongestStringBytes, kLongestNumber);
    DocumentReader reader(guard);
    const bool parsed = Json::sax_parse(guard.begin(), guard.end(), &reader);
    if (guard.stopped()) {
        result.status = reader.Refuse(guard.Reason());
        return result;
    }
    if (!parsed) {
        result.status = reader.status();
        return result;
    }
    reader.MoveInto(store, result);
    return result;
}

} // namespace lumeth
