#include "ui/port_check.h"

#include "files/settings.h"
#include "link/link_state.h"
#include "ui/message_box.h"
#include "ui/normalise_address.h"
#include "ui/qt_text.h"

namespace lumeth {

void ShowPortError(QWidget* parent) {
    MessageBox::Show(parent,
                     "Invalid Server IP Port #. Please reenter a number between 1 and 65535",
                     "Port Error", QMessageBox::NoIcon, QMessageBox::Ok);
}

std::optional<bool> ApplyServerFields(QWidget* parent, const QString& addressText,
                                      const QString& portText, std::string& normalisedAddress,
                                      LinkState& state) {
    bool changed = false;
    NormaliseAddress(FromQt(addressText), normalisedAddress);
    if (normalisedAddress != state.serverAddress) {
        state.serverAddress = normalisedAddress;
        changed = true;
    }

    const int32_t port = LeadingNumber(FromQt(portText));
    if (!PortInRange(port)) {
        ShowPortError(parent);
        return std::nullopt;
    }
    if (port != state.serverPort) {
        state.serverPort = port;
        changed = true;
    }
    return changed;
}

} // namespace lumeth
