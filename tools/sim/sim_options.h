#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/failure.h"
#include "tools/sim/fault_injector.h"

namespace lumeth::sim {

// The command line of lumeth-sim.
struct SimOptions {
    std::string host = "127.0.0.1"; // never another interface unless told
    int port = 1250;                // 0: any free port (printed on start)
    std::optional<std::string> stateFile;
    std::string demo = "demo";
    int pollIntervalMs = 5000; // 0: never poll
    bool trace = false;
    int alphaWidth = 0; // 0: the longest name of each table
    FaultOptions faults;
    int maxClients = 0;           // 0: as many as the descriptor limit allows
    long long maxQueuedTotal = 0; // 0: the server's default
    bool help = false;
    bool version = false;
};

// The options read from argv[1..]; a failed status's detail is the one line
// that says what is wrong.
struct ParsedSimOptions {
    SimOptions options;
    Status status;
};
ParsedSimOptions ParseSimOptions(const std::vector<std::string>& args);

// The usage text.
const char* SimUsage();

} // namespace lumeth::sim
