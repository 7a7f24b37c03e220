#pragma once

#include <QString>
#include <QStringList>

#include <deque>
#include <optional>

class QWidget;

namespace lumeth {

// The program's open/save file dialog: Qt's own (non-native) dialog, so it
// looks and behaves the same on every platform. Tests queue the file name the
// next dialog returns with setNextFileName (an empty name is a cancel).
class FileDialog {
public:
    struct Request {
        QString title;
        QString folder;
        QString presetName;
        QStringList nameFilters;
        // Choose a folder rather than a file.
        bool chooseFolder = false;
    };

    // Show the dialog; the chosen path, or an empty text on cancel.
    static QString GetFileName(QWidget* parent, const Request& request);

    static void setNextFileName(const QString& path);
    static void clearQueuedNames();
    // The last request made, answered or shown.
    static std::optional<Request> lastRequest();

private:
    static std::deque<QString>& queue();
    static std::optional<Request>& last();
};

// The filter list of the file dialog: "(*.dat)|*.dat|All Files (*.*)|*.*" for
// "dat", "All Files (*.*)|*.*" for no extension.
QString FileFilterText(const QString& extension);
// The same filter as Qt name filters ("(*.dat)", "All Files (*.*)").
QStringList FileNameFilters(const QString& extension);

// Ask for a file name with the title "Specify File Name", starting in
// `folder` with `defaultName` preset; empty on cancel. Serves loading and saving.
QString ChooseFileName(QWidget* parent, const QString& folder, const QString& defaultName,
                       const QString& extension);

} // namespace lumeth
