#pragma once

#include <QDialog>

#include <vector>

#include "model/parts.h"

class QCheckBox;
class QLabel;

namespace lumeth {

// How one upload part stands before a send of chosen parts.
struct ApplyPartRow {
    Part part = Part::InputLists;
    // Changes between what the server module holds and what would be sent.
    int changes = 0;
    // Changed here and on the server module since it was received.
    bool conflict = false;
    // Changed only on the server module since it was received: sending it
    // would undo that change.
    bool serverOnly = false;
};

// frmApplySelected, "Apply Selected": the six upload parts, one check box
// each (chkPart_0 .. chkPart_5 in Apply's order) with its number of changes;
// the changed parts are ticked, except those only the server module changed;
// parts changed on both sides are marked as conflicts.
class ApplySelectedDialog : public QDialog {
    Q_OBJECT
public:
    explicit ApplySelectedDialog(QWidget* parent = nullptr);

    // One row per upload part; parts without a row show no changes.
    void setRows(const std::vector<ApplyPartRow>& rows);
    // The parts ticked.
    PartSet chosen() const;

private:
    void RefreshSend();

    std::vector<QCheckBox*> m_boxes; // in kUploadParts order
    QLabel* m_summary = nullptr;
    QWidget* m_send = nullptr;
};

// The check box text of `row`: "User groups (2 changes)", with the conflict
// or server-only note.
QString ApplyPartText(const ApplyPartRow& row);

} // namespace lumeth
