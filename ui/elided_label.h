#pragma once

#include <QLabel>

namespace lumeth {

// A one-line label that never grows past a share of its parent's width:
// text that does not fit is shown cut with "…" at the end, and its tooltip
// then shows the whole text. text() is always the whole text. Used for the
// status bar panels, so a long download list leaves room beside it.
class ElidedLabel : public QLabel {
    Q_OBJECT
public:
    // `parentShare`: the largest part of the parent's width the label takes (0 to 1).
    ElidedLabel(QWidget* parent, double parentShare);

    // Whether the text is cut at the label's current width.
    bool isElided() const;
    // The text as shown at the label's current width.
    QString shownText() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect TextRect() const;

    double m_parentShare;
};

} // namespace lumeth
