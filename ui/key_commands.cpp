#include "ui/key_commands.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>

#include "model/record_names.h"
#include "ui/button_editor.h"
#include "ui/fill_dialog.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

constexpr std::string_view kButtonError = "Button Error";

KeyClipboard& ProcessClipboard() {
    static KeyClipboard clipboard;
    return clipboard;
}

QString Keys(int count) {
    return count == 1 ? QStringLiteral("1 key") : QStringLiteral("%1 keys").arg(count);
}

// "; 2 did not fit after Btn 32" when a paste or fill ran out of keys.
QString CutOffNote(int cutOff) {
    if (cutOff == 0)
        return {};
    return QStringLiteral("; %1 did not fit after %2")
        .arg(cutOff)
        .arg(ToQt(ButtonKey(kTemplateButtons - 1)));
}

} // namespace

KeyCommands::KeyCommands(ButtonEditor& editor, PanelStore& store, ErrorReporter reporter,
                         std::function<void()> step)
    : QObject(&editor), m_editor(editor), m_store(store), m_reporter(std::move(reporter)),
      m_step(std::move(step)) {
    // A picked key that is not the current one: a dashed blue edge.
    m_editor.setStyleSheet(m_editor.styleSheet() +
                           "QPushButton[controlArray=\"cmdButton\"][keyPicked=\"true\"]:!checked {"
                           " background: #dbe8f6; border: 2px dashed #2f6fb3;"
                           " border-radius: 3px; }");
}

const KeyClipboard& KeyCommands::clipboard() {
    return ProcessClipboard();
}

void KeyCommands::AttachKeys(std::span<QPushButton* const> keys) {
    m_keys = keys;
    m_grid = keys.front()->parentWidget();
    for (size_t p = 0; p < keys.size(); ++p) {
        keys[p]->installEventFilter(this);
        connect(keys[p], &QPushButton::clicked, this, [this, p] {
            m_selection.Clicked(m_editor.pageOffset() + int(p), KeySelection::Click::Plain);
            ShowMarks();
        });
    }
    m_note = new QLabel(m_grid);
    m_note->setObjectName("lblKeysNote");
    m_note->setTextFormat(Qt::PlainText);
    if (auto* grid = qobject_cast<QGridLayout*>(m_grid->layout()))
        grid->addWidget(m_note, grid->rowCount(), 0, 1, grid->columnCount());
}

QAction* KeyCommands::AddCommand(QMenu* menu, const char* name, const QString& caption,
                                 const QKeySequence& shortcut) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    // The shortcut belongs to the key grid: elsewhere the keys are the text
    // boxes' own.
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_grid->addAction(action);
    return action;
}

void KeyCommands::AddMenu(QMenuBar* bar) {
    QMenu* edit = bar->addMenu("&Edit");
    edit->setObjectName("mnuEdit");
    edit->menuAction()->setObjectName("mnuEdit");
    connect(AddCommand(edit, "mnuCutKeys", "Cu&t Keys", QKeySequence::Cut), &QAction::triggered,
            this, &KeyCommands::Cut);
    connect(AddCommand(edit, "mnuCopyKeys", "&Copy Keys", QKeySequence::Copy), &QAction::triggered,
            this, &KeyCommands::Copy);
    connect(AddCommand(edit, "mnuPasteKeys", "&Paste Keys", QKeySequence::Paste),
            &QAction::triggered, this, &KeyCommands::Paste);
    connect(AddCommand(edit, "mnuDeleteKeys", "&Delete Keys", QKeySequence(Qt::Key_Delete)),
            &QAction::triggered, this, &KeyCommands::Delete);
    edit->addSeparator();
    connect(AddCommand(edit, "mnuSelectAllKeys", "Select &All Keys", QKeySequence::SelectAll),
            &QAction::triggered, this, &KeyCommands::SelectAll);
    edit->addSeparator();
    QAction* fill = edit->addAction("Fill from Display List...");
    fill->setObjectName("mnuFill");
    connect(fill, &QAction::triggered, this, &KeyCommands::Fill);
}

bool KeyCommands::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress)
        return QObject::eventFilter(watched, event);
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const Qt::KeyboardModifiers mods = mouse->modifiers();
    if (mouse->button() != Qt::LeftButton || !(mods & (Qt::ControlModifier | Qt::ShiftModifier)))
        return QObject::eventFilter(watched, event);
    // Ctrl- and Shift-clicks pick keys and leave the current key as it is.
    const auto found = std::find(m_keys.begin(), m_keys.end(), watched);
    if (found == m_keys.end())
        return QObject::eventFilter(watched, event);
    const int key = m_editor.pageOffset() + int(found - m_keys.begin());
    if (m_selection.empty())
        m_selection.Clicked(currentKey(), KeySelection::Click::Plain);
    m_selection.Clicked(key, mods & Qt::ShiftModifier ? KeySelection::Click::Range
                                                      : KeySelection::Click::Toggle);
    (*found)->setFocus(Qt::MouseFocusReason);
    ShowMarks();
    return true;
}

void KeyCommands::ShowMarks() {
    if (m_markedTemplate != m_editor.currentTemplate()) {
        m_markedTemplate = m_editor.currentTemplate();
        m_selection.Clear();
    }
    for (size_t p = 0; p < m_keys.size(); ++p) {
        QPushButton* key = m_keys[p];
        const bool picked = m_selection.contains(m_editor.pageOffset() + int(p));
        if (key->property("keyPicked").toBool() == picked)
            continue;
        key->setProperty("keyPicked", picked);
        key->style()->unpolish(key);
        key->style()->polish(key);
    }
}

int KeyCommands::currentKey() const {
    return m_editor.pageOffset() + m_editor.currentButton();
}

std::vector<int> KeyCommands::pickedKeys() const {
    return m_selection.keysOr(currentKey());
}

void KeyCommands::Change(const std::function<void()>& change) {
    m_step();
    change();
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { m_editor.DisplayCurrentTemplate(); });
    m_step();
}

void KeyCommands::Report(std::string_view location, const Status& status) {
    if (!status && m_reporter)
        m_reporter(location, kButtonError, status.failure());
}

void KeyCommands::Say(const QString& text) {
    if (m_note != nullptr)
        m_note->setText(text);
}

void KeyCommands::Copy() {
    ProcessClipboard() = CopyKeys(m_store, m_editor.currentTemplate(), pickedKeys());
    Say(Keys(int(ProcessClipboard().keys.size())) + " copied");
}

void KeyCommands::Cut() {
    const std::vector<int> keys = pickedKeys();
    ProcessClipboard() = CopyKeys(m_store, m_editor.currentTemplate(), keys);
    Change([&] {
        Report("Error Cutting Keys", DeleteKeys(m_store, m_editor.currentTemplate(), keys));
    });
    Say(Keys(int(ProcessClipboard().keys.size())) + " cut");
}

void KeyCommands::Paste() {
    if (ProcessClipboard().empty()) {
        Say("Nothing to paste: copy or cut keys first");
        return;
    }
    const int first = pickedKeys().front();
    KeysWritten pasted;
    Change([&] {
        pasted = PasteKeys(m_store, m_editor.currentTemplate(), first, ProcessClipboard());
        Report("Error Pasting Keys", pasted.status);
    });
    if (pasted.status)
        Say(QStringLiteral("%1 pasted from %2%3")
                .arg(Keys(pasted.written), ToQt(ButtonKey(first)), CutOffNote(pasted.cutOff)));
}

void KeyCommands::Delete() {
    const std::vector<int> keys = pickedKeys();
    Status deleted;
    Change([&] { deleted = DeleteKeys(m_store, m_editor.currentTemplate(), keys); });
    Report("Error Deleting Keys", deleted);
    if (deleted)
        Say(Keys(int(keys.size())) + " deleted");
}

void KeyCommands::SelectAll() {
    m_selection.SelectAll();
    ShowMarks();
}

void KeyCommands::Fill() {
    FillDialog dialog(m_store, pickedKeys().front(), &m_editor);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const KeyFill fill = dialog.fill();
    KeysWritten filled;
    Change([&] {
        filled = FillKeysFromList(m_store, m_editor.currentTemplate(), fill);
        Report("Error Filling Keys", filled.status);
    });
    if (filled.status)
        Say(QStringLiteral("%1 filled from %2%3")
                .arg(Keys(filled.written), ToQt(ListRecordName(m_store, fill.subType, fill.list)),
                     CutOffNote(filled.cutOff)));
}

} // namespace lumeth
