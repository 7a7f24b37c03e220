#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace lumeth::sim {

// Keeps one client's log from growing faster than the traffic it describes.
// Every line written costs its length; a client may have written a fixed
// allowance plus the bytes it has sent and been sent. A line over budget is
// counted instead, and the count goes out with the next line that fits, so a
// client that streams junk one byte at a time cannot make the log many times
// larger than the junk.
class LogBudget {
public:
    static constexpr size_t kDefaultAllowance = 16 * 1024;
    // `lineOverhead`: what the writer adds around each line (prefix, line end).
    explicit LogBudget(size_t lineOverhead = 0, size_t allowance = kDefaultAllowance)
        : m_allowance(allowance), m_lineOverhead(lineOverhead) {}

    void AddTraffic(size_t bytes) { m_traffic += bytes; }
    // The lines to write for `line`: nothing while over budget, otherwise the
    // line, after a note of the lines left out since the last one written.
    std::vector<std::string> Admit(std::string line);
    // Lines left out and not yet reported.
    size_t suppressed() const { return m_suppressed; }

private:
    size_t m_allowance;
    size_t m_lineOverhead;
    size_t m_traffic = 0;
    size_t m_written = 0;
    size_t m_suppressed = 0;
};

} // namespace lumeth::sim
