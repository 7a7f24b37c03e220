#pragma once

#include <QDialog>

#include <array>
#include <cstdint>

#include "model/panel_store.h"
#include "ui/duplicate_controls.h"
#include "ui/error_reporter.h"

class QGroupBox;
class QRadioButton;

namespace lumeth {

// frmDuplicateDisplayList, "Duplicate Display List": copies one display list
// of a sub type (mode 11, 21, 31, 41), or one user group (mode 83), onto
// another or onto a new one at the end. It changes only the store and stays
// open after a copy.
class DuplicateDisplayListDialog : public QDialog {
    Q_OBJECT
public:
    DuplicateDisplayListDialog(PanelStore& store, ErrorReporter reporter,
                               QWidget* parent = nullptr);

    // The copy mode, set by the opener before LoadDisplayLists.
    void setMode(int16_t mode);
    int16_t mode() const { return m_mode; }

    // Both lists filled with the mode's names ("To" ends in "New List" or
    // "New Group"), first entries selected.
    void LoadDisplayLists();
    // cmdCopy: the selected "From" record onto the selected "To" record.
    void Copy();
    // Copies made since the mode was last set.
    int copies() const { return m_copies; }

signals:
    // After each copy made: each is a step of its own for undo.
    void copied();

private:
    QGroupBox* createSubTypeGroup();

    PanelStore& m_store;
    ErrorReporter m_reporter;
    int16_t m_mode = 11;
    int m_copies = 0;
    DuplicateControls m_controls;
    QGroupBox* m_subTypeFrame = nullptr;
    std::array<QRadioButton*, 4> m_subTypeButtons{};
};

} // namespace lumeth
