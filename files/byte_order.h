#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lumeth {

// Sequential little-endian reader over bytes in memory. Every read either
// succeeds completely or fails without moving, so the position of a failed
// read is where the missing field starts.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : m_bytes(bytes) {}

    bool ReadInt16(int16_t& value) {
        if (m_bytes.size() - m_pos < 2) {
            return false;
        }
        const auto lo = static_cast<unsigned char>(m_bytes[m_pos]);
        const auto hi = static_cast<unsigned char>(m_bytes[m_pos + 1]);
        value = static_cast<int16_t>(static_cast<uint16_t>(lo | (hi << 8)));
        m_pos += 2;
        return true;
    }

    // Exactly `count` bytes, kept as they are.
    bool ReadText(size_t count, std::string& text) {
        if (m_bytes.size() - m_pos < count) {
            return false;
        }
        text.assign(m_bytes.substr(m_pos, count));
        m_pos += count;
        return true;
    }

    bool Skip(size_t count) {
        if (m_bytes.size() - m_pos < count) {
            return false;
        }
        m_pos += count;
        return true;
    }

    size_t position() const { return m_pos; }
    size_t remaining() const { return m_bytes.size() - m_pos; }

private:
    std::string_view m_bytes;
    size_t m_pos = 0;
};

// Little-endian writer appending to a byte string.
class ByteWriter {
public:
    explicit ByteWriter(std::string& out) : m_out(out) {}

    void WriteInt16(int16_t value) {
        const auto u = static_cast<uint16_t>(value);
        m_out.push_back(static_cast<char>(u & 0xFF));
        m_out.push_back(static_cast<char>(u >> 8));
    }

    // `text` cut to `width` bytes or padded on the right with blanks.
    void WriteFixedText(std::string_view text, size_t width) {
        const size_t n = text.size() < width ? text.size() : width;
        m_out.append(text.data(), n);
        m_out.append(width - n, ' ');
    }

private:
    std::string& m_out;
};

} // namespace lumeth
