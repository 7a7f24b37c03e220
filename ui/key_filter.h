#pragma once

#include <QObject>

class QWidget;

namespace lumeth {

// Discards typed characters that `accepts` refuses, as a text box's key
// filter. Only printable characters and backspace are judged; navigation,
// Enter, Tab and shortcuts pass untouched.
class KeyFilter : public QObject {
    Q_OBJECT
public:
    using Predicate = bool (*)(int code);
    KeyFilter(Predicate accepts, QObject* parent);

    // Install a filter owned by `widget`.
    static void Install(QWidget* widget, Predicate accepts);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Predicate m_accepts;
};

} // namespace lumeth
