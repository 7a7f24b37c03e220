#include "app/program_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace lumeth {

namespace {
QString WithSeparator(QString folder) {
    folder = QDir::cleanPath(QDir(folder).absolutePath());
    if (!folder.endsWith('/'))
        folder += '/';
    return folder;
}

// An installed copy has its launcher entry under ../share beside its bin
// folder. It keeps its files per user even where that bin folder is writable
// (root, or a prefix in the user's home): the folder belongs to the package.
bool IsInstalledLayout(const QString& executableDir) {
    return QFileInfo::exists(executableDir + "/../share/applications/" + kDesktopEntryName);
}
} // namespace

QString ChooseProgramFolder(const std::optional<QString>& home, const QString& executableDir,
                            const QString& dataDir) {
    if (home && !home->isEmpty()) {
        QDir().mkpath(*home);
        return WithSeparator(*home);
    }
    const QFileInfo exe(executableDir);
    if (!executableDir.isEmpty() && exe.isDir() && exe.isWritable() &&
        !IsInstalledLayout(executableDir))
        return WithSeparator(executableDir);
    QDir().mkpath(dataDir);
    return WithSeparator(dataDir);
}

std::optional<QString> HomeArgument(const QStringList& arguments) {
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& arg = arguments[i];
        if (arg == "--home" && i + 1 < arguments.size())
            return arguments[i + 1];
        if (arg.startsWith("--home="))
            return arg.mid(7);
    }
    return std::nullopt;
}

QString ProgramFolder(const QStringList& arguments) {
    return ChooseProgramFolder(HomeArgument(arguments), QCoreApplication::applicationDirPath(),
                               QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

} // namespace lumeth
