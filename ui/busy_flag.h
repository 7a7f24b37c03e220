#pragma once

#include <cstdint>

namespace lumeth {

// The program-wide busy flag: set (-1) while a window fills its own controls,
// so that the change events the filling fires are ignored by the handlers.
class BusyFlag {
public:
    static bool IsSet() { return value() != 0; }

    // Sets the flag for its lifetime and clears it afterwards, also when the
    // filling fails (a scope opened while the flag was already set leaves it set).
    class Scope {
    public:
        Scope() : m_previous(value()) { value() = -1; }
        ~Scope() { value() = m_previous; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        int16_t m_previous;
    };

private:
    static int16_t& value() {
        static int16_t flag = 0;
        return flag;
    }
};

} // namespace lumeth
