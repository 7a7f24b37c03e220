#include "tools/sim/frame_reader.h"

namespace lumeth::sim {

namespace {
bool TopBit(char c) {
    return (static_cast<uint8_t>(c) & 0x80u) != 0;
}
bool StandsAlone(uint8_t c) {
    return c == 0xF1 || c == 0xF3 || c == 0xF4 || c == 0xF5;
}
} // namespace

void FrameReader::Append(std::string_view bytes) {
    m_buffer.append(bytes);
}

void FrameReader::Clear() {
    m_buffer.clear();
    m_start = 0;
    m_scan = 0;
}

void FrameReader::Consume(size_t count) {
    m_start += count;
    m_scan = 0;
    if (m_start == m_buffer.size()) {
        m_buffer.clear();
        m_start = 0;
    } else if (m_start > 65536 && m_start * 2 > m_buffer.size()) {
        // Compact now and then instead of erasing at the front for every frame.
        m_buffer.erase(0, m_start);
        m_start = 0;
    }
}

std::optional<FrameEvent> FrameReader::Next() {
    const size_t size = m_buffer.size();
    if (m_start == size) {
        return std::nullopt;
    }

    // Bytes before the first command byte are garbage.
    size_t first = m_start;
    while (first < size && !TopBit(m_buffer[first])) {
        ++first;
    }
    if (first > m_start) {
        FrameEvent garbage{FrameEvent::Kind::Garbage, {}, 0, first - m_start};
        Consume(first - m_start);
        return garbage;
    }

    const auto command = static_cast<uint8_t>(m_buffer[m_start]);
    if (StandsAlone(command)) {
        Consume(1);
        return FrameEvent{FrameEvent::Kind::Frame, std::string(1, static_cast<char>(command)),
                          command, 0};
    }

    size_t i = m_start + (m_scan == 0 ? 1 : m_scan);
    for (; i < size; ++i) {
        const auto b = static_cast<uint8_t>(m_buffer[i]);
        if (b == 0xFF) {
            const size_t length = i - m_start + 1;
            FrameEvent frame{FrameEvent::Kind::Frame, m_buffer.substr(m_start, length), command, 0};
            Consume(length);
            return frame;
        }
        if ((b & 0x80u) != 0 && command != 0x81) {
            // The next command byte arrived before this frame's end marker.
            const size_t length = i - m_start;
            Consume(length);
            return FrameEvent{FrameEvent::Kind::Cut, {}, command, length};
        }
    }
    m_scan = i - m_start;
    if (m_scan > m_maxFrame) {
        const size_t length = m_scan;
        Consume(length);
        return FrameEvent{FrameEvent::Kind::Overlong, {}, command, length};
    }
    return std::nullopt;
}

} // namespace lumeth::sim
