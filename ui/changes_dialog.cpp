#include "ui/changes_dialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/store_diff.h"
#include "ui/qt_text.h"

namespace lumeth {

ChangesDialog::ChangesDialog(QWidget* parent, Report report) : QDialog(parent), m_report(report) {
    struct Names {
        const char* form;
        const char* title;
        const char* text;
    };
    static constexpr Names kNames[] = {
        {"frmChanges", "Review Changes", "txtChanges"},
        {"frmCheck", "Check Configuration", "txtCheck"},
        {"frmCompare", "Compare with Server Module", "txtCompare"},
    };
    const Names& names = kNames[static_cast<int>(report)];
    setObjectName(names.form);
    setWindowTitle(names.title);
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(names.text);
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setObjectName("cmdClose");
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(buttons);
    resize(760, 420);
}

void ChangesDialog::setLines(const std::vector<std::string>& lines) {
    if (lines.empty() && m_report != Report::Check) {
        m_text->setPlainText(kNoChangesLine);
        return;
    }
    QStringList text;
    text.reserve(static_cast<qsizetype>(lines.size()));
    for (const std::string& line : lines)
        text << ToQt(line);
    m_text->setPlainText(text.join('\n'));
}

} // namespace lumeth
