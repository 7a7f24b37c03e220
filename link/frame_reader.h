#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/limits.h"

namespace lumeth {

// The largest message either side of the link accepts, end marker included.
// Every count on the wire is 14-bit and every width one 7-bit byte, so the
// layouts alone would allow messages of gigabytes (16383 templates of 16383
// buttons, 16383 lists of 16383 channels). What a panel holds is far less:
// - the button table, the largest flat message: 13 header bytes, then per
//   template a 16-byte name, number and button count, and its 32 buttons of
//   8 bytes and an 8-byte label, for 16383 templates: 8,715,769 bytes;
// - an alpha table at the widest name a width byte allows (127):
//   16383 * (127 + 2) + 9 = 2,113,416 bytes;
// - display lists and groups nest two counts; 16 MiB carries 16383 lists of
//   500 channels each, or 16383 groups of 250 lists, well past a real panel.
// So 16 MiB holds every message the product builds, with room for a server
// module's wider button labels and names, and the receive buffer that waits
// for an end marker never holds more than that.
inline constexpr size_t kMaxMessageBytes = size_t{16} * 1024 * 1024;

namespace detail {
inline constexpr size_t kLargestButtonTable =
    13 + size_t{kMax14Bit} * (kNameWidth + 4 + size_t{kTemplateButtons} * (8 + kLabelWidth));
inline constexpr size_t kLargestAlphaTable = 9 + size_t{kMax14Bit} * (127 + 2);
} // namespace detail
static_assert(detail::kLargestButtonTable == 8'715'769);
static_assert(detail::kLargestButtonTable < kMaxMessageBytes);
static_assert(detail::kLargestAlphaTable < kMaxMessageBytes);

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
    // Frames are limited to `maxFrame` bytes, end marker included.
    static constexpr size_t kDefaultMaxFrame = kMaxMessageBytes;
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
