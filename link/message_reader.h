#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "link/decoded.h"

namespace lumeth {

// Reads the fields of one received message front to back without ever
// stepping outside it. The whole frame is readable, checksum and end marker
// included, because a message whose counts run ahead of its length reads into
// them before the length check at the end catches it.
//
// A field that does not fit any more is a short read: the reader fails, every
// later read returns 0 or nothing, and the handler reports it and stops. A
// 14-bit field is joined as high * 128 + low even when a byte has its top bit
// set (only the end marker can have it): a field that runs into the end marker
// reads as a large value, and only a sum beyond the signed 16-bit range is
// reported (added to `problems`) as an integer conversion error, reading as 0.
class MessageReader {
public:
    MessageReader(std::string_view message, size_t position, std::vector<Problem>& problems);

    bool failed() const { return m_failed; }
    size_t position() const { return m_position; }
    size_t remaining() const { return m_failed ? 0 : m_message.size() - m_position; }

    int Byte();
    int U14();
    // Up to `width` bytes as they are; fewer when the message ends first
    // (a short text is not a failure, the length check catches it).
    std::string Text(size_t width);
    // A display name: like Text, with every byte below 32 or from 127 up
    // shown as ".".
    std::string Name(size_t width);
    // Make sure `count` more bytes exist; fails the reader otherwise.
    bool Need(size_t count);

private:
    std::string_view m_message;
    size_t m_position;
    std::vector<Problem>& m_problems;
    bool m_failed = false;
};

} // namespace lumeth
