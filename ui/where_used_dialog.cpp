#include "ui/where_used_dialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/record_names.h"
#include "model/where_used.h"
#include "ui/qt_text.h"

namespace lumeth {

WhereUsedDialog::WhereUsedDialog(QWidget* parent) : QDialog(parent) {
    setObjectName("frmWhereUsed");
    setWindowTitle("Where Used");
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName("txtWhereUsed");
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setObjectName("cmdClose");
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(buttons);
    resize(560, 320);
}

void WhereUsedDialog::setLines(const std::vector<std::string>& lines) {
    QStringList text;
    for (const std::string& line : lines)
        text << ToQt(line);
    m_text->setPlainText(text.join('\n'));
}

void WhereUsedDialog::Show(QWidget* parent, const PanelStore& store, const std::string& subject,
                           const std::vector<StoreLocation>& uses) {
    WhereUsedDialog dialog(parent);
    dialog.setLines(WhereUsedLines(store, subject, uses));
    dialog.exec();
}

void WhereUsedDialog::ShowChannel(QWidget* parent, const PanelStore& store, SubType s,
                                  int channel) {
    Show(parent, store, ChannelRecordName(store, s, channel), ChannelUses(store, s, channel));
}

void WhereUsedDialog::ShowList(QWidget* parent, const PanelStore& store, SubType s,
                               int position) {
    Show(parent, store, ListRecordName(store, s, position), ListUses(store, s, position));
}

} // namespace lumeth
