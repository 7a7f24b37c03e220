#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumeth::sim {

// What the emulator's receive side found at the front of a client's buffer.
struct FrameEvent {
    enum class Kind {
        Frame,    // one whole message (one byte for F1, F3, F4, F5)
        Garbage,  // bytes without a command byte before them, dropped
        Cut,      // a frame cut short by the next command byte, dropped
        Overlong, // a frame longer than the limit without an end marker, dropped
    };
    Kind kind = Kind::Frame;
    std::string bytes;   // the frame (Frame only)
    uint8_t command = 0; // the command byte (Frame, Cut, Overlong)
    size_t dropped = 0;  // bytes dropped (Garbage, Cut, Overlong)
};

// The emulator's framing of the bytes a client sends: the same frame rules as
// the administrator's receive buffer (leading bytes without the top bit are
// garbage; F1, F3, F4 and F5 stand alone; other frames end at the first 0xFF;
// a top-bit byte inside a frame means it was cut short, except for 0x81).
// Unlike the administrator it hands out every complete frame at once, detects a
// cut frame as soon as the next command byte arrives, and scans each byte only
// once, so a client streaming a huge frame in small pieces costs linear time.
class FrameReader {
public:
    // Frames are limited to `maxFrame` bytes; the largest legitimate upload (a
    // full template table) is well below the default.
    static constexpr size_t kDefaultMaxFrame = 16u * 1024u * 1024u;
    explicit FrameReader(size_t maxFrame = kDefaultMaxFrame) : m_maxFrame(maxFrame) {}

    void Append(std::string_view bytes);
    // The next event, or nullopt when more bytes are needed.
    std::optional<FrameEvent> Next();
    // Bytes waiting in the buffer (a partial frame).
    size_t Buffered() const { return m_buffer.size() - m_start; }
    void Clear();

private:
    void Consume(size_t count);

    std::string m_buffer;
    size_t m_start = 0; // first unconsumed byte
    size_t m_scan = 0;  // bytes of the current frame already scanned (from m_start)
    size_t m_maxFrame;
};

} // namespace lumeth::sim
