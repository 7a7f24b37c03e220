#include <QApplication>
#include <QTextStream>

#include "app/main_window.h"
#include "app/program_folder.h"

int main(int argc, char* argv[]) {
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
