#include "ui/duplicate_controls.h"

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "model/limits.h"
#include "ui/busy_flag.h"
#include "ui/control_array.h"
#include "ui/named_widgets.h"

namespace lumeth {

DuplicateControls::DuplicateControls(QDialog* dialog) {
    m_grid = new QGridLayout;
    const char* captions[2] = {"From List", "To List"};
    for (int i = 0; i < 2; ++i) {
        auto* label = ArrayMember(new QLabel(captions[i], dialog), "lblList", i);
        auto* list = ArrayMember(new QComboBox(dialog), "cmbListAlphas", i);
        // The same words in both dialogs.
        list->setToolTip("Current Display List to Edit");
        list->setMaxVisibleItems(20);
        // A name and a copy's "(n)" suffix.
        list->setMinimumContentsLength(int(kNameWidth) + 4);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        label->setBuddy(list);
        m_grid->addWidget(label, i, 0);
        m_grid->addWidget(list, i, 1);
        m_lists[static_cast<size_t>(i)] = list;
    }
    m_grid->setColumnStretch(1, 1);

    m_copy = MakeButton(dialog, "cmdCopy", "C&opy");
    auto* cancel = MakeButton(dialog, "cmdCancel", "&Cancel");
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    m_buttons = ButtonRow({m_copy, cancel});
}

void DuplicateControls::ShowNames(QStringList names, const QString& newEntry) {
    {
        const BusyFlag::Scope busy;
        for (QComboBox* list : m_lists) {
            const QSignalBlocker block(list);
            list->clear();
        }
        m_lists[0]->addItems(names);
        names << newEntry;
        m_lists[1]->addItems(names);
    }
    for (QComboBox* list : m_lists)
        list->setCurrentIndex(list->count() > 0 ? 0 : -1);
}

int DuplicateControls::from() const {
    return m_lists[0]->currentIndex();
}

int DuplicateControls::to() const {
    return m_lists[1]->currentIndex();
}

} // namespace lumeth
