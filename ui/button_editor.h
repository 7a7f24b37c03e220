#pragma once

#include <QDialog>

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "model/limits.h"
#include "model/panel_store.h"
#include "model/parts.h"
#include "ui/busy_flag.h"
#include "ui/error_reporter.h"

class QComboBox;
class QGridLayout;
class QGroupBox;
class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QVBoxLayout;

namespace lumeth {

class ChannelListModels;
class KeyCommands;

// frmButtons, "Program Buttons": edits the button templates of the store in
// place, 16 of a template's 32 buttons at a time. Each button gets a function,
// a channel, a second (tally or listen) channel where the function has one,
// and a label. Sending and saving the templates happen elsewhere.
class ButtonEditor : public QDialog {
    Q_OBJECT
public:
    // `models` are the shared channel lists; `folder` is the program's folder,
    // where the label sheet export starts.
    ButtonEditor(PanelStore& store, ChannelListModels& models, ErrorReporter reporter,
                 std::string folder, QWidget* parent = nullptr);

    // Form load: the type list, then the current template. Runs each time the
    // window is shown.
    void Open();
    void LoadTypeCombo();
    void DisplayCurrentTemplate();
    void DisplayCurrentButton();

    // The handlers, as the controls call them.
    void ButtonClicked(int position);
    void TypeChanged(int index);
    void ChannelChanged(int list, int position);
    void CaptionOptionChosen(int option);
    void Navigate(int index);
    void ChangePage();
    void AddTemplate();
    void ClearTemplate();
    void CopyTemplate();
    void ExportLabelSheet();
    // File menu: delete the current template, or move it one place earlier
    // (-1) or later (1); each is one step.
    void DeleteCurrentTemplate();
    void MoveCurrentTemplate(int delta);
    // The lists and template keys using the channel of channel list `list`
    // (0: the channel, 1: the second channel) of the current button.
    void ShowWhereUsed(int list);
    // Called before and after a duplicate changes the store, so the owner can
    // count each duplicate as a step of its own.
    void setStepHook(std::function<void()> hook) { m_stepHook = std::move(hook); }
    // A download replaced `part`: while the editor is open on the templates,
    // it shows them as they now are in the store.
    void PartReplaced(Part part);

    // Keys on a page: a template's buttons are shown half at a time.
    static constexpr int kPageKeys = kTemplateButtons / 2;

    int currentTemplate() const { return m_current; }
    int currentButton() const { return m_button; }
    int pageOffset() const { return m_offset; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The window's parts, built once by the constructor.
    void createMenu();
    void createTemplateActions(QMenu* file);
    void RefreshTemplateActions(QMenu* file);
    // After a delete or move: template `t` is shown from now on.
    void ShowMovedTemplates(int t);
    void createLayout();
    QGroupBox* createKeysGroup();
    void createKey(QGroupBox* keys, QGridLayout* grid, int position);
    QGroupBox* createButtonGroup();
    QComboBox* createChannelList(QWidget* parent, int list);
    QGroupBox* createCaptionGroup(QWidget* parent);
    QGroupBox* createNavigationGroup();
    QHBoxLayout* createNavigationRow(QWidget* parent);
    QLineEdit* createTemplateNumber(QWidget* parent);
    QVBoxLayout* createCommands();

    void LoadChannelCombos(int code);
    void SelectChannel(int list, int channel);
    // Marks key `position` when `button` shows its custom label on the panel,
    // and shows that label, as sent, under the key.
    void ShowCustomLabel(int position, const PanelButton& button);
    PanelButton& CurrentButtonRecord();
    QString InputAlpha(int channel) const;
    bool CaptionKey(QKeyEvent* key);
    bool TemplateNameKey(QKeyEvent* key);
    bool TemplateNumberKey(QKeyEvent* key);
    void StoreCaption();
    void SetCaptionEditable(bool editable);
    void StoreTemplateName();

    PanelStore& m_store;
    std::function<void()> m_stepHook;
    ChannelListModels& m_models;
    ErrorReporter m_reporter;
    std::string m_folder;

    int m_current = 0; // template position
    int m_button = 0;  // visible position 0..15
    int m_offset = 0;  // 0: buttons 1-16, 16: buttons 17-32
    // The busy flag, held while a download rebuilds the shared channel lists.
    std::optional<BusyFlag::Scope> m_rebuilding;

    std::array<QPushButton*, kPageKeys> m_buttons{};
    // The keys' numbers, then the heading of the selected button.
    std::array<QLabel*, kPageKeys + 1> m_buttonLabels{};
    std::array<QLabel*, kPageKeys> m_typeLabels{};
    std::array<QLabel*, kPageKeys> m_customLabels{};
    std::array<QComboBox*, 2> m_channels{};
    std::array<QRadioButton*, 2> m_captionOptions{};
    std::array<QPushButton*, 6> m_nav{};
    QComboBox* m_type = nullptr;
    QLineEdit* m_caption = nullptr;
    QLineEdit* m_templateNumber = nullptr;
    QLineEdit* m_templateName = nullptr;
    QPushButton* m_more = nullptr;
    // Keys in bulk: picking, the clipboard and the fill (the Edit menu).
    KeyCommands* m_keyCommands = nullptr;
};

} // namespace lumeth
