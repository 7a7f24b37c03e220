#pragma once

#include <cstdint>

namespace lumeth {

// The program-wide busy flag: set (-1) while a window fills its own controls,
// so that the change events the filling fires are ignored by the handlers.
class BusyFlag {
public:
    static bool IsSet() { return value() != 0; }

    // Sets the flag for its lifetime and clears it afterwards, also when the
    // filling fails.
    class Scope {
    public:
        Scope() { value() = -1; }
        ~Scope() { value() = 0; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };

private:
    static int16_t& value() {
        static int16_t flag = 0;
        return flag;
    }
};

} // namespace lumeth
