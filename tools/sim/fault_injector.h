#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lumeth::sim {

// Faults the emulator can inject into what it sends, each off by default.
struct FaultOptions {
    uint64_t seed = 1;
    bool split = false;    // every message in random small chunks with short pauses
    double garbage = 0.0;  // probability of random 7-bit bytes before a message
    double checksum = 0.0; // probability of a wrong checksum on an answer
    double cut = 0.0;      // probability of cutting an answer short
    int dropAfter = 0;     // close the connection after this many messages (0: never)
    int slowMs = 0;        // pause between bytes
    // Every answer with this command byte gets a wrong checksum (-1: none).
    int checksumCommand = -1;

    bool Any() const {
        return split || garbage > 0 || checksum > 0 || cut > 0 || dropAfter > 0 || slowMs > 0 ||
               checksumCommand >= 0;
    }
};

// A small, portable generator (splitmix64), so a seed gives the same faults
// with every compiler and standard library.
class FaultRandom {
public:
    explicit FaultRandom(uint64_t seed) : m_state(seed) {}
    uint64_t Next();
    // 0 .. n-1 (n >= 1).
    uint64_t Below(uint64_t n) { return Next() % n; }
    // true with probability p.
    bool Chance(double p);

private:
    uint64_t m_state;
};

// One write to the socket, after a pause; with a byte pause the bytes go out
// one at a time, that long apart.
struct Chunk {
    std::string bytes;
    int delayMs = 0;
    int byteDelayMs = 0;
};

// How one message goes out: the chunks in order, and whether the connection
// is closed after them.
struct Delivery {
    std::vector<Chunk> chunks;
    bool closeAfter = false;
};

// Applies the fault options to the messages of one connection. Each connection
// draws from its own generator, seeded from the seed and the connection's
// number, so a run with the same seed and the same clients injects the same
// faults.
class FaultInjector {
public:
    FaultInjector(const FaultOptions& options, uint64_t connectionNumber);

    // `answer`: the message answers a data request (a password, alpha table,
    // display list, user group or button data message); only answers get wrong checksums or are
    // cut, because the administrator recovers from those by asking again, never from a broken
    // identity query.
    Delivery Shape(const std::string& message, bool answer);

    // The connection was closed by the drop fault; nothing more is sent.
    bool Closed() const { return m_closed; }
    int MessagesSent() const { return m_sent; }

private:
    FaultOptions m_options;
    FaultRandom m_random;
    int m_sent = 0;
    bool m_closed = false;
};

} // namespace lumeth::sim
