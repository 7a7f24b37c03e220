#include "files/panel_data_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "files/byte_order.h"
#include "files/file_io.h"
#include "model/limits.h"

namespace lumeth {

namespace {

// Reads the body of a panel data file straight into the store, so that after
// a failure the store holds the defaults plus everything read so far. The
// description of a field is only built when reading it fails.
class PanelDataReader {
public:
    PanelDataReader(std::string_view bytes, PanelStore& store) : m_in(bytes), m_store(store) {}

    LoadResult Read() {
        LoadResult result;
        int16_t marker = 0;
        if (!m_in.ReadInt16(marker)) {
            result.outcome = LoadOutcome::NotPanelData;
            result.status = Status::Fail(ErrorCode::InvalidFileFormat,
                                         "not a panel data file (shorter than its 2-byte marker)");
            return result;
        }
        if (marker != kPanelDataMarker) {
            result.outcome = LoadOutcome::NotPanelData;
            result.status = Status::Fail(ErrorCode::InvalidFileFormat,
                                         "not a panel data file (first value " +
                                             std::to_string(marker) + ", expected 140)");
            return result;
        }
        const bool read = ReadHeader() && ReadBody();
        result.version = m_version;
        if (read && m_in.remaining() > 0) {
            m_damage.push_back(TrailingBytesFinding(m_in.remaining()));
        }
        result.damage = std::move(m_damage);
        if (!read) {
            result.outcome = LoadOutcome::Failed;
            result.status = std::move(m_status);
        }
        return result;
    }

private:
    template <typename Describe> bool Int(int16_t& value, Describe&& describe) {
        const size_t at = m_in.position();
        if (m_in.ReadInt16(value)) {
            return true;
        }
        Truncated(at, describe());
        return false;
    }

    template <typename Describe> bool Text(size_t width, std::string& text, Describe&& describe) {
        const size_t at = m_in.position();
        if (m_in.ReadText(width, text)) {
            return true;
        }
        Truncated(at, describe());
        return false;
    }

    // A count field is kept as read, even negative (a damaged or hand-made
    // file): its arrays keep one spare entry, its section then has no
    // records, and loading goes on with the rest of the file. The negative
    // count is reported as damage, so that nothing sends it on.
    template <typename Describe>
    bool Count(int16_t& count, const StoreLocation& at, const char* name, Describe&& describe) {
        if (!Int(count, describe)) {
            return false;
        }
        if (count < 0) {
            m_damage.push_back(NegativeCountFinding(at, name, count));
        }
        return true;
    }

    void Truncated(size_t at, const std::string& what) {
        m_status = Status::Fail(ErrorCode::InputPastEndOfFile,
                                "truncated at byte " + std::to_string(at) + " reading " + what);
    }

    bool ReadHeader() {
        int16_t value = 0;
        if (!Int(value, [] { return std::string("version escape or header text length"); })) {
            return false;
        }
        int16_t textLength = value;
        if (value == kPanelDataVersionEscape) {
            if (!Int(m_version, [] { return std::string("version"); })) {
                return false;
            }
            if (!Int(textLength, [] { return std::string("header text length"); })) {
                return false;
            }
        } else {
            m_version = 0; // no escape: the value is the header text length
        }
        if (textLength < 0) {
            m_status = Status::Fail(ErrorCode::InvalidFileFormat,
                                    "negative header text length " + std::to_string(textLength) +
                                        " at byte " + std::to_string(m_in.position() - 2));
            return false;
        }
        const size_t at = m_in.position();
        if (!m_in.Skip(static_cast<size_t>(textLength))) {
            Truncated(at, "header text");
            return false;
        }
        return true;
    }

    bool ReadBody() {
        for (SubType s : kAllSubTypes) {
            if (!PanelDataSections(m_version).has(ListsPart(s))) {
                continue; // older files keep the default single list
            }
            if (!ReadDisplayLists(s)) {
                return false;
            }
        }
        return ReadUserGroups() && ReadTemplates();
    }

    bool ReadDisplayLists(SubType s) {
        const std::string kind = std::string(SubTypeName(s)) + " display list";
        int16_t count = 0;
        if (!Count(count, {ListsPart(s)}, "display list count", [&] { return kind + " count"; })) {
            return false;
        }
        m_store.listCount(s) = count;
        auto& lists = m_store.lists(s);
        lists.assign(ArraySizeFor(count), DisplayList{});
        for (int i = 0; i < count; ++i) {
            DisplayList& list = lists[static_cast<size_t>(i)];
            const auto what = [&](const char* field) {
                return kind + " " + std::to_string(i) + " " + field;
            };
            if (!Text(kNameWidth, list.name, [&] { return what("name"); })) {
                return false;
            }
            if (!Count(list.channelCount, {ListsPart(s), i}, "channel count",
                       [&] { return what("channel count"); })) {
                return false;
            }
            list.channels.assign(ArraySizeFor(list.channelCount), 0);
            for (int k = 0; k < list.channelCount; ++k) {
                if (!Int(list.channels[static_cast<size_t>(k)], [&] {
                        return kind + " " + std::to_string(i) + " channel " + std::to_string(k);
                    })) {
                    return false;
                }
            }
        }
        return true;
    }

    bool ReadUserGroups() {
        int16_t count = 0;
        if (!Count(count, {Part::UserGroups}, "user group count",
                   [] { return std::string("user group count"); })) {
            return false;
        }
        m_store.groups.userGroupCount = count;
        m_store.groups.userGroupNames.assign(ArraySizeFor(count), std::string());
        m_store.groups.userGroups.assign(ArraySizeFor(count), UserGroup{});
        m_store.groups.userGroupIndex.assign(ArraySizeFor(count), 0);
        m_store.groups.userGroupNumber.assign(ArraySizeFor(count), 0);
        for (int i = 0; i < count; ++i) {
            const auto pos = static_cast<size_t>(i);
            UserGroup& group = m_store.groups.userGroups[pos];
            const auto what = [&](const std::string& field) {
                return "user group " + std::to_string(i) + " " + field;
            };
            if (!Text(kNameWidth, m_store.groups.userGroupNames[pos],
                      [&] { return what("name"); })) {
                return false;
            }
            if (!Count(group.listCount, {Part::UserGroups, i}, "list count",
                       [&] { return what("list count"); })) {
                return false;
            }
            group.listIndexes.assign(ArraySizeFor(group.listCount), 0);
            group.listTypes.assign(ArraySizeFor(group.listCount), 0);
            for (int k = 0; k < group.listCount; ++k) {
                const auto entry = static_cast<size_t>(k);
                if (!Int(group.listIndexes[entry],
                         [&] { return what("entry " + std::to_string(k) + " list position"); }) ||
                    !Int(group.listTypes[entry],
                         [&] { return what("entry " + std::to_string(k) + " list type"); })) {
                    return false;
                }
            }
            m_store.groups.userGroupIndex[pos] = static_cast<int16_t>(i);
            m_store.groups.userGroupNumber[pos] = static_cast<int16_t>(i);
        }
        return true;
    }

    bool ReadTemplates() {
        int16_t count = 0;
        if (!Count(count, {Part::Templates}, "template count",
                   [] { return std::string("template count"); })) {
            return false;
        }
        // TemplateIndex and TemplatePosition are deliberately left alone:
        // loading a file does not touch that pair.
        m_store.templates.templateCount = count;
        m_store.templates.templateNames.assign(ArraySizeFor(count), std::string());
        m_store.templates.buttonTemplates.assign(ArraySizeFor(count), ButtonTemplate{});
        const bool hasNumbers = m_version > 1;
        for (int i = 0; i < count; ++i) {
            const auto pos = static_cast<size_t>(i);
            ButtonTemplate& tmpl = m_store.templates.buttonTemplates[pos];
            const auto what = [&](const std::string& field) {
                return "template " + std::to_string(i) + " " + field;
            };
            if (!Text(kNameWidth, m_store.templates.templateNames[pos],
                      [&] { return what("name"); })) {
                return false;
            }
            if (hasNumbers && !Int(tmpl.number, [&] { return what("number"); })) {
                return false;
            }
            if (!Count(tmpl.buttonCount, {Part::Templates, i}, "button count",
                       [&] { return what("button count"); })) {
                return false;
            }
            tmpl.buttons.assign(ArraySizeFor(tmpl.buttonCount), PanelButton{});
            for (int k = 0; k < tmpl.buttonCount; ++k) {
                PanelButton& button = tmpl.buttons[static_cast<size_t>(k)];
                const auto field = [&](const char* name) {
                    return what("button " + std::to_string(k) + " " + name);
                };
                if (!Int(button.type, [&] { return field("type"); }) ||
                    (hasNumbers &&
                     !Int(button.captionOption, [&] { return field("caption option"); })) ||
                    !Int(button.channel, [&] { return field("channel"); }) ||
                    !Int(button.channel2, [&] { return field("channel 2"); }) ||
                    !Text(kLabelWidth, button.label, [&] { return field("label"); })) {
                    return false;
                }
            }
        }
        return true;
    }

    ByteReader m_in;
    PanelStore& m_store;
    int16_t m_version = 3;
    Status m_status;
    std::vector<CheckFinding> m_damage;
};

// A count as written: negative counts (never made by the store's own
// operations) are written as 0 so that the file stays readable.
int16_t CountToWrite(int16_t count) {
    return static_cast<int16_t>(ValidCount(count));
}

Status IoFailure(ErrorCode code, const std::string& what, int err) {
    return Status::Fail(code, what + ": " + std::strerror(err));
}

// The encoded size, so the output is allocated once.
size_t EncodedSize(const PanelStore& store) {
    size_t size = 8 + 4 * 2 + 2 + 2;
    for (SubType s : kAllSubTypes) {
        for (int i = 0; i < CountToWrite(store.listCount(s)); ++i) {
            size +=
                kNameWidth + 2 + 2 * size_t(CountToWrite(RefAt(store.lists(s), i).channelCount));
        }
    }
    for (int i = 0; i < CountToWrite(store.groups.userGroupCount); ++i) {
        size +=
            kNameWidth + 2 + 4 * size_t(CountToWrite(RefAt(store.groups.userGroups, i).listCount));
    }
    for (int i = 0; i < CountToWrite(store.templates.templateCount); ++i) {
        size += kNameWidth + 4 +
                (8 + kLabelWidth) *
                    size_t(CountToWrite(RefAt(store.templates.buttonTemplates, i).buttonCount));
    }
    return size;
}

// The defaults a load starts from. The template index pair is neither
// resized nor set by loading a file, so it survives the reset as it was.
void ResetForLoad(PanelStore& store) {
    std::vector<int16_t> index = std::move(store.templates.templateIndex);
    std::vector<int16_t> position = std::move(store.templates.templatePosition);
    store.ResetToDefaults();
    store.templates.templateIndex = std::move(index);
    store.templates.templatePosition = std::move(position);
}

} // namespace

PartSet PanelDataSections(int version) {
    return version == kPanelDataVersion ? kUploadParts
                                        : kUploadParts - PartSet{Part::OptoLists, Part::RelayLists};
}

LoadResult LoadPanelData(std::string_view bytes, PanelStore& store) {
    ResetForLoad(store);
    return PanelDataReader(bytes, store).Read();
}

LoadResult LoadPanelDataFile(const std::string& path, PanelStore& store) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) {
        LoadResult result;
        result.outcome = LoadOutcome::NoFile;
        result.status = Status::Fail(ErrorCode::FileNotFound, "no such file");
        return result;
    }
    ResetForLoad(store);
    if (std::filesystem::is_directory(path, ec)) {
        LoadResult result;
        result.outcome = LoadOutcome::Failed;
        result.status = Status::Fail(ErrorCode::PathFileAccessError, "is a folder, not a file");
        return result;
    }
    std::ifstream in(path, std::ios::binary);
    std::string bytes;
    if (in) {
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    if (!in && !in.eof()) {
        LoadResult result;
        result.outcome = LoadOutcome::Failed;
        result.status = IoFailure(ErrorCode::PathFileAccessError, "cannot read the file", errno);
        return result;
    }
    return PanelDataReader(bytes, store).Read();
}

std::string EncodePanelData(const PanelStore& store) {
    std::string out;
    out.reserve(EncodedSize(store));
    ByteWriter w(out);
    w.WriteInt16(kPanelDataMarker);
    w.WriteInt16(kPanelDataVersionEscape);
    w.WriteInt16(kPanelDataVersion);
    w.WriteInt16(0); // header text length

    for (SubType s : kAllSubTypes) {
        const int16_t count = CountToWrite(store.listCount(s));
        w.WriteInt16(count);
        for (int i = 0; i < count; ++i) {
            const DisplayList& list = RefAt(store.lists(s), i);
            const int16_t channels = CountToWrite(list.channelCount);
            w.WriteFixedText(list.name, kNameWidth);
            w.WriteInt16(channels);
            for (int k = 0; k < channels; ++k) {
                w.WriteInt16(RefAt(list.channels, k));
            }
        }
    }

    const int16_t groups = CountToWrite(store.groups.userGroupCount);
    w.WriteInt16(groups);
    for (int i = 0; i < groups; ++i) {
        const UserGroup& group = RefAt(store.groups.userGroups, i);
        const int16_t entries = CountToWrite(group.listCount);
        w.WriteFixedText(RefAt(store.groups.userGroupNames, i), kNameWidth);
        w.WriteInt16(entries);
        for (int k = 0; k < entries; ++k) {
            w.WriteInt16(RefAt(group.listIndexes, k));
            w.WriteInt16(RefAt(group.listTypes, k));
        }
    }

    const int16_t templates = CountToWrite(store.templates.templateCount);
    w.WriteInt16(templates);
    for (int i = 0; i < templates; ++i) {
        const ButtonTemplate& tmpl = RefAt(store.templates.buttonTemplates, i);
        const int16_t buttons = CountToWrite(tmpl.buttonCount);
        w.WriteFixedText(RefAt(store.templates.templateNames, i), kNameWidth);
        w.WriteInt16(tmpl.number);
        w.WriteInt16(buttons);
        for (int k = 0; k < buttons; ++k) {
            const PanelButton& b = RefAt(tmpl.buttons, k);
            w.WriteInt16(b.type);
            w.WriteInt16(b.captionOption);
            w.WriteInt16(b.channel);
            w.WriteInt16(b.channel2);
            w.WriteFixedText(b.label, kLabelWidth);
        }
    }
    return out;
}

Status SavePanelDataFile(const std::string& path, const PanelStore& store) {
    return ReplaceFileContents(path, EncodePanelData(store));
}

} // namespace lumeth
