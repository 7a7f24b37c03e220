#include "tools/sim/garbage_summary.h"

namespace lumeth::sim {

std::optional<std::string> GarbageSummary::Add(int64_t nowMs, std::string line, size_t bytes) {
    const bool quiet = !m_lastBad || (nowMs - *m_lastBad >= kWindowMs && m_lines == 0);
    m_lastBad = nowMs;
    if (quiet) { // the first after a second without bad input
        m_windowStart = nowMs;
        return line;
    }
    ++m_lines;
    m_bytes += bytes;
    return std::nullopt;
}

std::optional<std::string> GarbageSummary::Flush(int64_t nowMs, bool force) {
    if (!m_windowStart || m_lines == 0) {
        return std::nullopt;
    }
    const int64_t elapsed = nowMs - *m_windowStart;
    if (elapsed < kWindowMs && !force) {
        return std::nullopt;
    }
    const int64_t seconds = elapsed <= kWindowMs ? 1 : (elapsed + kWindowMs - 1) / kWindowMs;
    std::string summary = std::to_string(m_bytes) + " garbage bytes in " +
                          std::to_string(seconds) + " s (" + std::to_string(m_lines) +
                          " log lines left out)";
    // The next second is counted from here, so a steady stream gives a
    // summary a second and nothing more.
    m_windowStart = nowMs;
    m_lines = 0;
    m_bytes = 0;
    return summary;
}

} // namespace lumeth::sim
