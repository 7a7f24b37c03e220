#include "ui/duplicate_template_dialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/button_templates.h"
#include "model/limits.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

DuplicateTemplateDialog::DuplicateTemplateDialog(PanelStore& store, ErrorReporter reporter,
                                                 QWidget* parent)
    : QDialog(parent), m_store(store), m_reporter(std::move(reporter)), m_controls(this) {
    setObjectName("frmDuplicateTemplate");
    setWindowTitle("Duplicate Button Template");
    setModal(true);
    m_controls.copyButton()->setDefault(true);
    connect(m_controls.copyButton(), &QPushButton::clicked, this, &DuplicateTemplateDialog::Copy);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_controls.listGrid());
    layout->addSpacing(8);
    layout->addLayout(m_controls.buttonRow());
    KeepNaturalSize(this);

    LoadTemplateLists();
}

void DuplicateTemplateDialog::LoadTemplateLists() {
    Guarded(m_reporter, "Error Loading Template Alphas", "File Error", [this] {
        QStringList names;
        const int count = ValidCount(m_store.templates.templateCount);
        names.reserve(count + 1);
        for (int t = 0; t < count; ++t)
            names << ToQt(m_store.templates.templateNames.at(static_cast<size_t>(t)));
        m_controls.ShowNames(std::move(names), QStringLiteral("New Template"));
    });
}

void DuplicateTemplateDialog::Copy() {
    const Status copied = DuplicateButtonTemplate(m_store, m_controls.from(), m_controls.to());
    if (!copied && m_reporter)
        m_reporter("Error Copying Template", "Data Error", copied.failure());
    if (copied)
        emit this->copied();
    LoadTemplateLists();
}

} // namespace lumeth
