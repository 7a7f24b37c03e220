#include "ui/button_editor.h"

#include <QAbstractItemView>
#include <QAbstractProxyModel>
#include <QButtonGroup>
#include <QComboBox>
#include <QCompleter>
#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QStringListModel>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "files/settings.h"
#include "model/button_catalogue.h"
#include "model/button_templates.h"
#include "model/limits.h"
#include "ui/busy_flag.h"
#include "ui/channel_list_models.h"
#include "ui/control_array.h"
#include "ui/duplicate_template_dialog.h"
#include "ui/file_dialog.h"
#include "ui/key_commands.h"
#include "ui/label_sheet_pdf.h"
#include "ui/named_widgets.h"
#include "ui/qt_text.h"
#include "ui/typed_key.h"

namespace lumeth {

namespace {

constexpr int kNumberDigits = 3;
// Grid rows per row of keys: number, strip, key, strip, function, custom
// label, gap.
constexpr int kKeyRows = 7;
constexpr std::string_view kButtonError = "Button Error";

// Puts `text` on a key face, in a smaller font when the dialog's font would
// cut it: a system alpha can be wider than the key, and a panel operator
// reads the whole name or nothing. Channel names come blank-padded to their
// table's width; the padding is left off, or it would push the name off the
// key's centre and make it look wider than it is.
void SetFaceText(QPushButton* key, std::string_view text) {
    const QString shown = ToQt(TrimTrailingBlanks(text));
    key->setText(shown);
    QFont font = key->parentWidget()->font();
    const int room = (key->isVisible() ? key->width() : key->minimumWidth()) - 10;
    constexpr qreal kSmallestPoints = 6.5;
    // Measured in bold: the selected key is drawn bold.
    QFont measured = font;
    measured.setBold(true);
    while (measured.pointSizeF() > kSmallestPoints &&
           QFontMetricsF(measured).horizontalAdvance(shown) > room)
        measured.setPointSizeF(measured.pointSizeF() - 0.5);
    font.setPointSizeF(measured.pointSizeF());
    key->setFont(font);
}

// The face of the selected key: the start of its channel's entry, as much as
// a label holds, or "None" without a channel.
std::string FaceOf(int channel, const QString& entry) {
    return channel == kNoChannel ? std::string("None") : FromQt(entry.left(int(kLabelWidth)));
}

QString TwoDigits(int n) {
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

// Enter on text typed into a channel list takes the first entry holding it,
// the one on top of the search list, as when that entry is chosen from the list.
void ChooseFirstMatch(QComboBox* combo) {
    const QString typed = combo->currentText();
    if (typed.isEmpty() || typed == combo->itemText(combo->currentIndex()))
        return;
    QCompleter* completer = combo->completer();
    completer->setCompletionPrefix(typed);
    auto* matches = qobject_cast<QAbstractProxyModel*>(completer->completionModel());
    if (matches == nullptr || !completer->setCurrentRow(0))
        return;
    const QModelIndex entry = matches->mapToSource(completer->currentIndex());
    if (entry.isValid())
        combo->setCurrentIndex(entry.row());
}

// The length rule of the label and name boxes: once full, only Backspace or
// typing over a selection gets through.
bool RefusedWhenFull(const QLineEdit* box, const QKeyEvent* key, size_t limit) {
    return key->key() != Qt::Key_Backspace && TypedCharacter(key) &&
           static_cast<size_t>(box->text().size()) >= limit && !box->hasSelectedText();
}

} // namespace

ButtonEditor::ButtonEditor(PanelStore& store, ChannelListModels& models, ErrorReporter reporter,
                           std::string folder, QWidget* parent)
    : QDialog(parent), m_store(store), m_models(models), m_reporter(std::move(reporter)),
      m_folder(std::move(folder)) {
    setObjectName("frmButtons");
    setWindowTitle("Program Buttons");
    setModal(true);
    // The selected key stands out from the other fifteen.
    // The selected key stands out from the other fifteen; a key that shows
    // its custom label on the panel has a blue edge, and the label itself sits
    // under the key on a blue chip.
    setStyleSheet("QPushButton[controlArray=\"cmdButton\"][customLabel=\"true\"] {"
                  " border: 2px solid #2f6fb3; border-radius: 3px; }"
                  "QPushButton[controlArray=\"cmdButton\"]:checked {"
                  " background: #ffe3a3; border: 2px solid #d98c1f; border-radius: 3px;"
                  " font-weight: bold; }"
                  "QLabel[controlArray=\"lblCustom\"] {"
                  " background: #dbe8f6; color: #123d6b; border: 1px solid #2f6fb3;"
                  " border-radius: 2px; padding: 0px 2px; }");
    createLayout();
    m_keyCommands = new KeyCommands(*this, m_store, m_reporter, [this] {
        if (m_stepHook)
            m_stepHook();
    });
    m_keyCommands->AttachKeys(m_buttons);
    createMenu();

    // A download of channel names rebuilds the shared lists under the open
    // window: keep the handlers quiet meanwhile and show the button again.
    connect(&m_models, &ChannelListModels::aboutToRebuild, this,
            [this] { m_rebuilding.emplace(); });
    connect(&m_models, &ChannelListModels::rebuilt, this, [this] {
        m_rebuilding.reset();
        if (isVisible())
            Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
                    [this] { DisplayCurrentButton(); });
    });
}

void ButtonEditor::createMenu() {
    auto* bar = new QMenuBar(this);
    bar->setObjectName("mnuBar");
    QMenu* file = bar->addMenu("&File");
    file->setObjectName("mnuFile");
    file->menuAction()->setObjectName("mnuFile");
    const auto action = [file](const char* name, const QString& caption) {
        QAction* a = file->addAction(caption);
        a->setObjectName(name);
        return a;
    };
    connect(action("mnuCopy", "&Copy"), &QAction::triggered, this, &ButtonEditor::CopyTemplate);
    // "Save Templates" has no action of its own: saving is the main window's
    // Save All.
    action("mnuSave", "&Save Templates");
    connect(action("mnuSheet", "Export &Label Sheet..."), &QAction::triggered, this,
            &ButtonEditor::ExportLabelSheet);
    createTemplateActions(file);
    file->addSeparator()->setObjectName("mnuSep1");
    connect(action("mnuExit", "E&xit"), &QAction::triggered, this, &QDialog::accept);
    m_keyCommands->AddMenu(bar);
    layout()->setMenuBar(bar);
}

void ButtonEditor::createLayout() {
    // Built in tab order: the keys, the page switch, the selected button,
    // the templates, the commands.
    QGroupBox* keys = createKeysGroup();
    m_more =
        MakeButton(this, "cmdMore", "Buttons 17-32", "Show the other 16 buttons of the template");
    connect(m_more, &QPushButton::clicked, this, &ButtonEditor::ChangePage);
    QGroupBox* edit = createButtonGroup();
    QGroupBox* navigation = createNavigationGroup();
    QVBoxLayout* commands = createCommands();

    auto* pageRow = new QHBoxLayout;
    pageRow->addWidget(m_more);
    pageRow->addStretch(1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(navigation, 1);
    bottom->addLayout(commands);

    auto* grid = new QGridLayout(this);
    grid->addWidget(keys, 0, 0);
    grid->addLayout(pageRow, 1, 0);
    grid->addWidget(edit, 0, 1, 2, 1);
    grid->addLayout(bottom, 2, 0, 1, 2);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 2);
}

QGroupBox* ButtonEditor::createKeysGroup() {
    // The 16 keys of a page, two rows of eight as on the panel.
    auto* keys = new QGroupBox(this);
    keys->setObjectName("frButtons");
    auto* grid = new QGridLayout(keys);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);
    auto* group = new QButtonGroup(this);
    group->setExclusive(true);
    for (int p = 0; p < kPageKeys; ++p) {
        createKey(keys, grid, p);
        group->addButton(m_buttons[p], p);
    }
    grid->setRowMinimumHeight(kKeyRows - 1, 14);
    return keys;
}

void ButtonEditor::createKey(QGroupBox* keys, QGridLayout* grid, int p) {
    // Number above, the key between its two colour strips, the function's
    // short label below, and under that the custom label the panel shows,
    // when the button uses one.
    const int row = (p / 8) * kKeyRows;
    const int column = p % 8;
    m_buttonLabels[p] =
        ArrayMember(new QLabel(QStringLiteral("Btn %1").arg(p + 1), keys), "lblButton", p);
    m_buttonLabels[p]->setAlignment(Qt::AlignCenter);
    m_buttons[p] = ArrayMember(
        MakeButton(keys, nullptr, "None", "Click to Edit Current Button for Current Template"),
        "cmdButton", p);
    m_buttons[p]->setCheckable(true);
    m_buttons[p]->setMinimumSize(70, 44);
    m_typeLabels[p] = ArrayMember(new QLabel("SrcSel", keys), "lblType", p);
    m_typeLabels[p]->setAlignment(Qt::AlignCenter);
    grid->addWidget(m_buttonLabels[p], row, column);
    for (int k = 0; k < 2; ++k) {
        auto* strip = ArrayMember(new QLabel(keys), "lblColor", 2 * p + k);
        strip->setFixedHeight(4);
        strip->setAutoFillBackground(true);
        QPalette palette = strip->palette();
        palette.setColor(QPalette::Window, QColor(0xd9, 0x8c, 0x1f));
        strip->setPalette(palette);
        grid->addWidget(strip, row + 1 + 2 * k, column);
    }
    grid->addWidget(m_buttons[p], row + 2, column);
    grid->addWidget(m_typeLabels[p], row + 4, column);
    m_customLabels[p] = ArrayMember(new QLabel(keys), "lblCustom", p);
    m_customLabels[p]->setAlignment(Qt::AlignCenter);
    m_customLabels[p]->setTextFormat(Qt::PlainText);
    // Hidden, the chip keeps its row: the grid does not jump as labels come and go.
    QSizePolicy keepRoom = m_customLabels[p]->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true);
    m_customLabels[p]->setSizePolicy(keepRoom);
    m_customLabels[p]->hide();
    grid->addWidget(m_customLabels[p], row + 5, column, Qt::AlignHCenter);
    connect(m_buttons[p], &QPushButton::clicked, this, [this, p] { ButtonClicked(p); });
}

QGroupBox* ButtonEditor::createButtonGroup() {
    // The selected button's function, channels and label.
    auto* edit = new QGroupBox(this);
    edit->setObjectName("frButton");
    m_buttonLabels[kPageKeys] = ArrayMember(new QLabel("Button 1", edit), "lblButton", kPageKeys);
    QFont heading = m_buttonLabels[kPageKeys]->font();
    heading.setBold(true);
    heading.setPointSizeF(heading.pointSizeF() * 1.2);
    m_buttonLabels[kPageKeys]->setFont(heading);
    m_type = new QComboBox(edit);
    m_type->setObjectName("cmbType");
    m_type->setToolTip("The button's function");
    // As wide as the channel lists, not as the longest function name: the
    // window keeps fitting a 1024-pixel screen.
    m_type->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_type->setMinimumContentsLength(18);
    connect(m_type, &QComboBox::currentIndexChanged, this, &ButtonEditor::TypeChanged);
    for (int i = 0; i < 2; ++i)
        m_channels[i] = createChannelList(edit, i);

    auto* grid = new QGridLayout(edit);
    grid->addWidget(m_buttonLabels[kPageKeys], 0, 0, 1, 2);
    grid->addWidget(new QLabel("Function", edit), 1, 0);
    grid->addWidget(m_type, 1, 1);
    grid->addWidget(new QLabel("Channel", edit), 2, 0);
    grid->addWidget(m_channels[0], 2, 1);
    grid->addWidget(new QLabel("Tally /\nListen", edit), 3, 0);
    grid->addWidget(m_channels[1], 3, 1);
    grid->addWidget(createCaptionGroup(edit), 4, 0, 1, 2);
    grid->setRowStretch(5, 1);
    grid->setColumnStretch(1, 1);
    return edit;
}

QComboBox* ButtonEditor::createChannelList(QWidget* parent, int list) {
    static const char* const kTips[2] = {
        "The button's channel. Type part of a name to find it.",
        "The tally or listen channel, for functions that have one. Type part of a name to "
        "find it."};
    auto* combo = ArrayMember(new QComboBox(parent), "cmbChannel", list);
    combo->setToolTip(kTips[list]);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(18);
    combo->setMaxVisibleItems(20);
    if (auto* view = qobject_cast<QListView*>(combo->view()))
        view->setUniformItemSizes(true);
    // Find a channel by any part of its entry, ignoring case.
    auto* completer = new QCompleter(combo);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    completer->setMaxVisibleItems(14);
    combo->setCompleter(completer);
    combo->setModel(m_models.model(std::nullopt));
    connect(combo, &QComboBox::currentIndexChanged, this,
            [this, list](int position) { ChannelChanged(list, position); });
    connect(combo->lineEdit(), &QLineEdit::returnPressed, combo,
            [combo] { ChooseFirstMatch(combo); });
    // Text that names no entry leaves the button as it is: show its entry again.
    connect(combo->lineEdit(), &QLineEdit::editingFinished, combo, [combo] {
        if (combo->currentText() != combo->itemText(combo->currentIndex()))
            combo->setEditText(combo->itemText(combo->currentIndex()));
    });
    return combo;
}

QGroupBox* ButtonEditor::createCaptionGroup(QWidget* parent) {
    auto* frCaption = new QGroupBox("Button Label", parent);
    frCaption->setObjectName("frCaption");
    m_captionOptions[1] =
        ArrayMember(new QRadioButton("Use Custom Button Label", frCaption), "OptCaption", 1);
    m_captionOptions[0] =
        ArrayMember(new QRadioButton("Use System Alpha", frCaption), "OptCaption", 0);
    m_captionOptions[0]->setChecked(true);
    for (int k = 0; k < 2; ++k) {
        connect(m_captionOptions[k], &QRadioButton::toggled, this, [this, k](bool checked) {
            if (checked)
                CaptionOptionChosen(k);
        });
    }
    m_caption = new QLineEdit(frCaption);
    m_caption->setObjectName("txtCaption");
    m_caption->setToolTip("The button's own label, at most 8 characters. Enter stores it.");
    SetCaptionEditable(false);
    m_caption->installEventFilter(this);
    auto* layout = new QVBoxLayout(frCaption);
    layout->addWidget(m_captionOptions[1]);
    layout->addWidget(m_captionOptions[0]);
    layout->addWidget(m_caption);
    return frCaption;
}

QGroupBox* ButtonEditor::createNavigationGroup() {
    // Stepping through the templates, and the template's number and name.
    auto* frNavigation = new QGroupBox("Templates", this);
    frNavigation->setObjectName("frNavigation");
    QHBoxLayout* navRow = createNavigationRow(frNavigation);
    m_templateName = new QLineEdit("Template 1", frNavigation);
    m_templateName->setObjectName("txtTemplateName");
    m_templateName->setToolTip("The template's name, at most 16 characters. Enter stores it.");
    m_templateName->installEventFilter(this);
    // Room for 16 characters and no more: the box shows what a name can hold.
    m_templateName->setMaximumWidth(m_templateName->fontMetrics().horizontalAdvance('W') * 14);
    auto* lblNumber = ArrayMember(new QLabel("Template #", frNavigation), "lblButtonForm", 0);
    auto* lblName = ArrayMember(new QLabel("Template Label", frNavigation), "lblButtonForm", 1);
    lblNumber->setBuddy(m_templateNumber);
    lblName->setBuddy(m_templateName);
    auto* grid = new QGridLayout(frNavigation);
    grid->addWidget(lblNumber, 0, 0);
    grid->addLayout(navRow, 0, 1);
    grid->addWidget(lblName, 1, 0);
    grid->addWidget(m_templateName, 1, 1, Qt::AlignLeft);
    return frNavigation;
}

QHBoxLayout* ButtonEditor::createNavigationRow(QWidget* parent) {
    static const char* const kCaptions[6] = {"|<", "<<", "<", ">", ">>", ">|"};
    static const char* const kTips[6] = {
        "Move to first Template",       "Move back 10 Templates", "Move to the previous Template",
        "Advance to the next Template", "Advance 10 Templates",   "Advance to last Template"};
    auto* row = new QHBoxLayout;
    for (int k = 0; k < 6; ++k) {
        m_nav[k] = ArrayMember(MakeButton(parent, nullptr, kCaptions[k], kTips[k]), "cmdNav", k);
        m_nav[k]->setFixedWidth(40);
        connect(m_nav[k], &QPushButton::clicked, this, [this, k] { Navigate(k); });
        row->addWidget(m_nav[k]);
        // The number stands between stepping back and stepping on.
        if (k == 2)
            row->addWidget(createTemplateNumber(parent));
    }
    row->addStretch(1);
    return row;
}

QLineEdit* ButtonEditor::createTemplateNumber(QWidget* parent) {
    m_templateNumber = new QLineEdit(parent);
    m_templateNumber->setObjectName("txtTemplateNumber");
    m_templateNumber->setToolTip(
        "Current Template number.  Enter template number to jump to that template.");
    m_templateNumber->setFixedWidth(52);
    m_templateNumber->setAlignment(Qt::AlignCenter);
    m_templateNumber->installEventFilter(this);
    return m_templateNumber;
}

QVBoxLayout* ButtonEditor::createCommands() {
    auto* clear =
        MakeButton(this, "cmdClear", "Clear", "Clear the channels and labels of this template");
    auto* add = MakeButton(this, "CmdAdd", "Add", "Add a new template");
    auto* ok = MakeButton(this, "cmdOk", "OK", "Close the window");
    connect(clear, &QPushButton::clicked, this, &ButtonEditor::ClearTemplate);
    connect(add, &QPushButton::clicked, this, &ButtonEditor::AddTemplate);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto* commands = new QVBoxLayout;
    commands->addStretch(1);
    commands->addWidget(clear);
    commands->addWidget(add);
    commands->addWidget(ok);
    return commands;
}

void ButtonEditor::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous())
        Open();
}

void ButtonEditor::Open() {
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError, [this] {
        LoadTypeCombo();
        DisplayCurrentTemplate();
    });
}

void ButtonEditor::PartReplaced(Part part) {
    // The editor changes the templates in place: the download's copy is the
    // one shown and edited from now on.
    if (part != Part::Templates || !isVisible())
        return;
    // Text being typed (Enter or leaving the box stores it) stays in its box,
    // still to be stored, while the same template and button are shown.
    const int shownTemplate = m_current;
    const int shownButton = m_offset + m_button;
    std::vector<std::pair<QLineEdit*, QString>> typed;
    for (QLineEdit* box : {m_caption, m_templateName})
        if (box->isModified() && !box->isReadOnly())
            typed.emplace_back(box, box->text());
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { DisplayCurrentTemplate(); });
    if (m_current != shownTemplate || m_offset + m_button != shownButton)
        return;
    for (const auto& [box, text] : typed) {
        if (box->isReadOnly())
            continue;
        box->setText(text);
        box->setModified(true);
    }
}

void ButtonEditor::LoadTypeCombo() {
    Guarded(m_reporter, "Error Loading Type Combo Box", kButtonError, [this] {
        const BusyFlag::Scope busy;
        QStringList names;
        for (const ButtonFunction& function : ButtonCatalogue())
            names << ToQt(function.longName);
        m_type->clear();
        m_type->addItems(names);
    });
}

PanelButton& ButtonEditor::CurrentButtonRecord() {
    return m_store.templates.buttonTemplates.at(static_cast<size_t>(m_current))
        .buttons.at(static_cast<size_t>(m_offset + m_button));
}

void ButtonEditor::DisplayCurrentTemplate() {
    // The window always shows a template.
    if (m_store.templates.templateCount <= 0)
        m_current = AddButtonTemplate(m_store);
    // The store may have changed since the window was last open.
    m_current = std::clamp(m_current, 0, m_store.templates.templateCount - 1);
    if (!FillButtonTemplate(m_store, m_current))
        throw std::out_of_range("template " + std::to_string(m_current) + " is missing");

    // A channel without a name (say, before the channel names have been
    // downloaded) is reported, but only after the rest has been shown.
    Status unnamed;
    for (int p = 0; p < kPageKeys; ++p) {
        const int b = m_offset + p;
        Status status;
        const std::string label = GetButtonLabel(m_store, m_current, b, &status);
        if (!status && unnamed)
            unnamed = status;
        SetFaceText(m_buttons[p], label);
        const PanelButton& button =
            m_store.templates.buttonTemplates[static_cast<size_t>(m_current)]
                .buttons[static_cast<size_t>(b)];
        m_typeLabels[p]->setText(ToQt(ButtonFunctionOf(button.type).shortLabel));
        m_buttonLabels[p]->setText(QStringLiteral("Btn %1").arg(b + 1));
        ShowCustomLabel(p, button);
    }
    m_templateNumber->setText(TwoDigits(m_current + 1));
    m_templateName->setText(
        ToQt(m_store.templates.templateNames.at(static_cast<size_t>(m_current))));
    m_templateName->setCursorPosition(0);
    m_keyCommands->ShowMarks();
    DisplayCurrentButton();
    if (!unnamed)
        throw std::out_of_range(unnamed.failure().detail);
}

void ButtonEditor::ShowCustomLabel(int position, const PanelButton& button) {
    // Only what changed is touched: this runs for every key each time a
    // template or page is shown.
    const bool custom = button.usesCustomLabel();
    QPushButton* key = m_buttons[position];
    if (key->property("customLabel").toBool() != custom) {
        key->setProperty("customLabel", custom);
        key->style()->unpolish(key);
        key->style()->polish(key);
    }
    QLabel* chip = m_customLabels[position];
    chip->setVisible(custom);
    if (!custom)
        return;
    const QString sent = ToQt(AsSent(button.label, kLabelWidth));
    chip->setText(sent);
    chip->setToolTip(sent.isEmpty()
                         ? QStringLiteral("This key uses its custom label, which is blank: "
                                          "the panel shows no label on it.")
                         : QStringLiteral("This key uses its custom label: the panel shows "
                                          "\"%1\" on it.")
                               .arg(sent));
}

void ButtonEditor::LoadChannelCombos(int code) {
    const ButtonFunction& function = ButtonFunctionOf(code);
    const std::optional<SubType> subTypes[2] = {function.channelSubType, function.channel2SubType};
    for (int i = 0; i < 2; ++i) {
        QStringListModel* model = m_models.model(subTypes[i]);
        // The lists are shared: showing another one is a switch of model, not
        // a refill.
        if (m_channels[i]->model() != model) {
            m_channels[i]->setModel(model);
            m_channels[i]->completer()->setModel(model);
        }
    }
    m_channels[1]->setEnabled(function.channel2SubType.has_value());
}

void ButtonEditor::SelectChannel(int list, int channel) {
    QComboBox* combo = m_channels[list];
    const int position = ChannelListPosition(channel);
    combo->setCurrentIndex(position >= 0 && position < combo->count() ? position : -1);
}

QString ButtonEditor::InputAlpha(int channel) const {
    return ToQt(RefAt(m_store.alpha(SubType::Input).channelNames, channel));
}

void ButtonEditor::DisplayCurrentButton() {
    const BusyFlag::Scope busy;
    const int b = m_offset + m_button;
    m_buttonLabels[kPageKeys]->setText(QStringLiteral("Button %1").arg(b + 1));
    const PanelButton& button = CurrentButtonRecord();

    LoadChannelCombos(button.type);
    m_type->setCurrentIndex(GetButtonIndexFromType(button.type));
    SelectChannel(0, button.channel);
    SelectChannel(1, button.channel2);

    SetFaceText(m_buttons[m_button], FaceOf(button.channel, m_channels[0]->currentText()));
    m_buttons[m_button]->setChecked(true);

    const bool custom = button.usesCustomLabel();
    m_captionOptions[custom ? 1 : 0]->setChecked(true);
    m_caption->setText(custom ? ToQt(button.label) : InputAlpha(button.channel));
    SetCaptionEditable(custom);
}

void ButtonEditor::ButtonClicked(int position) {
    m_button = position;
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { DisplayCurrentButton(); });
}

void ButtonEditor::TypeChanged(int index) {
    if (BusyFlag::IsSet() || index < 0)
        return;
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this, index] {
        const int16_t code = GetButtonTypeFromIndex(index);
        // The channels stay as they were; only the lists change.
        CurrentButtonRecord().type = code;
        m_typeLabels[m_button]->setText(ToQt(ButtonFunctionOf(code).shortLabel));
        DisplayCurrentButton();
    });
}

void ButtonEditor::ChannelChanged(int list, int position) {
    if (BusyFlag::IsSet())
        return;
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this, list, position] {
        const int16_t channel = ChannelFromListPosition(position);
        PanelButton& button = CurrentButtonRecord();
        (list == 0 ? button.channel : button.channel2) = channel;
        if (list != 0)
            return;
        const QString text = m_channels[0]->currentText();
        SetFaceText(m_buttons[m_button], FaceOf(channel, text));
        if (m_captionOptions[0]->isChecked())
            m_caption->setText(text);
    });
}

void ButtonEditor::CaptionOptionChosen(int option) {
    if (BusyFlag::IsSet())
        return;
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this, option] {
        PanelButton& button = CurrentButtonRecord();
        if (option == 1) {
            m_caption->setText(ToQt(button.label));
            SetCaptionEditable(true);
        } else {
            // The Input table whatever the function, as the panels expect.
            m_caption->setText(InputAlpha(button.channel));
            SetCaptionEditable(false);
        }
        // Flipped, not set: this runs once per change of option, which keeps
        // the bit and the option in step.
        button.captionOption = static_cast<int16_t>(button.captionOption ^ 1);
        ShowCustomLabel(m_button, button);
    });
}

void ButtonEditor::Navigate(int index) {
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this, index] {
        const int count = m_store.templates.templateCount;
        int& current = m_current;
        switch (index) {
        case 0:
            current = 0;
            break;
        case 1:
            current = current > 9 ? current - 10 : 0;
            break;
        case 2:
            current = current > 0 ? current - 1 : 0;
            break;
        case 3:
            // count - 2 and count - 11, not - 1 and - 10: the last step lands
            // on the last template either way.
            current = current < count - 2 ? current + 1 : count - 1;
            break;
        case 4:
            current = current < count - 11 ? current + 10 : count - 1;
            break;
        case 5:
            current = count - 1;
            break;
        default:
            return;
        }
        DisplayCurrentTemplate();
    });
}

void ButtonEditor::ChangePage() {
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this] {
        // The caption names the page that is not shown.
        m_offset = m_offset == 0 ? kPageKeys : 0;
        m_more->setText(m_offset == 0 ? "Buttons 17-32" : "Buttons 1-16");
        m_button = 0;
        DisplayCurrentTemplate();
    });
}

void ButtonEditor::AddTemplate() {
    m_current = AddButtonTemplate(m_store);
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { DisplayCurrentTemplate(); });
}

void ButtonEditor::ClearTemplate() {
    ClearButtonTemplate(m_store, m_current);
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { DisplayCurrentTemplate(); });
}

void ButtonEditor::CopyTemplate() {
    DuplicateTemplateDialog dialog(m_store, m_reporter, this);
    connect(&dialog, &DuplicateTemplateDialog::copied, this, [this] {
        if (m_stepHook)
            m_stepHook();
    });
    if (m_stepHook)
        m_stepHook();
    dialog.exec();
    if (m_stepHook)
        m_stepHook();
    Guarded(m_reporter, "Error Displaying Buttons", kButtonError,
            [this] { DisplayCurrentTemplate(); });
}

void ButtonEditor::ExportLabelSheet() {
    FileDialog::Request request;
    request.title = "Export Label Sheet";
    request.folder = QString::fromStdString(m_folder);
    request.presetName = "LabelSheet.pdf";
    request.nameFilters = QStringList{"PDF Files (*.pdf)", "All Files (*.*)"};
    const QString path = FileDialog::GetFileName(this, request);
    if (path.isEmpty())
        return;
    const Status written =
        WriteLabelSheet(path.toStdString(), m_store, AllTemplatePositions(m_store));
    if (!written && m_reporter)
        m_reporter("Error Exporting Label Sheet", "File Error", written.failure());
}

void ButtonEditor::StoreCaption() {
    // What the box shows becomes the button's custom label in either label
    // mode (in "Use System Alpha" the channel's name). The stored label shown
    // again is no change: one longer than 8 characters, as received, stays
    // whole until it is edited.
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this] {
        PanelButton& button = CurrentButtonRecord();
        std::string text = FromQt(m_caption->text());
        if (text == button.label)
            return;
        text.resize(std::min(text.size(), kLabelWidth));
        button.label = std::move(text);
        ShowCustomLabel(m_button, button);
        if (!m_caption->isReadOnly())
            m_caption->setText(ToQt(button.label));
    });
}

void ButtonEditor::SetCaptionEditable(bool editable) {
    m_caption->setReadOnly(!editable);
    // Leaving the box stores what it shows: in "Use System Alpha" only a
    // click enters it, so that tabbing through the window changes no label.
    m_caption->setFocusPolicy(editable ? Qt::StrongFocus : Qt::ClickFocus);
}

void ButtonEditor::StoreTemplateName() {
    Guarded(m_reporter, "Error Changing Templates", kButtonError, [this] {
        m_store.templates.templateNames.at(static_cast<size_t>(m_current)) =
            FromQt(m_templateName->text());
    });
}

bool ButtonEditor::CaptionKey(QKeyEvent* key) {
    if (IsEnter(key)) {
        StoreCaption();
        return true;
    }
    if (key->key() == Qt::Key_Escape) {
        Guarded(m_reporter, "Error Changing Templates", kButtonError,
                [this] { m_caption->setText(ToQt(CurrentButtonRecord().label)); });
        return true;
    }
    return RefusedWhenFull(m_caption, key, kLabelWidth);
}

bool ButtonEditor::TemplateNameKey(QKeyEvent* key) {
    if (IsEnter(key)) {
        StoreTemplateName();
        return true;
    }
    if (key->key() == Qt::Key_Escape) {
        Guarded(m_reporter, "Error Changing Templates", kButtonError, [this] {
            m_templateName->setText(
                ToQt(m_store.templates.templateNames.at(static_cast<size_t>(m_current))));
        });
        return true;
    }
    return RefusedWhenFull(m_templateName, key, kNameWidth);
}

bool ButtonEditor::TemplateNumberKey(QKeyEvent* key) {
    if (IsEnter(key)) {
        const int n = LeadingNumber(m_templateNumber->text().toStdString());
        if (n >= 1 && n <= m_store.templates.templateCount) {
            m_current = n - 1;
            Guarded(m_reporter, "Error Changing Templates", kButtonError,
                    [this] { DisplayCurrentTemplate(); });
        } else {
            m_templateNumber->setText(QString::number(m_current + 1));
        }
        return true;
    }
    if (key->key() == Qt::Key_Escape) {
        m_templateNumber->setText(TwoDigits(m_current + 1));
        return true;
    }
    if (key->key() == Qt::Key_Backspace)
        return false;
    const std::optional<QChar> ch = TypedCharacter(key);
    if (!ch)
        return false;
    if (m_templateNumber->text().size() >= kNumberDigits && !m_templateNumber->hasSelectedText())
        return true;
    return !(*ch >= QLatin1Char('0') && *ch <= QLatin1Char('9'));
}

bool ButtonEditor::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (watched == m_caption)
            return CaptionKey(key);
        if (watched == m_templateName)
            return TemplateNameKey(key);
        if (watched == m_templateNumber)
            return TemplateNumberKey(key);
    } else if (event->type() == QEvent::FocusOut) {
        // Leaving a box stores it, as Enter does.
        if (watched == m_caption)
            StoreCaption();
        else if (watched == m_templateName)
            StoreTemplateName();
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace lumeth
