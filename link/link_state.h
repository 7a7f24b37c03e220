#pragma once

#include <cstdint>
#include <string>

namespace lumeth {

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
