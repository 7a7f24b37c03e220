#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace lumeth {

// Watches the JSON text as the parser reads it, one character at a time, and
// ends the input as soon as a string or a number grows longer than any value
// of the document holds. The parser keeps the whole of its current token in
// memory; cut off this way, a document with one string of hundreds of
// megabytes costs a few hundred bytes instead of twice its length.
class JsonTokenGuard {
public:
    // The parser's input: the characters of `text` until the guard stops.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = char;
        using difference_type = std::ptrdiff_t;
        using pointer = const char*;
        using reference = const char&;

        Iterator() = default;
        Iterator(const char* at, JsonTokenGuard* guard) : m_at(at), m_guard(guard) {}
        reference operator*() const { return *m_at; }
        Iterator& operator++() {
            m_guard->Step(*m_at);
            ++m_at;
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        // Once the guard has stopped, every position is the end.
        bool operator==(const Iterator& other) const {
            return m_at == other.m_at || m_guard->stopped();
        }

    private:
        const char* m_at = nullptr;
        JsonTokenGuard* m_guard = nullptr;
    };

    // Strings of more than `maxStringBytes` bytes between their quotes (as
    // written, escapes included) and numbers of more than `maxNumberBytes`
    // characters stop the input.
    JsonTokenGuard(std::string_view text, size_t maxStringBytes, size_t maxNumberBytes)
        : m_text(text), m_maxString(maxStringBytes), m_maxNumber(maxNumberBytes) {}

    Iterator begin() { return {m_text.data(), this}; }
    Iterator end() { return {m_text.data() + m_text.size(), this}; }

    bool stopped() const { return m_stopped; }
    // Why the input stopped, naming the byte where the token began.
    std::string Reason() const;

private:
    static bool NumberCharacter(char c) {
        return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
    }
    // Inline: it runs for every character of the document.
    void Step(char c);
    void Stop(bool string);

    std::string_view m_text;
    size_t m_maxString;
    size_t m_maxNumber;
    size_t m_offset = 0;      // of the character being read
    size_t m_tokenStart = 0;  // of the current string or number
    size_t m_tokenLength = 0; // characters of it read so far
    bool m_inString = false;
    bool m_escaped = false;
    bool m_stopped = false;
    bool m_stoppedInString = false;
};

inline void JsonTokenGuard::Step(char c) {
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

} // namespace lumeth
