#include "ui/file_dialog.h"

#include <QDir>
#include <QFileDialog>

namespace lumeth {

std::deque<QString>& FileDialog::queue() {
    static std::deque<QString> names;
    return names;
}

std::optional<FileDialog::Request>& FileDialog::last() {
    static std::optional<Request> request;
    return request;
}

QString FileDialog::GetFileName(QWidget* parent, const Request& request) {
    last() = request;
    if (!queue().empty()) {
        QString name = queue().front();
        queue().pop_front();
        return name;
    }
    QFileDialog dialog(parent, request.title, request.folder);
    dialog.setObjectName("dlgCommonDialog");
    dialog.setOption(QFileDialog::DontUseNativeDialog, true);
    dialog.setOption(QFileDialog::ReadOnly, false);
    // One dialog serves both directions: the operator may pick an existing file
    // or type a new name, so no overwrite prompt and no must-exist rule.
    dialog.setOption(QFileDialog::DontConfirmOverwrite, true);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setLabelText(QFileDialog::Accept, QObject::tr("OK"));
    dialog.setNameFilters(request.nameFilters);
    dialog.selectFile(request.presetName);
    if (request.chooseFolder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly, true);
    }
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QStringList files = dialog.selectedFiles();
    return files.isEmpty() ? QString() : files.front();
}

void FileDialog::setNextFileName(const QString& path) {
    queue().push_back(path);
}
void FileDialog::clearQueuedNames() {
    queue().clear();
}
std::optional<FileDialog::Request> FileDialog::lastRequest() {
    return last();
}

QString FileFilterText(const QString& extension) {
    const QString all = QStringLiteral("All Files (*.*)|*.*");
    if (extension.isEmpty())
        return all;
    return QStringLiteral("(*.%1)|*.%1|").arg(extension) + all;
}

QStringList FileNameFilters(const QString& extension) {
    // Pairs of description and pattern; Qt wants "description (pattern)" and
    // the descriptions already end in the pattern.
    const QStringList parts = FileFilterText(extension).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << parts[i];
    return filters;
}

QString ChooseFileName(QWidget* parent, const QString& folder, const QString& defaultName,
                       const QString& extension) {
    FileDialog::Request request;
    request.title = QStringLiteral("Specify File Name");
    request.folder = folder;
    request.presetName = defaultName;
    request.nameFilters = FileNameFilters(extension);
    return FileDialog::GetFileName(parent, request);
}

} // namespace lumeth
