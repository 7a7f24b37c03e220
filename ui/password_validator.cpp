#include "ui/password_validator.h"

#include <QLineEdit>

#include "link/codec.h"
#include "ui/qt_text.h"

namespace lumeth {

QValidator::State PasswordValidator::validate(QString& input, int& /*position*/) const {
    const std::string bytes = FromQt(input);
    return ToQt(bytes) == input && codec::PasswordFitsMessage(bytes) ? Acceptable : Invalid;
}

void PasswordValidator::Install(QLineEdit* edit) {
    edit->setValidator(new PasswordValidator(edit));
}

} // namespace lumeth
