#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Integers on the wire: 14-bit values as two 7-bit bytes, 28-bit values as four,
// low group first, and the 7-bit message checksum.
namespace lumeth::wire {

// Append a 14-bit value (v AND 127, then v / 128). Values outside 0..16383
// are masked to 14 bits; callers validate ranges before building.
void Append14(std::string& out, int value);
// Append the low 28 bits of `value` as four 7-bit groups, low group first.
void Append28(std::string& out, uint32_t value);

// The 14-bit value of the first two bytes of `bytes` and the 28-bit value of
// the first four, low group first, each byte taken as its low 7 bits. The
// caller makes sure the bytes are there.
int Read14(std::string_view bytes);
uint32_t Read28(std::string_view bytes);

// Sum modulo 128 of the bytes from index 1 up to and including index
// last - tail (last = size - 1), reduced to 7 bits after every addition.
// A message being built is summed with tail 0; a received one with tail 2.
// A range that is empty (or a message shorter than the tail) sums to 0.
uint8_t Checksum(std::string_view message, int tail);

// "DF": a byte as two upper-case hexadecimal digits, for log lines.
std::string HexByte(uint8_t b);

// Append checksum (tail 0) and the end marker to a message being built.
void Finish(std::string& message);

} // namespace lumeth::wire
