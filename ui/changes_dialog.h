#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QPlainTextEdit;

namespace lumeth {

// A read-only report, one line per item. frmChanges, "Review Changes": the
// difference between the configuration as last received from the server
// module and the one shown, in txtChanges. frmCheck, "Check Configuration":
// the problems check finds, in txtCheck. frmCompare, "Compare with Server
// Module": a configuration compared with the one shown, in txtCompare.
class ChangesDialog : public QDialog {
    Q_OBJECT
public:
    enum class Report { Changes, Check, Compare };
    explicit ChangesDialog(QWidget* parent = nullptr, Report report = Report::Changes);

    // The report's lines (bytes); an empty report says there is no change.
    void setLines(const std::vector<std::string>& lines);

private:
    QPlainTextEdit* m_text = nullptr;
    Report m_report;
};

} // namespace lumeth
