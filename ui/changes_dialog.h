#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QPlainTextEdit;

namespace lumeth {

// frmChanges, "Review Changes": the difference between the configuration as
// last received from the server module and the one shown, one change per
// line in the read-only txtChanges.
class ChangesDialog : public QDialog {
    Q_OBJECT
public:
    explicit ChangesDialog(QWidget* parent = nullptr);

    // The report's lines (bytes); an empty report says there is no change.
    void setLines(const std::vector<std::string>& lines);

private:
    QPlainTextEdit* m_text = nullptr;
};

} // namespace lumeth
