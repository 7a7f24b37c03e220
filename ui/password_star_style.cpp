#include "ui/password_star_style.h"

#include <QLineEdit>

namespace lumeth {

void PasswordStarStyle::Install(QLineEdit* edit) {
    // A widget does not own its style: parenting it to the box ends it with the box.
    auto* style = new PasswordStarStyle;
    style->setParent(edit);
    edit->setStyle(style);
}

int PasswordStarStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                 QStyleHintReturn* returnData) const {
    if (hint == SH_LineEdit_PasswordCharacter)
        return '*';
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace lumeth
