#include "app/window_layout.h"

#include <QHeaderView>
#include <QMainWindow>
#include <QSettings>
#include <QTreeView>

namespace lumeth {

namespace {
constexpr char kGeometryKey[] = "Window/Geometry";

QString HeaderKey(const QTreeView* view) {
    return "Columns/" + view->objectName();
}
} // namespace

void RestoreWindowLayout(QMainWindow& window, std::initializer_list<QTreeView*> views,
                         const QString& folder) {
    const QSettings file(folder + kWindowLayoutFileName, QSettings::IniFormat);
    if (file.status() != QSettings::NoError)
        return;
    const QByteArray geometry = file.value(kGeometryKey).toByteArray();
    if (!geometry.isEmpty())
        window.restoreGeometry(geometry);
    for (QTreeView* view : views) {
        const QByteArray columns = file.value(HeaderKey(view)).toByteArray();
        // A state saved for another set of columns is refused by the header.
        if (!columns.isEmpty())
            view->header()->restoreState(columns);
    }
}

Status SaveWindowLayout(const QMainWindow& window, std::initializer_list<QTreeView*> views,
                        const QString& folder) {
    const QString path = folder + kWindowLayoutFileName;
    QSettings file(path, QSettings::IniFormat);
    file.setValue(kGeometryKey, window.saveGeometry());
    for (const QTreeView* view : views)
        file.setValue(HeaderKey(view), view->header()->saveState());
    // QSettings writes a temporary file and renames it over the old one.
    file.sync();
    switch (file.status()) {
    case QSettings::NoError:
        return Status::Ok();
    case QSettings::AccessError:
        return Status::Fail(ErrorCode::PathFileAccessError, path.toStdString() + ": cannot write");
    case QSettings::FormatError:
        break;
    }
    return Status::Fail(ErrorCode::InvalidFileFormat, path.toStdString() + ": unreadable");
}

} // namespace lumeth
