#pragma once

#include <QString>
#include <QVariant>

namespace lumeth {

// Makes `widget` a member of a control array: named `<array>_<index>`, with the
// array's name and the index as the dynamic properties `controlArray` and
// `controlIndex`, so tests and tools find it as they find any other control.
template <typename Widget> Widget* ArrayMember(Widget* widget, const char* array, int index) {
    widget->setObjectName(QStringLiteral("%1_%2").arg(array).arg(index));
    widget->setProperty("controlArray", array);
    widget->setProperty("controlIndex", index);
    return widget;
}

} // namespace lumeth
