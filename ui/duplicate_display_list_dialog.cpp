#include "ui/duplicate_display_list_dialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "model/list_records.h"
#include "ui/control_array.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

DuplicateDisplayListDialog::DuplicateDisplayListDialog(PanelStore& store, ErrorReporter reporter,
                                                       QWidget* parent)
    : QDialog(parent), m_store(store), m_reporter(std::move(reporter)), m_controls(this) {
    setObjectName("frmDuplicateDisplayList");
    setWindowTitle("Duplicate Display List");
    setModal(true);
    connect(m_controls.copyButton(), &QPushButton::clicked, this,
            &DuplicateDisplayListDialog::Copy);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_controls.listGrid());
    layout->addWidget(createSubTypeGroup());
    layout->addLayout(m_controls.buttonRow());
    // Natural size: it shrinks when the sub type frame is hidden for groups.
    KeepNaturalSize(this);
}

QGroupBox* DuplicateDisplayListDialog::createSubTypeGroup() {
    // Shows the kind of list being copied; it has no handler of its own and
    // is hidden while groups are copied.
    m_subTypeFrame = new QGroupBox("Display List Type", this);
    m_subTypeFrame->setObjectName("frSubType");
    m_subTypeFrame->setEnabled(false);
    auto* row = new QHBoxLayout(m_subTypeFrame);
    for (int i = 0; i < 4; ++i) {
        auto* button = ArrayMember(
            new QRadioButton(SubTypeName(kAllSubTypes[static_cast<size_t>(i)]), m_subTypeFrame),
            "optSubType", i);
        row->addWidget(button);
        m_subTypeButtons[static_cast<size_t>(i)] = button;
    }
    return m_subTypeFrame;
}
void DuplicateDisplayListDialog::setMode(int16_t mode) {
    m_mode = mode;
    m_copies = 0;
    const auto subType = SubTypeFromListCode(mode);
    m_subTypeFrame->setVisible(subType.has_value());
    for (size_t i = 0; i < m_subTypeButtons.size(); ++i) {
        // Unchecking needs the group's exclusivity off (no sub type for groups).
        m_subTypeButtons[i]->setAutoExclusive(false);
        m_subTypeButtons[i]->setChecked(subType && static_cast<size_t>(*subType) == i);
        m_subTypeButtons[i]->setAutoExclusive(true);
    }
}

void DuplicateDisplayListDialog::LoadDisplayLists() {
    Guarded(m_reporter, "Error Loading Display Alphas", "File Error", [this] {
        QStringList names;
        const int count = RecordCount(m_store, m_mode).value();
        for (int i = 0; i < count; ++i)
            names << ToQt(RecordName(m_store, m_mode, i).value());
        m_controls.ShowNames(std::move(names),
                             m_mode == kUserGroupListType ? "New Group" : "New List");
    });
}

void DuplicateDisplayListDialog::Copy() {
    const int from = m_controls.from();
    const int to = m_controls.to();
    if (from < 0 || to < 0)
        return;
    if (const Status status = DuplicateRecord(m_store, m_mode, from, to); status) {
        ++m_copies;
        emit copied();
    } else if (m_reporter) {
        m_reporter("Error Copying Display List", "List Error", status.failure());
    }
    LoadDisplayLists();
}

} // namespace lumeth
