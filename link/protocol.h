#pragma once

#include <array>
#include <cstdint>

#include "model/parts.h"

// The protocol's command bytes and how each part of the configuration travels:
// the request bit that asks for it and the command byte that carries it.
namespace lumeth {

enum class Command : uint8_t {
    Password = 0x80,     // both ways: set the password / the stored password
    Identity = 0x81,     // the server's identity query and the tool's answer
    UserGroups = 0xCC,   // user group data, both ways
    DisplayLists = 0xDF, // the display lists of one sub type, both ways
    Acknowledge1 = 0xF1, // one-byte acknowledgement from the server
    DataRequest = 0xF2,  // to the server: the data request
    Acknowledge3 = 0xF3, // one-byte acknowledgement from the server
    PollAnswer = 0xF4,   // one-byte answer to a poll
    Poll = 0xF5,         // one-byte poll from the server
    AlphaTable = 0xFC,   // channel names of one sub type, from the server
    ButtonData = 0xFD,   // button templates, both ways
};
inline constexpr uint8_t kEndMarker = 0xFF;
// Byte 2 of a button data message ("R"); the receiver ignores a message
// without it.
inline constexpr char kButtonDataMarker = 0x52;

constexpr uint8_t Byte(Command c) {
    return static_cast<uint8_t>(c);
}
constexpr char Char(Command c) {
    return static_cast<char>(Byte(c));
}
// Only a command byte (and the end marker) has its top bit set; every other
// byte of a frame carries 7 bits.
constexpr bool HasTopBit(uint8_t b) {
    return (b & 0x80) != 0;
}
// The commands that stand alone as one byte, without body or end marker.
constexpr bool IsOneByte(uint8_t command) {
    return command == Byte(Command::Acknowledge1) || command == Byte(Command::Acknowledge3) ||
           command == Byte(Command::PollAnswer) || command == Byte(Command::Poll);
}

// The three masks of a data request (mask B is always 0 in this system).
struct RequestMasks {
    uint32_t a = 0;
    uint32_t b = 0;
    uint32_t c = 0;

    bool empty() const { return a == 0 && b == 0 && c == 0; }
    bool operator==(const RequestMasks&) const = default;
};

enum class Mask : uint8_t { A, C };

struct PartWire {
    Part part;
    Mask mask;
    uint32_t bit;
    Command command;
};

// Indexed by Part.
inline constexpr std::array<PartWire, kPartCount> kPartWire{{
    {Part::Password, Mask::A, 0x00000002, Command::Password},
    {Part::InputAlphas, Mask::A, 0x00000100, Command::AlphaTable},
    {Part::OutputAlphas, Mask::A, 0x00000200, Command::AlphaTable},
    {Part::OptoAlphas, Mask::A, 0x01000000, Command::AlphaTable},
    {Part::RelayAlphas, Mask::A, 0x02000000, Command::AlphaTable},
    {Part::InputLists, Mask::C, 0x0010, Command::DisplayLists},
    {Part::OutputLists, Mask::C, 0x0020, Command::DisplayLists},
    {Part::OptoLists, Mask::C, 0x0040, Command::DisplayLists},
    {Part::RelayLists, Mask::C, 0x0080, Command::DisplayLists},
    {Part::UserGroups, Mask::C, 0x0004, Command::UserGroups},
    {Part::Templates, Mask::C, 0x0008, Command::ButtonData},
}};

constexpr const PartWire& Wire(Part p) {
    return kPartWire[static_cast<size_t>(p)];
}

// The request masks that ask for `parts`.
constexpr RequestMasks MasksFor(PartSet parts) {
    RequestMasks masks;
    for (const PartWire& w : kPartWire)
        if (parts.has(w.part))
            (w.mask == Mask::A ? masks.a : masks.c) |= w.bit;
    return masks;
}
// The parts whose request bits are set in `masks`.
constexpr PartSet PartsIn(const RequestMasks& masks) {
    PartSet parts;
    for (const PartWire& w : kPartWire)
        if (((w.mask == Mask::A ? masks.a : masks.c) & w.bit) != 0)
            parts.add(w.part);
    return parts;
}

// The request for everything: A = 0x03000302, B = 0, C = 0x00FC.
inline constexpr RequestMasks kRequestEverything = MasksFor(kAllParts);
static_assert(kRequestEverything == RequestMasks{0x03000302, 0, 0x00FC});

} // namespace lumeth
