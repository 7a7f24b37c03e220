#include <QApplication>
#include <QTextStream>

#include <cstdio>
#include <new>

#include "app/main_window.h"
#include "app/program_folder.h"

namespace {

int Run(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Lumeth Admin");
    QApplication::setOrganizationName("KOV");

    const QStringList arguments = QApplication::arguments();
    if (arguments.contains("--help") || arguments.contains("-h")) {
        QTextStream(stdout)
            << "usage: lumeth-admin [--home DIR]\n"
               "  --home DIR  keep kovadmin.ini, Errorlog.txt and panel data files in DIR\n"
               "              (default: the program's own folder when writable, else the\n"
               "              per-user data folder)\n";
        return 0;
    }

    lumeth::MainWindow window(lumeth::ProgramFolder(arguments).toStdString());
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
