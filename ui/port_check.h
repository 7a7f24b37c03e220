#pragma once

#include <cstdint>

class QWidget;

namespace lumeth {

// Server module ports run from 1 to 65535.
inline bool PortInRange(int32_t port) {
    return port >= 1 && port <= 65535;
}

// "Invalid Server IP Port #..." titled "Port Error", shared by setup and login.
void ShowPortError(QWidget* parent);

} // namespace lumeth
