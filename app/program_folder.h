#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace lumeth {

// The launcher entry's file name, installed under share/applications.
inline constexpr char kDesktopEntryName[] = "lumeth-admin.desktop";

// The folder of kovadmin.ini, Errorlog.txt and the file dialog's start:
// `home` when given (created if missing); else the executable's folder when it
// is writable and not an installed bin folder (a build tree, a portable copy);
// else the per-user data folder `dataDir`, created if missing. Always ends in
// a separator.
QString ChooseProgramFolder(const std::optional<QString>& home, const QString& executableDir,
                            const QString& dataDir);

// The value of "--home DIR" or "--home=DIR" among the arguments, if any.
std::optional<QString> HomeArgument(const QStringList& arguments);

// The program folder for this process (uses QCoreApplication and QStandardPaths).
QString ProgramFolder(const QStringList& arguments);

} // namespace lumeth
