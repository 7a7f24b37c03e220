#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/protocol.h"
#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"

// Builders for every message of the protocol, in both directions. The tool's
// uploads and the emulator's answers share the layouts.
namespace lumeth::codec {

// The identity query from the server module: 81 64 64 FF.
std::string IdentityQuery();
// The tool's answer: 81 11 01 12 FF.
std::string IdentityAnswer();
// The data request, kDataRequestSize bytes.
inline constexpr size_t kDataRequestSize = 17;
std::string DataRequest(uint32_t maskA, uint32_t maskB, uint32_t maskC);
// The masks of a data request, or nothing when `message` is not one (wrong
// command, length or checksum).
std::optional<RequestMasks> ParseDataRequest(std::string_view message);
// The password message: 80 05 L <bytes> checksum FF. Zero bytes are left out.
std::string PasswordMessage(std::string_view password);
// Whether PasswordMessage carries `password` whole: every byte after the
// command byte must keep its top bit clear (such a byte, the length byte
// included, would end the frame early) and zero bytes are left
// out, so a password is 0 to 127 bytes of 1 to 127.
bool PasswordFitsMessage(std::string_view password);
// The alpha table of one sub type: names in channel order, each cut or
// blank-padded to `width` bytes (width 0: the longest name), start index 0.
std::string AlphaTableMessage(SubType subType, const std::vector<std::string>& channelNames,
                              int width = 0);
// One upload message of Apply, with the location its failure is reported
// under ("Error Sending Panel Display Lists", ...). A stored value that a
// 14-bit field cannot carry (a channel, position, code or number outside
// 0..16383) is still masked into the message, but `status` is an Overflow
// failure naming the first such value: the message must not be sent, since
// the server module would store a different value than the store holds.
struct Upload {
    Part part;
    std::string message;
    std::string_view failureLocation;
    Status status;
};
// The upload of one of kUploadParts: the display lists of a sub type (names
// as 16 bytes), the user groups (names as 16 bytes) or the button templates
// (7F 52, X = M = TemplateCount, F = 0, L = 8, W = 16).
Upload UploadMessage(const PanelStore& store, Part part);
// The upload messages of the parts of `parts` that Apply sends, in the order
// Apply sends them: display lists 11, 21, 31, 41, user groups, templates.
std::vector<Upload> UploadMessages(const PanelStore& store, PartSet parts = kUploadParts);

// The message of UploadMessage alone.
std::string DisplayListMessage(const PanelStore& store, SubType subType);
std::string GroupMessage(const PanelStore& store);
std::string ButtonMessage(const PanelStore& store);

// Cut or blank-pad to exactly `width` bytes.
std::string FixedWidth(std::string_view text, size_t width);

} // namespace lumeth::codec
