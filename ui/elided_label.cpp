#include "ui/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace lumeth {

namespace {
// Enough for a short status word or two before the label is cut.
constexpr int kMinimumCharacters = 12;
} // namespace

ElidedLabel::ElidedLabel(QWidget* parent, double parentShare)
    : QLabel(parent), m_parentShare(parentShare) {
    setTextFormat(Qt::PlainText);
    setWordWrap(false);
    if (parent)
        parent->installEventFilter(this);
}

QRect ElidedLabel::TextRect() const {
    const int inset = margin() + std::max(indent(), 0);
    return contentsRect().adjusted(inset, margin(), -inset, -margin());
}

QString ElidedLabel::shownText() const {
    return fontMetrics().elidedText(text(), Qt::ElideRight, TextRect().width());
}

bool ElidedLabel::isElided() const {
    return shownText() != text();
}

QSize ElidedLabel::minimumSizeHint() const {
    const QSize full = QLabel::minimumSizeHint();
    return {std::min(full.width(), fontMetrics().averageCharWidth() * kMinimumCharacters),
            full.height()};
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        // The whole text, only when it is cut; a tooltip set by the owner wins.
        if (toolTip().isEmpty()) {
            const auto* help = static_cast<QHelpEvent*>(event);
            if (isElided())
                QToolTip::showText(help->globalPos(), text(), this);
            else
                QToolTip::hideText();
            return true;
        }
    }
    return QLabel::event(event);
}

bool ElidedLabel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setMaximumWidth(std::max(minimumSizeHint().width(),
                                 static_cast<int>(parentWidget()->width() * m_parentShare)));
    return QLabel::eventFilter(watched, event);
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawFrame(&painter);
    const Qt::Alignment align = QStyle::visualAlignment(layoutDirection(), alignment());
    style()->drawItemText(&painter, TextRect(), static_cast<int>(align), palette(), isEnabled(),
                          shownText(), foregroundRole());
}

} // namespace lumeth
