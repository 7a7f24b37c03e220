#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumeth {

// The framing rules of the link, in both directions: bytes before the first
// byte with its top bit set are garbage; F1, F3, F4 and F5 stand alone (so
// does an end marker in the place of a command byte); any other frame ends at
// the first end marker; a top-bit byte inside a frame means it
// was cut short by the next command, except in an identity frame,
// whose body is not checked.
struct FrontOfBuffer {
    enum class Kind {
        Frame,   // a whole message of `length` bytes (one byte for F1, F3, F4, F5)
        Garbage, // `length` bytes without a command byte before them
        Cut,     // `length` bytes of a frame cut short by the next command byte
        Partial, // a frame whose end has not arrived; `length` bytes scanned so far
    };
    Kind kind = Kind::Partial;
    size_t length = 0;
    uint8_t command = 0; // the command byte (Frame, Cut, Partial)
};

// When a frame counts as cut short.
enum class CutRule {
    AtNextCommand,  // as soon as the next command byte has arrived
    OnceEndArrives, // only once an end marker follows it: until then the frame waits
};

// What the front of `buffer` holds. `scanned` is what an earlier call
// reported for the same partial frame: its bytes are not scanned again, so a
// frame streamed in small pieces costs linear time.
FrontOfBuffer ReadFront(std::string_view buffer, CutRule rule, size_t scanned = 0);

// What a FrameReader found at the front of its buffer.
struct FrameEvent {
    enum class Kind {
        Frame,    // one whole message
        Garbage,  // bytes without a command byte before them, dropped
        Cut,      // a frame cut short by the next command byte, dropped
        Overlong, // a frame longer than the limit without an end marker, dropped
    };
    Kind kind = Kind::Frame;
    std::string bytes;   // the frame (Frame only)
    uint8_t command = 0; // the command byte (Frame, Cut, Overlong)
    size_t dropped = 0;  // bytes dropped (Garbage, Cut, Overlong)
};

// A receive buffer that hands out every complete frame at once, detects a cut
// frame as soon as the next command byte arrives, and scans each byte only
// once. The emulator reads its clients with it.
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

} // namespace lumeth
