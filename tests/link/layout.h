#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

// Test-side message writer. It follows the frame layout byte by byte on its
// own (no call into the code under test), so expected bytes stay independent
// of the builders and decoders they check.
namespace lumeth::testing {

class Layout {
public:
    explicit Layout(int command) { m_bytes.push_back(static_cast<char>(command)); }

    Layout& Byte(int b) {
        m_bytes.push_back(static_cast<char>(b));
        return *this;
    }
    Layout& Bytes(std::initializer_list<int> bytes) {
        for (int b : bytes) {
            Byte(b);
        }
        return *this;
    }
    // 14-bit value, low 7 bits first.
    Layout& U14(int v) { return Byte(v % 128).Byte((v / 128) % 128); }
    // 28-bit value as four 7-bit groups, low first.
    Layout& U28(uint32_t v) {
        for (int k = 0; k < 4; ++k) {
            Byte(static_cast<int>((v >> (7 * k)) % 128));
        }
        return *this;
    }
    Layout& Text(std::string_view text) {
        m_bytes.append(text);
        return *this;
    }
    // Text cut or blank-padded to `width`.
    Layout& Padded(std::string_view text, size_t width) {
        std::string t(text.substr(0, text.size() < width ? text.size() : width));
        t.append(width - t.size(), ' ');
        return Text(t);
    }

    // Sum of every byte after the command byte, modulo 128.
    int Sum() const {
        int s = 0;
        for (size_t i = 1; i < m_bytes.size(); ++i) {
            s += static_cast<unsigned char>(m_bytes[i]);
        }
        return s % 128;
    }
    // Checksum and end marker; `checksumDelta` spoils the checksum on purpose.
    std::string Finish(int checksumDelta = 0) const {
        std::string out = m_bytes;
        out.push_back(static_cast<char>((Sum() + checksumDelta) % 128));
        out.push_back(static_cast<char>(0xFF));
        return out;
    }
    const std::string& Body() const { return m_bytes; }

private:
    std::string m_bytes;
};

inline std::string Raw(std::initializer_list<int> bytes) {
    std::string out;
    for (int b : bytes) {
        out.push_back(static_cast<char>(b));
    }
    return out;
}

// "DF 0B 01" for failure messages.
inline std::string Hex(std::string_view bytes) {
    static const char* const kDigits = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : bytes) {
        if (!out.empty()) {
            out.push_back(' ');
        }
        out.push_back(kDigits[c >> 4]);
        out.push_back(kDigits[c & 15]);
    }
    return out;
}

} // namespace lumeth::testing
