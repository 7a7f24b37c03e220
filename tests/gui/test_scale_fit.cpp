// Every window at a scale factor of 2 on small screens: its frame lies within
// the screen's available area, and its minimum size and size hint fit there
// too. Run once per screen: `gui_scale_fit --screen 1024x768` (the screen's
// size in device-independent pixels; the offscreen screen is twice that).
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>
#include <memory>

#include "app/main_window.h"
#include "link/connection.h"
#include "ui/about_dialog.h"
#include "ui/apply_selected_dialog.h"
#include "ui/backups_dialog.h"
#include "ui/button_editor.h"
#include "ui/changes_dialog.h"
#include "ui/channel_list_models.h"
#include "ui/display_list_editor.h"
#include "ui/duplicate_display_list_dialog.h"
#include "ui/duplicate_template_dialog.h"
#include "ui/fill_dialog.h"
#include "ui/login_dialog.h"
#include "ui/setup_dialog.h"

using namespace lumeth;

constexpr int kScale = 2;

class ScaleFitTest : public QObject {
    Q_OBJECT
    QTemporaryDir m_home;
    std::unique_ptr<MainWindow> m_window;
    ChannelListModels m_models;
    std::string m_address;

    std::unique_ptr<QWidget> Make(const QString& name) {
        MainWindow& w = *m_window;
        const ErrorReporter ignore = [](std::string_view, std::string_view, const Failure&) {};
        if (name == "frmLogin")
            return std::make_unique<LoginDialog>(w.link(), w.connection(), m_address, &w);
        if (name == "frmSetup")
            return std::make_unique<SetupDialog>(w.settings(), w.link(), w.connection(), m_address,
                                                 &w);
        if (name == "frmAbout")
            return std::make_unique<AboutDialog>(w.link(), &w);
        if (name == "frmDisplayListView")
            return std::make_unique<DisplayListEditor>(w.store(), w.folder(), ignore, &w);
        if (name == "frmButtons")
            return std::make_unique<ButtonEditor>(w.store(), m_models, ignore, w.folder(), &w);
        if (name == "frmDuplicateDisplayList")
            return std::make_unique<DuplicateDisplayListDialog>(w.store(), ignore, &w);
        if (name == "frmDuplicateTemplate")
            return std::make_unique<DuplicateTemplateDialog>(w.store(), ignore, &w);
        if (name == "frmBackups")
            return std::make_unique<BackupsDialog>(w.folder(), w.store(), &w);
        if (name == "frmFill")
            return std::make_unique<FillDialog>(w.store(), 0, &w);
        if (name == "frmApplySelected") {
            // The longest rows: every part a conflict.
            auto dialog = std::make_unique<ApplySelectedDialog>(&w);
            std::vector<ApplyPartRow> rows;
            ForEachPart(kUploadParts, [&](Part p) { rows.push_back({p, 16383, true, false}); });
            dialog->setRows(rows);
            return dialog;
        }
        auto changes = std::make_unique<ChangesDialog>(&w);
        changes->setLines({std::string(200, 'x'), "Gr.001 \"Studio A\" renamed to \"Studio B\""});
        return changes;
    }

    // The frame, and the window at its minimum size and at its size hint
    // with the same frame, lie within the screen's available area.
    static void CheckFits(QWidget* window) {
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        const QRect available = window->screen()->availableGeometry();
        const QRect frame = window->frameGeometry();
        const QSize margins = frame.size() - window->size();
        QVERIFY2(available.contains(frame), "frame");
        for (const QSize size :
             {window->minimumSize().expandedTo(window->minimumSizeHint()), window->sizeHint()}) {
            const QSize framed = size + margins;
            QVERIFY2(framed.width() <= available.width() && framed.height() <= available.height(),
                     qPrintable(QString("%1x%2 on %3x%4 available")
                                    .arg(framed.width())
                                    .arg(framed.height())
                                    .arg(available.width())
                                    .arg(available.height())));
        }
    }

private slots:
    void initTestCase() {
        QCOMPARE(qApp->devicePixelRatio(), qreal(kScale));
        m_window = std::make_unique<MainWindow>((m_home.path() + "/").toStdString());
        m_window->store().ResetToDefaults();
        CheckFits(m_window.get());
    }

    void dialogFits_data() {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"frmLogin", "frmSetup", "frmAbout", "frmDisplayListView", "frmButtons",
              "frmDuplicateDisplayList", "frmDuplicateTemplate", "frmChanges", "frmBackups",
              "frmFill", "frmApplySelected"})
            QTest::newRow(name) << QString(name);
    }
    void dialogFits() {
        QFETCH(QString, name);
        const std::unique_ptr<QWidget> window = Make(name);
        window->setWindowFlag(Qt::Window);
        CheckFits(window.get());
    }
};

// `--screen WxH`: an offscreen screen of that many device-independent pixels
// at a scale factor of 2, set up before the application starts.
int main(int argc, char** argv) {
    QSize screen(1024, 768);
    std::vector<char*> args;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--screen") == 0 && i + 1 < argc) {
            const QStringList wh = QString(argv[++i]).split('x');
            screen = QSize(wh.value(0).toInt(), wh.value(1).toInt());
            continue;
        }
        args.push_back(argv[i]);
    }
    const QString config = QDir::temp().filePath(
        QString("lumeth-scale-fit-%1.json").arg(QCoreApplication::applicationPid()));
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly))
        return 2;
    file.write(
        QString(R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": %1, "height": %2}]})")
            .arg(screen.width() * kScale)
            .arg(screen.height() * kScale)
            .toUtf8());
    file.close();
    qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + config).toUtf8());
    qputenv("QT_SCALE_FACTOR", QByteArray::number(kScale));
    int count = static_cast<int>(args.size());
    QApplication app(count, args.data());
    ScaleFitTest test;
    const int failed = QTest::qExec(&test, count, args.data());
    QFile::remove(config);
    return failed;
}

#include "test_scale_fit.moc"
