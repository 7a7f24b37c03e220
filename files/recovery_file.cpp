#include "files/recovery_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "files/file_io.h"

namespace lumeth {

namespace {

constexpr std::string_view kMarker = "LMXRECV1";
// The marker, the parts (2 bytes), the payload length and checksum (4 each).
constexpr size_t kHeaderSize = kMarker.size() + 2 + 4 + 4;

// 32-bit FNV-1a: enough to tell a torn or damaged file from a whole one.
uint32_t Checksum(std::string_view bytes) {
    uint32_t hash = 2166136261u;
    for (const char c : bytes) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 16777619u;
    }
    return hash;
}

void PutLittleEndian(std::string& out, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

uint32_t GetLittleEndian(std::string_view in, size_t at, int bytes) {
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value |= uint32_t(static_cast<unsigned char>(in[at + size_t(i)])) << (8 * i);
    return value;
}

Status Damaged(std::string detail) {
    return Status::Fail(ErrorCode::InvalidFileFormat, std::move(detail));
}

// The parts are written whole, every array element included, so that what is
// read back equals what was kept (names longer than a panel data file's 16
// characters too). Sizes are 32-bit, values 16-bit, little-endian.
class Writer {
public:
    explicit Writer(std::string& out) : m_out(out) {}
    void Int(int16_t v) { PutLittleEndian(m_out, static_cast<uint16_t>(v), 2); }
    void Size(size_t n) { PutLittleEndian(m_out, static_cast<uint32_t>(n), 4); }
    void Text(const std::string& t) {
        Size(t.size());
        m_out += t;
    }
    template <typename T, typename F> void Array(const std::vector<T>& items, F&& each) {
        Size(items.size());
        for (const T& item : items)
            each(item);
    }
    void Ints(const std::vector<int16_t>& v) {
        Array(v, [this](int16_t i) { Int(i); });
    }
    void Texts(const std::vector<std::string>& v) {
        Array(v, [this](const std::string& t) { Text(t); });
    }

private:
    std::string& m_out;
};

// Reads what Writer wrote; any short or oversized field fails the whole read.
class Reader {
public:
    explicit Reader(std::string_view in) : m_in(in) {}
    bool ok() const { return m_ok; }
    bool atEnd() const { return m_pos == m_in.size(); }
    void Int(int16_t& v) { v = Has(2) ? static_cast<int16_t>(Take(2)) : int16_t{0}; }
    size_t Size() {
        // Every element takes at least two bytes: a larger count is damage.
        const size_t n = Has(4) ? Take(4) : 0;
        if (n > (m_in.size() - m_pos) / 2 + 1)
            m_ok = false;
        return m_ok ? n : 0;
    }
    void Text(std::string& text) {
        const size_t n = Has(4) ? Take(4) : 0;
        if (!Has(n))
            return text.clear();
        text.assign(m_in.substr(m_pos, n));
        m_pos += n;
    }
    template <typename T, typename F> void Array(std::vector<T>& items, F&& each) {
        items.resize(Size());
        for (T& item : items)
            each(item);
    }
    void Ints(std::vector<int16_t>& v) {
        Array(v, [this](int16_t& i) { Int(i); });
    }
    void Texts(std::vector<std::string>& v) {
        Array(v, [this](std::string& t) { Text(t); });
    }

private:
    bool Has(size_t n) {
        m_ok = m_ok && m_in.size() - m_pos >= n;
        return m_ok;
    }
    uint32_t Take(int n) {
        const uint32_t v = GetLittleEndian(m_in, m_pos, n);
        m_pos += size_t(n);
        return v;
    }
    std::string_view m_in;
    size_t m_pos = 0;
    bool m_ok = true;
};

// The order of each table's fields in the file, one function for writing
// (Io = Writer, a const table) and reading (Io = Reader) alike.
template <typename Io, typename Table> void Lists(Io& io, Table& t) {
    io.Int(t.displayListCount);
    io.Array(t.displayLists, [&](auto& l) {
        io.Int(l.channelCount);
        io.Text(l.name);
        io.Ints(l.channels);
    });
}

template <typename Io, typename Table> void Groups(Io& io, Table& t) {
    io.Int(t.userGroupCount);
    io.Texts(t.userGroupNames);
    io.Array(t.userGroups, [&](auto& g) {
        io.Int(g.listCount);
        io.Ints(g.listIndexes);
        io.Ints(g.listTypes);
    });
    io.Ints(t.userGroupIndex);
    io.Ints(t.userGroupNumber);
}

template <typename Io, typename Table> void Templates(Io& io, Table& t) {
    io.Int(t.templateCount);
    io.Texts(t.templateNames);
    io.Array(t.buttonTemplates, [&](auto& b) {
        io.Int(b.number);
        io.Int(b.buttonCount);
        io.Array(b.buttons, [&](auto& p) {
            io.Int(p.type);
            io.Int(p.captionOption);
            io.Text(p.label);
            io.Int(p.channel);
            io.Int(p.channel2);
        });
    });
    io.Ints(t.templateIndex);
    io.Ints(t.templatePosition);
}

// Every array holds at least max(count, 1) entries, as the store's own do.
template <typename T> bool Holds(const std::vector<T>& v, int16_t count) {
    return v.size() >= ArraySizeFor(count);
}

bool Whole(const DisplayListTable& t) {
    for (const DisplayList& l : t.displayLists)
        if (!Holds(l.channels, l.channelCount))
            return false;
    return Holds(t.displayLists, t.displayListCount);
}

bool Whole(const UserGroupTable& t) {
    for (const UserGroup& g : t.userGroups)
        if (!Holds(g.listIndexes, g.listCount) || !Holds(g.listTypes, g.listCount))
            return false;
    const int16_t n = t.userGroupCount;
    return Holds(t.userGroupNames, n) && Holds(t.userGroups, n) && Holds(t.userGroupIndex, n) &&
           Holds(t.userGroupNumber, n);
}

bool Whole(const TemplateTable& t) {
    for (const ButtonTemplate& b : t.buttonTemplates)
        if (!Holds(b.buttons, b.buttonCount))
            return false;
    const int16_t n = t.templateCount;
    return Holds(t.templateNames, n) && Holds(t.buttonTemplates, n) && Holds(t.templateIndex, n) &&
           Holds(t.templatePosition, n);
}

// The kept parts only: the others are not written.
std::string EncodeParts(PartSet parts, const PanelSnapshot& edits) {
    std::string out;
    Writer w(out);
    for (SubType s : kAllSubTypes)
        if (parts.has(ListsPart(s)))
            Lists(w, *edits.lists[Index(s)]);
    if (parts.has(Part::UserGroups))
        Groups(w, *edits.groups);
    if (parts.has(Part::Templates))
        Templates(w, *edits.templates);
    return out;
}

bool DecodeParts(std::string_view bytes, PartSet parts, PanelSnapshot& edits) {
    Reader r(bytes);
    bool whole = true;
    for (SubType s : kAllSubTypes) {
        if (!parts.has(ListsPart(s)))
            continue;
        DisplayListTable t;
        Lists(r, t);
        whole = whole && Whole(t);
        edits.lists[Index(s)] = std::make_shared<const DisplayListTable>(std::move(t));
    }
    if (parts.has(Part::UserGroups)) {
        UserGroupTable t;
        Groups(r, t);
        whole = whole && Whole(t);
        edits.groups = std::make_shared<const UserGroupTable>(std::move(t));
    }
    if (parts.has(Part::Templates)) {
        TemplateTable t;
        Templates(r, t);
        whole = whole && Whole(t);
        edits.templates = std::make_shared<const TemplateTable>(std::move(t));
    }
    return r.ok() && r.atEnd() && whole;
}

} // namespace

std::string EncodeRecoveryFile(const RecoveredEdits& recovered) {
    const PartSet parts = recovered.parts & kUploadParts;
    const std::string payload = EncodeParts(parts, recovered.edits);
    std::string out;
    out.reserve(kHeaderSize + payload.size());
    out.append(kMarker);
    PutLittleEndian(out, parts.bits(), 2);
    PutLittleEndian(out, static_cast<uint32_t>(payload.size()), 4);
    PutLittleEndian(out, Checksum(payload), 4);
    out.append(payload);
    return out;
}

Status DecodeRecoveryFile(std::string_view bytes, RecoveredEdits& recovered) {
    if (bytes.size() < kHeaderSize || bytes.substr(0, kMarker.size()) != kMarker)
        return Damaged("not a recovery file");
    const auto bits = static_cast<uint16_t>(GetLittleEndian(bytes, kMarker.size(), 2));
    const uint32_t length = GetLittleEndian(bytes, kMarker.size() + 2, 4);
    const uint32_t checksum = GetLittleEndian(bytes, kMarker.size() + 6, 4);
    const std::string_view payload = bytes.substr(kHeaderSize);
    if (payload.size() != length || Checksum(payload) != checksum)
        return Damaged("the recovery file is incomplete or damaged");
    const PartSet parts = PartSet::FromBits(bits);
    if (parts.bits() != bits || !(parts - kUploadParts).empty())
        return Damaged("the recovery file names parts it cannot hold");
    PanelSnapshot edits = TakeSnapshot(PanelStore{});
    if (!DecodeParts(payload, parts, edits))
        return Damaged("the recovery file's configuration cannot be read");
    recovered.parts = parts;
    recovered.edits = std::move(edits);
    return {};
}

Status WriteRecoveryFile(const std::string& path, const RecoveredEdits& recovered) {
    return ReplaceFileContents(path, EncodeRecoveryFile(recovered));
}

Status ReadRecoveryFile(const std::string& path, RecoveredEdits& recovered) {
    std::string bytes;
    const Status read = ReadFileBytes(path, bytes);
    if (!read)
        return read;
    return DecodeRecoveryFile(bytes, recovered);
}

Status RemoveRecoveryFile(const std::string& path) {
    if (std::remove(path.c_str()) == 0 || errno == ENOENT)
        return {};
    return Status(
        FailureFromErrno(errno, ErrorCode::PathFileAccessError, path, ErrorCode::PathNotFound));
}

} // namespace lumeth
