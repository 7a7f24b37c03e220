#pragma once

#include <QDialog>

#include <string>
#include <vector>

#include "model/panel_store.h"
#include "model/store_location.h"

class QPlainTextEdit;

namespace lumeth {

// frmWhereUsed, "Where Used": what refers to a channel or a display list, one
// use per line (the lines of lumeth-cli where), read-only in txtWhereUsed.
class WhereUsedDialog : public QDialog {
    Q_OBJECT
public:
    explicit WhereUsedDialog(QWidget* parent = nullptr);

    void setLines(const std::vector<std::string>& lines);

    // Show the uses of `subject` modally.
    static void Show(QWidget* parent, const PanelStore& store, const std::string& subject,
                     const std::vector<StoreLocation>& uses);
    // The uses of channel `channel` of `s`, and of display list `position`.
    static void ShowChannel(QWidget* parent, const PanelStore& store, SubType s, int channel);
    static void ShowList(QWidget* parent, const PanelStore& store, SubType s, int position);

private:
    QPlainTextEdit* m_text = nullptr;
};

} // namespace lumeth
