// The template editor's commands on whole templates (delete, move) and its
// where-used of the current button's channels.
#include <QAction>
#include <QMenu>

#include <algorithm>
#include <stdexcept>

#include "model/button_catalogue.h"
#include "model/record_moves.h"
#include "ui/button_editor.h"
#include "ui/named_widgets.h"
#include "ui/where_used_dialog.h"

namespace lumeth {

namespace {

constexpr std::string_view kButtonError = "Button Error";

void Enable(QMenu* menu, const char* name, bool enabled) {
    if (auto* action = menu->findChild<QAction*>(name))
        action->setEnabled(enabled);
}

} // namespace

void ButtonEditor::createTemplateActions(QMenu* file) {
    file->addSeparator()->setObjectName("mnuSepTemplates");
    connect(MakeMenuAction(file, "mnuDeleteTemplate", "&Delete Template"), &QAction::triggered,
            this, &ButtonEditor::DeleteCurrentTemplate);
    connect(MakeMenuAction(file, "mnuMoveTemplateUp", "Move Template &Earlier"),
            &QAction::triggered, this, [this] { MoveCurrentTemplate(-1); });
    connect(MakeMenuAction(file, "mnuMoveTemplateDown", "Move Template &Later"),
            &QAction::triggered, this, [this] { MoveCurrentTemplate(1); });
    connect(MakeMenuAction(file, "mnuWhereUsed", "Where &Used..."), &QAction::triggered, this,
            [this] { ShowWhereUsed(0); });
    connect(MakeMenuAction(file, "mnuWhereUsed2", "Where Used (Second Channel)..."),
            &QAction::triggered, this, [this] { ShowWhereUsed(1); });
    connect(file, &QMenu::aboutToShow, this, [this, file] { RefreshTemplateActions(file); });
}

void ButtonEditor::RefreshTemplateActions(QMenu* file) {
    const int count = m_store.templates.templateCount;
    Enable(file, "mnuDeleteTemplate", count > 1);
    Enable(file, "mnuMoveTemplateUp", m_current > 0);
    Enable(file, "mnuMoveTemplateDown", m_current < count - 1);
    bool channel = false;
    bool channel2 = false;
    Guarded({}, {}, {}, [&] {
        const PanelButton& button = CurrentButtonRecord();
        const ButtonFunction& function = ButtonFunctionOf(button.type);
        channel = function.channelSubType && button.channel != kNoChannel;
        channel2 = function.channel2SubType && button.channel2 != kNoChannel;
    });
    Enable(file, "mnuWhereUsed", channel);
    Enable(file, "mnuWhereUsed2", channel2);
}

void ButtonEditor::DeleteCurrentTemplate() {
    Guarded(m_reporter, "Error Deleting Template", kButtonError, [this] {
        // Edits made before are a step of their own.
        if (m_stepHook)
            m_stepHook();
        const RecordEdit deleted = DeleteTemplate(m_store, m_current);
        if (!deleted)
            throw std::out_of_range(deleted.status.failure().detail);
        ShowMovedTemplates(std::min(m_current, m_store.templates.templateCount - 1));
    });
}

void ButtonEditor::MoveCurrentTemplate(int delta) {
    Guarded(m_reporter, "Error Moving Template", kButtonError, [this, delta] {
        const int to = m_current + delta;
        if (to < 0 || to >= m_store.templates.templateCount)
            return; // already first (last)
        if (m_stepHook)
            m_stepHook();
        const RecordEdit moved = MoveTemplate(m_store, m_current, to);
        if (!moved)
            throw std::out_of_range(moved.status.failure().detail);
        ShowMovedTemplates(to);
    });
}

void ButtonEditor::ShowMovedTemplates(int t) {
    m_current = t;
    // Showing the template grows it to 32 buttons: that belongs to this step.
    DisplayCurrentTemplate();
    if (m_stepHook)
        m_stepHook();
}

void ButtonEditor::ShowWhereUsed(int list) {
    Guarded(m_reporter, "Error Finding Uses", kButtonError, [this, list] {
        const PanelButton& button = CurrentButtonRecord();
        const ButtonFunction& function = ButtonFunctionOf(button.type);
        const auto subType = list == 0 ? function.channelSubType : function.channel2SubType;
        const int channel = list == 0 ? button.channel : button.channel2;
        if (subType && channel != kNoChannel)
            WhereUsedDialog::ShowChannel(this, m_store, *subType, channel);
    });
}

} // namespace lumeth
