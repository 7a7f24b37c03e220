#pragma once

#include <QString>

#include <string>
#include <string_view>

#include "model/cp1252.h"

namespace lumeth {

// Store text (Windows-1252 bytes) to Qt and back, at the window's edge.
inline QString ToQt(std::string_view bytes) {
    return QString::fromStdString(cp1252::ToUtf8(bytes));
}
inline std::string FromQt(const QString& text) {
    return cp1252::FromUtf8(text.toStdString());
}

} // namespace lumeth
