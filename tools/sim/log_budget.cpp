#include "tools/sim/log_budget.h"

namespace lumeth::sim {

std::vector<std::string> LogBudget::Admit(std::string line) {
    std::vector<std::string> out;
    if (m_suppressed > 0) {
        out.push_back(std::to_string(m_suppressed) + " log lines left out (more log than traffic)");
    }
    size_t cost = line.size() + m_lineOverhead;
    for (const std::string& note : out) {
        cost += note.size() + m_lineOverhead;
    }
    if (m_written + cost > m_allowance + m_traffic) {
        ++m_suppressed;
        return {};
    }
    m_written += cost;
    m_suppressed = 0;
    out.push_back(std::move(line));
    return out;
}

} // namespace lumeth::sim
