#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"

// Builders for every message of the protocol, in both directions. The tool's
// uploads and the emulator's answers share the layouts.
namespace lumeth::codec {

inline constexpr uint8_t kEndMarker = 0xFF;

// 0x81 'd' from the server module: 81 64 64 FF.
std::string IdentityQuery();
// The tool's answer: 81 11 01 12 FF.
std::string IdentityAnswer();
// 0xF2 data request, 17 bytes.
std::string DataRequest(uint32_t maskA, uint32_t maskB, uint32_t maskC);
// 0x80 password: 80 05 L <bytes> checksum FF. Zero bytes are left out.
std::string PasswordMessage(std::string_view password);
// Whether PasswordMessage carries `password` whole: every byte after the
// command byte must keep its top bit clear (a byte at or above 0x80, the
// length byte included, would end the frame early) and zero bytes are left
// out, so a password is 0 to 127 bytes of 1 to 127.
bool PasswordFitsMessage(std::string_view password);
// 0xFC alpha table of one sub type: names in channel order, each cut or
// blank-padded to `width` bytes (width 0: the longest name), start index 0.
std::string AlphaTableMessage(SubType subType, const std::vector<std::string>& channelNames,
                              int width = 0);
// The three uploads. A stored value that a 14-bit field cannot carry (a
// channel, position, code or number outside 0..16383) is still masked into
// the message, but `status`, when given, is set to an Overflow failure naming
// the first such value: the caller must not send that message, since the
// server module would store a different value than the store holds.
//
// 0xDF display lists of one sub type, names as 16 bytes.
std::string DisplayListMessage(const PanelStore& store, SubType subType, Status* status = nullptr);
// 0xCC user groups, names as 16 bytes.
std::string GroupMessage(const PanelStore& store, Status* status = nullptr);
// 0xFD button templates: 7F 52, X = M = TemplateCount, F = 0, L = 8, W = 16.
std::string ButtonMessage(const PanelStore& store, Status* status = nullptr);

// One upload message of Apply, with the location its failure is reported
// under ("Error Sending Panel Display Lists", ...). A message whose status is
// a failure holds a value the wire cannot carry and must not be sent.
struct Upload {
    Part part;
    std::string message;
    std::string_view failureLocation;
    Status status;
};
// The upload messages of the parts of `parts` that Apply sends, in the order
// Apply sends them: display lists 11, 21, 31, 41, user groups, templates.
std::vector<Upload> UploadMessages(const PanelStore& store, PartSet parts = kUploadParts);

// Cut or blank-pad to exactly `width` bytes.
std::string FixedWidth(std::string_view text, size_t width);

// Index of the first 0xFF plus one, or 0 when there is none.
size_t FindEndOfMessage(std::string_view buffer);

} // namespace lumeth::codec
