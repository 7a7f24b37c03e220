#pragma once

#include <cstdint>
#include <optional>
#include <string>

class QString;
class QWidget;

namespace lumeth {

// Server module ports run from 1 to 65535.
inline bool PortInRange(int32_t port) {
    return port >= 1 && port <= 65535;
}

// "Invalid Server IP Port #..." titled "Port Error", shared by setup and login.
void ShowPortError(QWidget* parent);

struct LinkState;

// The address and port steps of the setup and login OK buttons. The typed
// address is normalised and stored when it differs (an address without three
// dots leaves the last normalised one in force), even if the port then fails;
// then the port is checked and stored. After a port error (its box shown) the
// result is empty; otherwise it says whether the address or port changed.
std::optional<bool> ApplyServerFields(QWidget* parent, const QString& addressText,
                                      const QString& portText, std::string& normalisedAddress,
                                      LinkState& state);

} // namespace lumeth
