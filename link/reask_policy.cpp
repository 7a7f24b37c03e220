#include "link/reask_policy.h"

namespace lumeth {

void ReaskPolicy::Restart(int64_t nowMs) {
    m_reasks = 0;
    m_quietSince = nowMs;
}

ReaskPolicy::Step ReaskPolicy::Look(int64_t nowMs, uint64_t bytesReceived, bool asked) {
    if (bytesReceived != m_bytesSeen) {
        m_bytesSeen = bytesReceived;
        m_quietSince = nowMs;
    }
    if (!asked || nowMs - m_quietSince < m_quietMs)
        return Step::Wait;
    if (m_reasks >= m_maxReasks)
        return Step::GiveUp;
    ++m_reasks;
    m_quietSince = nowMs;
    return Step::AskAgain;
}

} // namespace lumeth
