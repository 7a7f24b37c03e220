#include "ui/where_used_dialog.h"

#include <QPlainTextEdit>

#include "model/record_names.h"
#include "model/where_used.h"

namespace lumeth {

WhereUsedDialog::WhereUsedDialog(QWidget* parent) : ChangesDialog(parent, Report::Check) {
    setObjectName("frmWhereUsed");
    setWindowTitle("Where Used");
    if (auto* text = findChild<QPlainTextEdit*>("txtCheck"))
        text->setObjectName("txtWhereUsed");
    resize(560, 320);
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

void WhereUsedDialog::ShowList(QWidget* parent, const PanelStore& store, SubType s, int position) {
    Show(parent, store, ListRecordName(store, s, position), ListUses(store, s, position));
}

} // namespace lumeth
