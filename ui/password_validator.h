#pragma once

#include <QValidator>

class QLineEdit;

namespace lumeth {

// Accepts only a password the set-password message carries whole: text that
// goes through the Windows-1252 table and back unchanged and whose bytes
// keep their top bit clear. A character outside that set cannot be typed or
// pasted into the box.
class PasswordValidator : public QValidator {
    Q_OBJECT
public:
    explicit PasswordValidator(QObject* parent) : QValidator(parent) {}

    State validate(QString& input, int& position) const override;

    // Give `edit` a validator of its own.
    static void Install(QLineEdit* edit);
};

} // namespace lumeth
