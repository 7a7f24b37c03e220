#include "ui/duplicate_display_list_dialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "model/list_records.h"
#include "ui/busy_flag.h"
#include "ui/control_array.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

DuplicateDisplayListDialog::DuplicateDisplayListDialog(PanelStore& store, ErrorReporter reporter,
                                                       QWidget* parent)
    : QDialog(parent), m_store(store), m_reporter(std::move(reporter)) {
    setObjectName("frmDuplicateDisplayList");
    setWindowTitle("Duplicate Display List");
    setModal(true);

    auto* grid = new QGridLayout;
    const char* captions[2] = {"From List", "To List"};
    for (int i = 0; i < 2; ++i) {
        auto* label = ArrayMember(new QLabel(captions[i], this), "lblList", i);
        auto* list = ArrayMember(new QComboBox(this), "cmbListAlphas", i);
        list->setMinimumContentsLength(20);
        list->setMaxVisibleItems(20);
        label->setBuddy(list);
        grid->addWidget(label, i, 0);
        grid->addWidget(list, i, 1);
        m_lists[static_cast<size_t>(i)] = list;
    }
    grid->setColumnStretch(1, 1);

    // Shows the kind of list being copied; it has no handler of its own and
    // is hidden while groups are copied.
    m_subTypeFrame = new QGroupBox("Display List Type", this);
    QGroupBox* frame = m_subTypeFrame;
    frame->setObjectName("frSubType");
    frame->setEnabled(false);
    auto* row = new QHBoxLayout(frame);
    for (int i = 0; i < 4; ++i) {
        auto* button =
            ArrayMember(new QRadioButton(SubTypeName(kAllSubTypes[static_cast<size_t>(i)]), frame),
                        "optSubType", i);
        row->addWidget(button);
        m_subTypeButtons[static_cast<size_t>(i)] = button;
    }

    auto* copy = new QPushButton("C&opy", this);
    copy->setObjectName("cmdCopy");
    copy->setAutoDefault(false);
    auto* cancel = new QPushButton("&Cancel", this);
    cancel->setObjectName("cmdCancel");
    cancel->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this, &DuplicateDisplayListDialog::Copy);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(copy);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(frame);
    layout->addLayout(buttons);
    // Natural size: it shrinks when the sub type frame is hidden for groups.
    KeepNaturalSize(this);
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
    try {
        {
            const BusyFlag::Scope busy;
            for (QComboBox* list : m_lists) {
                const QSignalBlocker block(list);
                list->clear();
            }
            const int count = RecordCount(m_store, m_mode).value();
            for (int i = 0; i < count; ++i) {
                const QString name = ToQt(RecordName(m_store, m_mode, i).value());
                m_lists[0]->addItem(name);
                m_lists[1]->addItem(name);
            }
            m_lists[1]->addItem(m_mode == kUserGroupListType ? "New Group" : "New List");
        }
        for (QComboBox* list : m_lists)
            list->setCurrentIndex(0);
    } catch (const std::exception& error) {
        if (m_reporter)
            m_reporter("Error Loading Display Alphas", "File Error", FailureFromException(error));
    }
}

void DuplicateDisplayListDialog::Copy() {
    const int from = m_lists[0]->currentIndex();
    const int to = m_lists[1]->currentIndex();
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
