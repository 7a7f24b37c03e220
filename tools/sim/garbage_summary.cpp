#include "tools/sim/garbage_summary.h"

#include <algorithm>

namespace lumeth::sim {

std::optional<std::string> GarbageSummary::Add(int64_t nowMs, std::string_view kind,
                                               std::string line, size_t bytes) {
    const bool quiet = !m_lastBad || (nowMs - *m_lastBad >= kWindowMs && m_lines == 0);
    m_lastBad = nowMs;
    if (quiet) { // the first after a second without bad input
        m_windowStart = nowMs;
        return line;
    }
    ++m_lines;
    m_bytes += bytes;
    const auto known = std::find_if(m_kinds.begin(), m_kinds.end(),
                                    [&](const auto& counted) { return counted.first == kind; });
    if (known != m_kinds.end()) {
        ++known->second;
    } else if (m_kinds.size() < kNamedKinds) {
        m_kinds.emplace_back(kind, 1);
    } else {
        ++m_otherLines;
    }
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
    std::string summary = std::to_string(m_bytes) + " garbage bytes in " + std::to_string(seconds) +
                          " s (" + std::to_string(m_lines) + " log lines left out:";
    for (const auto& [kind, count] : m_kinds) {
        summary.append(" ").append(std::to_string(count)).append(" ").append(kind).append(",");
    }
    if (m_otherLines > 0) {
        summary.append(" ").append(std::to_string(m_otherLines)).append(" others,");
    }
    summary.back() = ')';
    // The next second is counted from here, so a steady stream gives a
    // summary a second and nothing more.
    m_windowStart = nowMs;
    m_lines = 0;
    m_bytes = 0;
    m_kinds.clear();
    m_otherLines = 0;
    return summary;
}

} // namespace lumeth::sim
