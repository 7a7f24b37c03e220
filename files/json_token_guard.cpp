#include "files/json_token_guard.h"

namespace lumeth {

void JsonTokenGuard::Stop(bool string) {
    m_stopped = true;
    m_stoppedInString = string;
}

std::string JsonTokenGuard::Reason() const {
    if (m_stoppedInString) {
        return "a string at byte " + std::to_string(m_tokenStart) + " longer than any value holds" +
               " (more than " + std::to_string(m_maxString) + " bytes)";
    }
    return "a number at byte " + std::to_string(m_tokenStart) + " longer than any value holds" +
           " (more than " + std::to_string(m_maxNumber) + " characters)";
}

} // namespace lumeth
