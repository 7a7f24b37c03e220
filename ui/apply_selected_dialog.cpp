#include "ui/apply_selected_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <string>

namespace lumeth {

namespace {

// Conflicts stand out in red: sending one overwrites someone else's change.
constexpr const char* kConflictStyle = "color: #b00020;";

std::vector<Part> UploadPartsInOrder() {
    std::vector<Part> parts;
    ForEachPart(kUploadParts, [&](Part p) { parts.push_back(p); });
    return parts;
}

} // namespace

QString ApplyPartText(const ApplyPartRow& row) {
    QString text =
        QString::fromStdString(std::string(PartName(row.part))) + " (" +
        (row.changes == 1 ? QString("1 change") : QString("%1 changes").arg(row.changes)) + ")";
    if (row.conflict)
        text += " - conflict: also changed on the server module since it was received";
    else if (row.serverOnly)
        text += " - changed only on the server module; sending it would undo that change";
    return text;
}

ApplySelectedDialog::ApplySelectedDialog(QWidget* parent) : QDialog(parent) {
    setObjectName("frmApplySelected");
    setWindowTitle("Apply Selected");
    auto* layout = new QVBoxLayout(this);
    m_summary = new QLabel("Send the ticked parts to the server module:", this);
    m_summary->setObjectName("lblSummary");
    layout->addWidget(m_summary);
    int index = 0;
    for (Part part : UploadPartsInOrder()) {
        auto* box = new QCheckBox(ApplyPartText({part}), this);
        box->setObjectName(QString("chkPart_%1").arg(index++));
        connect(box, &QCheckBox::toggled, this, &ApplySelectedDialog::RefreshSend);
        layout->addWidget(box);
        m_boxes.push_back(box);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* send = buttons->button(QDialogButtonBox::Ok);
    send->setText("Send");
    send->setObjectName("cmdOk");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
    m_send = send;
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    RefreshSend();
}

void ApplySelectedDialog::setRows(const std::vector<ApplyPartRow>& rows) {
    const std::vector<Part> order = UploadPartsInOrder();
    for (size_t i = 0; i < order.size(); ++i) {
        ApplyPartRow shown{order[i]};
        for (const ApplyPartRow& row : rows)
            if (row.part == order[i])
                shown = row;
        QCheckBox* box = m_boxes[i];
        box->setText(ApplyPartText(shown));
        box->setStyleSheet(shown.conflict ? kConflictStyle : "");
        box->setChecked(shown.changes > 0 && !shown.serverOnly);
    }
    RefreshSend();
}

PartSet ApplySelectedDialog::chosen() const {
    PartSet parts;
    const std::vector<Part> order = UploadPartsInOrder();
    for (size_t i = 0; i < order.size(); ++i)
        if (m_boxes[i]->isChecked())
            parts.add(order[i]);
    return parts;
}

void ApplySelectedDialog::RefreshSend() {
    m_send->setEnabled(!chosen().empty());
}

} // namespace lumeth
