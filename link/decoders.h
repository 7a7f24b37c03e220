#pragma once

#include <string_view>

namespace lumeth {

class LinkSession;
class SessionObserver;

// Handlers of the received messages, one per command byte. Each gets one
// whole frame (command byte to end marker) as cut by the framing, checks it,
// updates the store and the pending masks through the session, and reports
// through the observer. None of them reads outside the frame or throws.
namespace decode {

void Password(LinkSession& session, SessionObserver& observer, std::string_view message);
void Identity(LinkSession& session, SessionObserver& observer, std::string_view message);
void AlphaTable(LinkSession& session, SessionObserver& observer, std::string_view message);
void DisplayLists(LinkSession& session, SessionObserver& observer, std::string_view message);
void UserGroups(LinkSession& session, SessionObserver& observer, std::string_view message);
void ButtonTemplates(LinkSession& session, SessionObserver& observer, std::string_view message);

// True when the byte before the end marker is the checksum of the body.
bool ChecksumMatches(std::string_view message);

} // namespace decode
} // namespace lumeth
