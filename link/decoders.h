#pragma once

#include <string_view>

#include "link/decoded.h"
#include "model/panel_store.h"

// Decoders of the received messages, one per command byte. Each gets one
// whole frame (command byte to end marker) as the framing cut it, checks it
// and returns what it amounts to; none of them reads outside the frame,
// throws or changes anything. `current` is the configuration a damaged user
// group or template message partly replaces, and the alpha table whose
// channel-order names a bad channel number replaces.
namespace lumeth::decode {

// Any frame by its command byte; a server's data request and unknown
// commands amount to nothing.
Decoded Frame(std::string_view frame, const PanelStore& current);

Decoded Password(std::string_view message);
Decoded Identity(std::string_view message);
Decoded AlphaTable(std::string_view message, const PanelStore& current);
Decoded DisplayLists(std::string_view message);
Decoded UserGroups(std::string_view message, const UserGroupTable& current);
Decoded ButtonTemplates(std::string_view message, const TemplateTable& current);

// True when the byte before the end marker is the checksum of the body.
bool ChecksumMatches(std::string_view message);

} // namespace lumeth::decode
