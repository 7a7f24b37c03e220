#include "model/cp1252.h"

#include <array>

namespace lumeth::cp1252 {

namespace {
// 0x80..0x9F; the undefined bytes map to the C1 control of the same value.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// Decode one UTF-8 sequence at `i`; advances `i`. Invalid input yields
// U+FFFD and advances by one byte.
char32_t NextCodePoint(std::string_view s, size_t& i) {
    const auto b0 = static_cast<unsigned char>(s[i]);
    if (b0 < 0x80) {
        ++i;
        return b0;
    }
    int len = 0;
    char32_t cp = 0;
    char32_t min = 0;
    if ((b0 & 0xE0) == 0xC0) {
        len = 2;
        cp = b0 & 0x1F;
        min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        len = 3;
        cp = b0 & 0x0F;
        min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        len = 4;
        cp = b0 & 0x07;
        min = 0x10000;
    } else {
        ++i;
        return 0xFFFD;
    }
    if (i + static_cast<size_t>(len) > s.size()) {
        ++i;
        return 0xFFFD;
    }
    for (int k = 1; k < len; ++k) {
        const auto b = static_cast<unsigned char>(s[i + static_cast<size_t>(k)]);
        if ((b & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return 0xFFFD;
    }
    i += static_cast<size_t>(len);
    return cp;
}
} // namespace

char32_t ToUnicode(unsigned char byte) {
    if (byte >= 0x80 && byte <= 0x9F) {
        return kHigh[byte - 0x80];
    }
    return byte;
}

unsigned char FromUnicode(char32_t cp) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
        return static_cast<unsigned char>(cp);
    }
    for (size_t k = 0; k < kHigh.size(); ++k) {
        if (kHigh[k] == cp) {
            return static_cast<unsigned char>(0x80 + k);
        }
    }
    return '?';
}

std::string ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        AppendUtf8(out, ToUnicode(static_cast<unsigned char>(c)));
    }
    return out;
}

std::string FromUtf8(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    size_t i = 0;
    while (i < utf8.size()) {
        out.push_back(static_cast<char>(FromUnicode(NextCodePoint(utf8, i))));
    }
    return out;
}

bool FromUtf8Exact(std::string_view utf8, std::string& bytes, char32_t& refused) {
    bytes.clear();
    bytes.reserve(utf8.size());
    size_t i = 0;
    while (i < utf8.size()) {
        const char32_t cp = NextCodePoint(utf8, i);
        const unsigned char byte = FromUnicode(cp);
        if (byte == '?' && cp != U'?') {
            refused = cp;
            return false;
        }
        bytes.push_back(static_cast<char>(byte));
    }
    return true;
}

size_t Utf8Length(std::string_view utf8) {
    size_t n = 0;
    size_t i = 0;
    while (i < utf8.size()) {
        NextCodePoint(utf8, i);
        ++n;
    }
    return n;
}

} // namespace lumeth::cp1252
