#pragma once

#include <string>
#include <string_view>

// Names are bytes in the core. They become Unicode only at the edges (the
// window, the JSON document) through this one Windows-1252 table. The five
// bytes Windows-1252 leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the
// C1 controls of the same value so that every byte round-trips.
namespace lumeth::cp1252 {

// The Unicode code point of one byte.
char32_t ToUnicode(unsigned char byte);
// The byte of a code point; '?' for characters outside the table.
unsigned char FromUnicode(char32_t cp);

// Bytes to UTF-8 and back. Invalid UTF-8 sequences become '?'.
std::string ToUtf8(std::string_view bytes);
std::string FromUtf8(std::string_view utf8);
// Like FromUtf8, but nothing is replaced: false when a character has no byte
// in the table, with that character in `refused` (U+FFFD for an invalid UTF-8
// sequence); `bytes` then holds what came before it.
bool FromUtf8Exact(std::string_view utf8, std::string& bytes, char32_t& refused);

// Number of code points in a UTF-8 text (what a byte string will be after FromUtf8).
size_t Utf8Length(std::string_view utf8);

} // namespace lumeth::cp1252
