#pragma once

#include <cstdint>

namespace lumeth {

// When to ask the server module again for the parts of a download still
// missing. An answer lost to a bad checksum or a cut frame is never asked for
// again by the session itself (alpha tables, templates, cut frames), so a
// reader that waits for all of them asks again once the link has been quiet
// for a while, a bounded number of times, then gives up.
class ReaskPolicy {
public:
    enum class Step { Wait, AskAgain, GiveUp };

    static constexpr int64_t kQuietMs = 1000;
    static constexpr int kMaxReasks = 4;

    explicit ReaskPolicy(int64_t quietMs = kQuietMs, int maxReasks = kMaxReasks)
        : m_quietMs(quietMs), m_maxReasks(maxReasks) {}

    // A request for everything went out at `nowMs`: the count starts again.
    void Restart(int64_t nowMs);
    // Waiting starts anew at `nowMs` (the quiet time counts from here), the
    // count of requests asked again stays.
    void Heard(int64_t nowMs) { m_quietSince = nowMs; }
    // A look at `nowMs`, with `bytesReceived` so far on the link; `asked`
    // once something has been asked for (before the identity query there is
    // nothing to ask again). AskAgain counts as a request at `nowMs`.
    Step Look(int64_t nowMs, uint64_t bytesReceived, bool asked);

    int reasks() const { return m_reasks; }

private:
    int64_t m_quietMs;
    int m_maxReasks;
    int m_reasks = 0;
    int64_t m_quietSince = 0;
    uint64_t m_bytesSeen = 0;
};

} // namespace lumeth
