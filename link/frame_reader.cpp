#include "link/frame_reader.h"

#include "link/protocol.h"

namespace lumeth {

namespace {

bool TopBit(char c) {
    return HasTopBit(static_cast<uint8_t>(c));
}

} // namespace

FrontOfBuffer ReadFront(std::string_view buffer, CutRule rule, size_t scanned) {
    using Kind = FrontOfBuffer::Kind;
    size_t first = 0;
    while (first < buffer.size() && !TopBit(buffer[first])) {
        ++first;
    }
    if (first > 0) {
        return {Kind::Garbage, first, 0};
    }
    if (buffer.empty()) {
        return {Kind::Partial, 0, 0};
    }
    const auto command = static_cast<uint8_t>(buffer[0]);
    if (IsOneByte(command) || command == kEndMarker) {
        // An end marker where a command byte belongs ends its own frame.
        return {Kind::Frame, 1, command};
    }
    const bool bodyChecked = command != Byte(Command::Identity);
    for (size_t i = scanned == 0 ? 1 : scanned; i < buffer.size(); ++i) {
        const auto b = static_cast<uint8_t>(buffer[i]);
        if (b == kEndMarker) {
            return {Kind::Frame, i + 1, command};
        }
        if (TopBit(buffer[i]) && bodyChecked) {
            if (rule == CutRule::OnceEndArrives &&
                buffer.find(static_cast<char>(kEndMarker), i) == std::string_view::npos) {
                return {Kind::Partial, i, command};
            }
            return {Kind::Cut, i, command};
        }
    }
    return {Kind::Partial, buffer.size(), command};
}

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
    if (m_start == m_buffer.size()) {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(m_buffer).substr(m_start);
    const FrontOfBuffer front = ReadFront(rest, CutRule::AtNextCommand, m_scan);
    switch (front.kind) {
    case FrontOfBuffer::Kind::Frame: {
        FrameEvent frame{FrameEvent::Kind::Frame, std::string(rest.substr(0, front.length)),
                         front.command, 0};
        Consume(front.length);
        return frame;
    }
    case FrontOfBuffer::Kind::Garbage:
        Consume(front.length);
        return FrameEvent{FrameEvent::Kind::Garbage, {}, 0, front.length};
    case FrontOfBuffer::Kind::Cut:
        Consume(front.length);
        return FrameEvent{FrameEvent::Kind::Cut, {}, front.command, front.length};
    case FrontOfBuffer::Kind::Partial:
        break;
    }
    m_scan = front.length;
    // A frame of m_maxFrame bytes ends with its marker: this many bytes
    // without one can no longer become a frame.
    if (m_scan >= m_maxFrame) {
        const size_t length = m_scan;
        Consume(length);
        return FrameEvent{FrameEvent::Kind::Overlong, {}, front.command, length};
    }
    return std::nullopt;
}

} // namespace lumeth
