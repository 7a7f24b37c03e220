#pragma once

#include <QDialog>

#include "model/key_clipboard.h"
#include "model/panel_store.h"

class QComboBox;
class QPushButton;

namespace lumeth {

// frmFill, "Fill from Display List": picks a display list, a function that
// takes that list's channels, and the key the fill starts at. The dialog
// only asks; the caller writes the keys.
class FillDialog : public QDialog {
    Q_OBJECT
public:
    // Starts on key `firstKey` (0..31) and on the first list of the store.
    FillDialog(const PanelStore& store, int firstKey, QWidget* parent = nullptr);

    // What the operator picked.
    KeyFill fill() const;

private:
    void LoadFunctions();

    const PanelStore& m_store;
    QComboBox* m_list = nullptr;
    QComboBox* m_function = nullptr;
    QComboBox* m_firstKey = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace lumeth
