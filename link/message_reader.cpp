#include "link/message_reader.h"

#include <algorithm>
#include <cstdint>

namespace lumeth {

MessageReader::MessageReader(std::string_view message, size_t position,
                             std::vector<Problem>& problems)
    : m_message(message), m_position(std::min(position, message.size())), m_problems(problems) {}

bool MessageReader::Need(size_t count) {
    if (m_failed || count > m_message.size() - m_position) {
        m_failed = true;
        return false;
    }
    return true;
}

int MessageReader::Byte() {
    if (!Need(1)) {
        return 0;
    }
    return static_cast<unsigned char>(m_message[m_position++]);
}

int MessageReader::U14() {
    if (!Need(2)) {
        return 0;
    }
    const auto low = static_cast<unsigned char>(m_message[m_position]);
    const auto high = static_cast<unsigned char>(m_message[m_position + 1]);
    m_position += 2;
    // The two bytes are joined as high * 128 + low into a signed 16-bit value.
    // Only a sum past 32767 is an error: a count that runs into the end marker
    // (checksum, 0xFF) reads as 32640 + checksum, and the short read that
    // follows reports it.
    const int value = high * 128 + low;
    if (value > INT16_MAX) {
        m_problems.push_back(ErrorReport{"Invalid data in Message", "Integer Conversion Error",
                                         Failure{ErrorCode::Overflow, "14-bit field overflows"}});
        return 0;
    }
    return value;
}

std::string MessageReader::Text(size_t width) {
    if (m_failed) {
        return {};
    }
    const size_t n = std::min(width, m_message.size() - m_position);
    std::string out(m_message.substr(m_position, n));
    m_position += n;
    return out;
}

std::string MessageReader::Name(size_t width) {
    std::string out = Text(width);
    for (char& c : out) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 32 || b >= 127) {
            c = '.';
        }
    }
    return out;
}

} // namespace lumeth
