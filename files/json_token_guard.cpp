#include "files/json_token_guard.h"

namespace lumeth {

namespace {

bool NumberCharacter(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

} // namespace

void JsonTokenGuard::Step(char c) {
    const size_t at = m_offset++;
    if (m_inString) {
        if (m_escaped) {
            m_escaped = false;
        } else if (c == '\\') {
            m_escaped = true;
        } else if (c == '"') {
            m_inString = false;
            return;
        }
        if (++m_tokenLength > m_maxString) {
            Stop(true);
        }
        return;
    }
    if (c == '"') {
        m_inString = true;
        m_tokenStart = at;
        m_tokenLength = 0;
        return;
    }
    if (!NumberCharacter(c)) {
        m_tokenLength = 0;
        return;
    }
    if (m_tokenLength == 0) {
        m_tokenStart = at;
    }
    if (++m_tokenLength > m_maxNumber) {
        Stop(false);
    }
}

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
