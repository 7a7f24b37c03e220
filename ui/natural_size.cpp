#include "ui/natural_size.h"

#include <QDialog>
#include <QFontMetrics>
#include <QLayout>
#include <QSpacerItem>

namespace lumeth {

void KeepNaturalSize(QDialog* dialog) {
    QLayout* layout = dialog->layout();
    if (!layout)
        return;
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // Window managers draw the title in bold, often larger, beside an icon
    // and three buttons with some padding: about eight lines' heights.
    QFont bold = dialog->font();
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    const int titleWidth =
        metrics.horizontalAdvance(dialog->windowTitle()) * 11 / 10 + 8 * metrics.height();
    const QMargins margins = layout->contentsMargins();
    // An empty item takes no spacing, only width.
    layout->addItem(new QSpacerItem(titleWidth - margins.left() - margins.right(), 0,
                                    QSizePolicy::Fixed, QSizePolicy::Fixed));
}

} // namespace lumeth
