#include "ui/fixed_pitch_font.h"

#include <QAbstractItemView>
#include <QFontDatabase>
#include <QHeaderView>
#include <QTreeView>

namespace lumeth {

void UseFixedPitchFont(QAbstractItemView* view) {
    QFont normal = view->font();
    if (auto* tree = qobject_cast<QTreeView*>(view)) {
        // Set in full, or the header would follow the view's new font.
        normal.setResolveMask(QFont::AllPropertiesResolved);
        tree->header()->setFont(normal);
    }
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setStyleHint(QFont::TypeWriter);
    if (normal.pointSizeF() > 0)
        fixed.setPointSizeF(normal.pointSizeF());
    view->setFont(fixed);
}

} // namespace lumeth
