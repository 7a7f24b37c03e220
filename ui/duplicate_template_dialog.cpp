#include "ui/duplicate_template_dialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringListModel>

#include <stdexcept>

#include "model/button_templates.h"
#include "ui/control_array.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

DuplicateTemplateDialog::DuplicateTemplateDialog(PanelStore& store, ErrorReporter reporter,
                                                 QWidget* parent)
    : QDialog(parent), m_store(store), m_reporter(std::move(reporter)) {
    setObjectName("frmDuplicateTemplate");
    setWindowTitle("Duplicate Button Template");
    setModal(true);

    auto* grid = new QGridLayout;
    const char* captions[2] = {"From List", "To List"};
    for (int i = 0; i < 2; ++i) {
        auto* label = ArrayMember(new QLabel(captions[i], this), "lblList", i);
        m_models[i] = new QStringListModel(this);
        m_lists[i] = ArrayMember(new QComboBox(this), "cmbListAlphas", i);
        // The same words as the display list dialog's lists.
        m_lists[i]->setToolTip("Current Display List to Edit");
        m_lists[i]->setModel(m_models[i]);
        m_lists[i]->setMaxVisibleItems(20);
        m_lists[i]->setMinimumContentsLength(18);
        m_lists[i]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        label->setBuddy(m_lists[i]);
        grid->addWidget(label, i, 0);
        grid->addWidget(m_lists[i], i, 1);
    }
    grid->setColumnStretch(1, 1);

    auto* copy = new QPushButton("C&opy", this);
    copy->setObjectName("cmdCopy");
    copy->setDefault(true);
    auto* cancel = new QPushButton("&Cancel", this);
    cancel->setObjectName("cmdCancel");
    connect(copy, &QPushButton::clicked, this, &DuplicateTemplateDialog::Copy);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(copy);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addLayout(buttons);
    KeepNaturalSize(this);

    LoadTemplateLists();
}

void DuplicateTemplateDialog::LoadTemplateLists() {
    try {
        QStringList names;
        const int count = std::max<int>(m_store.templates.templateCount, 0);
        names.reserve(count + 1);
        for (int t = 0; t < count; ++t)
            names << ToQt(m_store.templates.templateNames.at(static_cast<size_t>(t)));
        // Each list is one model set in one step, so no selection handler
        // sees a half-filled list.
        m_models[0]->setStringList(names);
        names << QStringLiteral("New Template");
        m_models[1]->setStringList(names);
        for (QComboBox* list : m_lists)
            list->setCurrentIndex(list->count() > 0 ? 0 : -1);
    } catch (const std::exception& error) {
        if (m_reporter)
            m_reporter("Error Loading Template Alphas", "File Error",
                       Failure{ErrorCode::SubscriptOutOfRange, error.what()});
    }
}

void DuplicateTemplateDialog::Copy() {
    const Status copied =
        DuplicateButtonTemplate(m_store, m_lists[0]->currentIndex(), m_lists[1]->currentIndex());
    if (!copied && m_reporter)
        m_reporter("Error Copying Template", "Data Error", copied.failure());
    if (copied)
        emit this->copied();
    LoadTemplateLists();
}

} // namespace lumeth
