#pragma once

#include <QProxyStyle>

class QLineEdit;

namespace lumeth {

// The application's style, except that a password box shows each character
// as "*" instead of the platform's bullet.
class PasswordStarStyle : public QProxyStyle {
    Q_OBJECT
public:
    // Gives `edit` this style, owned by the box itself.
    static void Install(QLineEdit* edit);

    int styleHint(StyleHint hint, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
};

} // namespace lumeth
