#pragma once

#include <QDialog>

#include "model/panel_store.h"
#include "ui/duplicate_controls.h"
#include "ui/error_reporter.h"

namespace lumeth {

// frmDuplicateTemplate, "Duplicate Button Template": copies one button
// template onto another or onto a new one. It stays open for further copies.
class DuplicateTemplateDialog : public QDialog {
    Q_OBJECT
public:
    DuplicateTemplateDialog(PanelStore& store, ErrorReporter reporter, QWidget* parent = nullptr);

    // Both lists from the store's template names ("To" ends with "New
    // Template"), position 0 selected in each.
    void LoadTemplateLists();
    // cmdCopy: the selected "From" template onto the selected "To" one.
    void Copy();

signals:
    // After each copy made: each is a step of its own for undo.
    void copied();

private:
    PanelStore& m_store;
    ErrorReporter m_reporter;
    DuplicateControls m_controls;
};

} // namespace lumeth
