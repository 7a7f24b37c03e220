#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumeth::sim {

// Keeps one client's bad input from filling the log: after a quiet spell the
// first bad-input line is written as it is; what follows within the second is
// counted by kind, and each second that saw more ends with one line such as
// "48213 garbage bytes in 1 s (312 log lines left out: 310 Incomplete Message
// 90, 2 Invalid Data)". A client that streams junk therefore costs the log
// about a line a second, whatever it sends.
// Plain C++: the caller passes the time (milliseconds, any steady origin).
class GarbageSummary {
public:
    static constexpr int64_t kWindowMs = 1000;

    // The most kinds a summary names; the rest are "others".
    static constexpr size_t kNamedKinds = 4;

    // Bad input `line` of `kind` (the line without its figures) that dropped
    // `bytes` at `nowMs`: the line to write now, or nothing when it is
    // counted for the summary instead.
    std::optional<std::string> Add(int64_t nowMs, std::string_view kind, std::string line,
                                   size_t bytes);
    // The summary of what was counted, once its second is over (or at once
    // with `force`, when the connection closes); nothing when none is due.
    std::optional<std::string> Flush(int64_t nowMs, bool force = false);
    // Something is counted and waits for Flush.
    bool pending() const { return m_lines > 0; }

private:
    std::optional<int64_t> m_windowStart;                // the second being counted
    std::optional<int64_t> m_lastBad;                    // the latest bad input
    size_t m_lines = 0;                                  // lines left out in it
    size_t m_bytes = 0;                                  // garbage bytes in it
    std::vector<std::pair<std::string, size_t>> m_kinds; // lines left out, by kind
    size_t m_otherLines = 0;                             // past kNamedKinds
};

} // namespace lumeth::sim
