#include "ui/port_check.h"

#include "ui/message_box.h"

namespace lumeth {

void ShowPortError(QWidget* parent) {
    MessageBox::Show(parent,
                     "Invalid Server IP Port #. Please reenter a number between 1 and 65535",
                     "Port Error", QMessageBox::NoIcon, QMessageBox::Ok);
}

} // namespace lumeth
