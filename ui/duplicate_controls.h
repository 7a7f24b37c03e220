#pragma once

#include <QString>
#include <QStringList>

#include <array>

class QComboBox;
class QDialog;
class QGridLayout;
class QHBoxLayout;
class QPushButton;

namespace lumeth {

// What the two duplicate dialogs share: the "From List" and "To List" rows
// (lblList and cmbListAlphas, 0 for the source and 1 for the target) and the
// Copy and Cancel buttons; Cancel closes the dialog.
class DuplicateControls {
public:
    explicit DuplicateControls(QDialog* dialog);

    QGridLayout* listGrid() const { return m_grid; }
    QHBoxLayout* buttonRow() const { return m_buttons; }
    QPushButton* copyButton() const { return m_copy; }
    QComboBox* list(int i) const { return m_lists[static_cast<size_t>(i)]; }

    // Both lists show `names` in order, "To" ending in `newEntry` (its
    // position is the count of names), with the first entries selected.
    // The busy flag is set while the lists are refilled.
    void ShowNames(QStringList names, const QString& newEntry);

    int from() const;
    int to() const;

private:
    std::array<QComboBox*, 2> m_lists{};
    QGridLayout* m_grid = nullptr;
    QHBoxLayout* m_buttons = nullptr;
    QPushButton* m_copy = nullptr;
};

} // namespace lumeth
