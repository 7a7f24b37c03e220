#pragma once

#include <cstdint>
#include <string>

namespace lumeth {

// Request bits of the data request (mask A and mask C; mask B is always 0).
namespace request {
inline constexpr uint32_t kPassword = 0x00000002;
inline constexpr uint32_t kInputAlphas = 0x00000100;
inline constexpr uint32_t kOutputAlphas = 0x00000200;
inline constexpr uint32_t kOptoAlphas = 0x01000000;
inline constexpr uint32_t kRelayAlphas = 0x02000000;
inline constexpr uint32_t kEverythingA = 0x03000302;

inline constexpr uint32_t kUserGroups = 0x0004;
inline constexpr uint32_t kTemplates = 0x0008;
inline constexpr uint32_t kInputLists = 0x0010;
inline constexpr uint32_t kOutputLists = 0x0020;
inline constexpr uint32_t kOptoLists = 0x0040;
inline constexpr uint32_t kRelayLists = 0x0080;
inline constexpr uint32_t kEverythingC = 0x00FC;
} // namespace request

// The link's state. One per program; the session and the connection share it.
struct LinkState {
    bool connected = false;
    std::string receiveBuffer;
    std::string serverAddress = "127.0.0.1";
    int32_t serverPort = 1250;
    std::string enteredPassword; // empty: nobody is logged in
    std::string serverPassword;
    bool passwordReceived = false;
    uint32_t pendingA = 0;
    uint32_t pendingB = 0;
    uint32_t pendingC = 0;
    bool acknowledged = false; // written by polls and acknowledgements, read by nobody

    bool AnyPending() const { return pendingA != 0 || pendingB != 0 || pendingC != 0; }
};

} // namespace lumeth
