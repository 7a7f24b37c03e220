#pragma once

#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/store_location.h"
#include "ui/changes_dialog.h"

namespace lumeth {

// frmWhereUsed, "Where Used": what refers to a channel or a display list, one
// use per line (the lines of lumeth-cli where), read-only in txtWhereUsed.
// The same read-only report as Check Configuration, under its own names.
class WhereUsedDialog : public ChangesDialog {
    Q_OBJECT
public:
    explicit WhereUsedDialog(QWidget* parent = nullptr);

    // Show the uses of `subject` modally.
    static void Show(QWidget* parent, const PanelStore& store, const std::string& subject,
                     const std::vector<StoreLocation>& uses);
    // The uses of channel `channel` of `s`, and of display list `position`.
    static void ShowChannel(QWidget* parent, const PanelStore& store, SubType s, int channel);
    static void ShowList(QWidget* parent, const PanelStore& store, SubType s, int position);
};

} // namespace lumeth
