#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <span>

#include "model/key_clipboard.h"
#include "model/panel_store.h"
#include "ui/error_reporter.h"
#include "ui/key_selection.h"

class QAction;
class QLabel;
class QMenu;
class QMenuBar;
class QKeySequence;
class QPushButton;
class QWidget;

namespace lumeth {

class ButtonEditor;

// The template editor's keys in bulk: picking several keys on the key grid
// (Ctrl-click, Shift-click, Ctrl+A), and copying, cutting, pasting, blanking
// and filling them from a display list. Copied keys stay in the process, so
// they paste into any template. Each change of the store is one step for
// undo. The keyboard shortcuts act only while the key grid has the focus:
// in the label and name boxes Ctrl+C, Ctrl+V and Delete edit the text.
class KeyCommands : public QObject {
    Q_OBJECT
public:
    // `step` records a step for undo (it runs before and after each change).
    KeyCommands(ButtonEditor& editor, PanelStore& store, ErrorReporter reporter,
                std::function<void()> step);

    // Watches the 16 keys of the page (all children of the key grid) for
    // clicks, and shows under the grid what the last command did.
    void AttachKeys(std::span<QPushButton* const> keys);
    // The "&Edit" menu with the commands.
    void AddMenu(QMenuBar* bar);
    // Marks the picked keys of the page shown; another template drops them.
    void ShowMarks();

    void Copy();
    void Cut();
    void Paste();
    void Delete();
    void SelectAll();
    void Fill();

    const KeySelection& selection() const { return m_selection; }
    // The keys copied or cut last, in this process.
    static const KeyClipboard& clipboard();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAction* AddCommand(QMenu* menu, const char* name, const QString& caption,
                        const QKeySequence& shortcut);
    int currentKey() const;
    std::vector<int> pickedKeys() const;
    // Records a step, runs `change` on the store, shows the template again
    // and records the change as a step of its own.
    void Change(const std::function<void()>& change);
    void Report(std::string_view location, const Status& status);
    void Say(const QString& text);

    ButtonEditor& m_editor;
    PanelStore& m_store;
    ErrorReporter m_reporter;
    std::function<void()> m_step;
    KeySelection m_selection;
    int m_markedTemplate = -1;
    std::span<QPushButton* const> m_keys;
    QWidget* m_grid = nullptr;
    QLabel* m_note = nullptr;
};

} // namespace lumeth
