#include "tools/sim/fault_injector.h"

#include "link/protocol.h"

#include <algorithm>

namespace lumeth::sim {

uint64_t FaultRandom::Next() {
    uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

bool FaultRandom::Chance(double p) {
    // 53 random bits as a fraction in [0, 1).
    const double u = static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0);
    return u < p;
}

FaultInjector::FaultInjector(const FaultOptions& options, uint64_t connectionNumber)
    : m_options(options), m_random(options.seed * 0x100000001B3ull + connectionNumber) {}

Delivery FaultInjector::Shape(const std::string& message, bool answer) {
    Delivery delivery;
    if (m_closed) {
        delivery.closeAfter = true;
        return delivery;
    }

    std::string bytes = message;
    const bool framed = bytes.size() >= 3 && static_cast<uint8_t>(bytes.back()) == kEndMarker;

    const bool badChecksum =
        m_random.Chance(m_options.checksum) ||
        (!bytes.empty() && static_cast<uint8_t>(bytes[0]) == m_options.checksumCommand);
    if (answer && framed && badChecksum) {
        // Any other 7-bit value: the checksum stays a valid body byte.
        const auto good = static_cast<uint8_t>(bytes[bytes.size() - 2]);
        const auto wrong = static_cast<uint8_t>((good + 1 + m_random.Below(127)) & 127u);
        bytes[bytes.size() - 2] = static_cast<char>(wrong);
    }

    const bool cut = m_random.Chance(m_options.cut);
    if (answer && framed && cut) {
        // Keep the command byte and lose at least the end marker.
        bytes.resize(1 + m_random.Below(bytes.size() - 2));
    }

    if (m_random.Chance(m_options.garbage)) {
        std::string noise;
        const auto count = 1 + m_random.Below(8);
        for (uint64_t i = 0; i < count; ++i) {
            noise.push_back(static_cast<char>(m_random.Below(128)));
        }
        bytes.insert(0, noise);
    }

    ++m_sent;
    if (m_options.dropAfter > 0 && m_sent >= m_options.dropAfter) {
        delivery.closeAfter = true;
        m_closed = true;
    }

    if (m_options.slowMs > 0) {
        delivery.chunks.push_back({std::move(bytes), m_options.slowMs, m_options.slowMs});
    } else if (m_options.split) {
        size_t pos = 0;
        while (pos < bytes.size()) {
            const size_t n = std::min<size_t>(1 + m_random.Below(16), bytes.size() - pos);
            delivery.chunks.push_back({bytes.substr(pos, n), static_cast<int>(m_random.Below(3))});
            pos += n;
        }
    } else {
        delivery.chunks.push_back({std::move(bytes), 0});
    }
    return delivery;
}

} // namespace lumeth::sim
