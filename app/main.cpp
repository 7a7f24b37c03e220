#include <QApplication>

#include <cstdio>
#include <cstring>
#include <new>

#include "app/main_window.h"
#include "app/program_folder.h"
#include "files/user_data_folder.h"
#include "lumeth/version.h"

namespace {

int Run(int argc, char* argv[]) {
    // Answered before the application object exists, so both work without a display.
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::fputs("usage: lumeth-admin [--home DIR]\n"
                       "       lumeth-admin --help | --version\n"
                       "  --home DIR  keep kovadmin.ini, Errorlog.txt and panel data files in DIR\n"
                       "              (default: the program's own folder when writable and not an\n"
                       "              installed system folder, else the per-user data folder)\n",
                       stdout);
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("lumeth-admin %s\n", lumeth::kProductVersion);
            return 0;
        }
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QString::fromUtf8(lumeth::kDataApplication.data(),
                                                       qsizetype(lumeth::kDataApplication.size())));
    QApplication::setOrganizationName(QString::fromUtf8(
        lumeth::kDataOrganisation.data(), qsizetype(lumeth::kDataOrganisation.size())));
    QApplication::setApplicationVersion(lumeth::kProductVersion);
    // Matches the installed launcher entry, so the desktop groups the window under it.
    QGuiApplication::setDesktopFileName("lumeth-admin");

    lumeth::MainWindow window(lumeth::ProgramFolder(QApplication::arguments()).toStdString());
    window.Start();
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[]) {
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        // A file too large for memory: one line instead of an abort.
        std::fputs("lumeth-admin: not enough memory\n", stderr);
        return 2;
    }
}
