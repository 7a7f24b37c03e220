// The button template editor and the duplicate template dialog, offscreen.
// Controls are found by object name; the file dialog is answered through its
// seam and failures are caught by the reporter the window passes in.
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QFile>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStringListModel>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include "app/main_window.h"
#include "files/panel_data_file.h"
#include "model/button_catalogue.h"
#include "model/button_templates.h"
#include "tests/gui/gui_support.h"
#include "ui/button_editor.h"
#include "ui/channel_list_models.h"
#include "ui/duplicate_template_dialog.h"
#include "ui/file_dialog.h"
#include "ui/qt_text.h"

using namespace lumeth;
using lumeth::test::Child;
using lumeth::test::WhenModal;

namespace {

// Four small channel tables ("MIC 1".., "SPK 1".., "GPI 1".., "GPO 1"..) and
// `templates` templates "Template N" of 32 Source Select buttons, button b of
// template t on Input channel t + b.
PanelStore MakeStore(int templates) {
    PanelStore store;
    store.ResetToDefaults();
    const char* prefixes[4] = {"MIC ", "SPK ", "GPI ", "GPO "};
    const int counts[4] = {40, 12, 6, 4};
    for (SubType s : kAllSubTypes) {
        AlphaTable& table = store.alpha(s);
        table.count = static_cast<int16_t>(counts[int(s)]);
        for (int n = 0; n < table.count; ++n)
            table.channelNames.push_back(
                QStringLiteral("%1%2").arg(prefixes[int(s)]).arg(n + 1).toStdString());
    }
    store.templates.templateCount = static_cast<int16_t>(templates);
    store.templates.Resize(templates);
    for (int t = 0; t < templates; ++t) {
        store.templates.templateNames[size_t(t)] =
            QStringLiteral("Template %1").arg(t + 1).toStdString();
        ButtonTemplate& tpl = store.templates.buttonTemplates[size_t(t)];
        tpl.buttonCount = kTemplateButtons;
        tpl.buttons.assign(kTemplateButtons, PanelButton::Cleared());
        for (int b = 0; b < kTemplateButtons; ++b) {
            tpl.buttons[size_t(b)].type = 40;
            tpl.buttons[size_t(b)].channel = static_cast<int16_t>(t + b);
            tpl.buttons[size_t(b)].label = QStringLiteral("L%1").arg(b).toStdString();
        }
    }
    return store;
}

struct Reported {
    std::string location;
    std::string category;
};

} // namespace

class ButtonEditorTest : public QObject {
    Q_OBJECT

private:
    PanelStore m_store;
    std::unique_ptr<ChannelListModels> m_models;
    std::unique_ptr<ButtonEditor> m_editor;
    std::vector<Reported> m_reported;
    QTemporaryDir m_home;

    void Open(PanelStore store) {
        m_store = std::move(store);
        m_models = std::make_unique<ChannelListModels>();
        m_models->RebuildAll(m_store);
        m_reported.clear();
        m_editor = std::make_unique<ButtonEditor>(m_store, *m_models, Recorder(),
                                                  m_home.path().toStdString() + "/");
        m_editor->show();
    }
    ErrorReporter Recorder() {
        return [this](std::string_view location, std::string_view category, const Failure&) {
            m_reported.push_back({std::string(location), std::string(category)});
        };
    }
    template <typename T = QWidget> T* Get(const QString& name) {
        return Child<T>(m_editor.get(), name);
    }
    QPushButton* Key(int p) { return Get<QPushButton>(QStringLiteral("cmdButton_%1").arg(p)); }
    QComboBox* Channel(int i) { return Get<QComboBox>(QStringLiteral("cmbChannel_%1").arg(i)); }
    QLineEdit* Number() { return Get<QLineEdit>("txtTemplateNumber"); }
    const ButtonTemplate& Current() {
        return m_store.templates.buttonTemplates[size_t(m_editor->currentTemplate())];
    }
    const PanelButton& Button(int b) { return Current().buttons[size_t(b)]; }
    // On the option's circle: only the circle and the caption take clicks.
    void ChooseCaption(int option) {
        auto* button = Get<QRadioButton>(QStringLiteral("OptCaption_%1").arg(option));
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    void Click(const QString& name) { QTest::mouseClick(Get<QPushButton>(name), Qt::LeftButton); }

private slots:
    void init() { FileDialog::clearQueuedNames(); }
    void cleanup() { m_editor.reset(); }

    void openingWithNoTemplateAddsOne() {
        PanelStore empty = MakeStore(0);
        empty.templates.templateCount = 0;
        Open(std::move(empty));
        QCOMPARE(m_editor->windowTitle(), QString("Program Buttons"));
        QCOMPARE(m_store.templates.templateCount, int16_t(1));
        QCOMPARE(m_store.templates.templateNames[0], std::string("Btn Tmplate 001"));
        QCOMPARE(Current().buttonCount, int16_t(32));
        for (int b = 0; b < 32; ++b) {
            QCOMPARE(Button(b).type, int16_t(40));
            QCOMPARE(Button(b).channel, kNoChannel);
            QCOMPARE(Button(b).channel2, kNoChannel);
            QCOMPARE(ToQt(Button(b).label), QStringLiteral("Button %1").arg(b));
        }
        QCOMPARE(Key(5)->text(), QString("None"));
        QCOMPARE(Get<QLabel>("lblType_5")->text(), QString("SrcSel"));
        QCOMPARE(Number()->text(), QString("01"));
        QCOMPARE(Get<QLineEdit>("txtTemplateName")->text(), QString("Btn Tmplate 001"));
        QCOMPARE(Get<QComboBox>("cmbType")->count(), 16);
        QCOMPARE(m_store.templates.templateIndex[0], int16_t(0));
    }

    void aShortTemplateGrowsTo32WhenShown() {
        PanelStore store = MakeStore(2);
        store.templates.buttonTemplates[0].buttonCount = 3;
        store.templates.buttonTemplates[0].buttons.resize(3);
        store.templates.buttonTemplates[0].buttons[0].channel = 99; // no such Input channel
        store.alpha(SubType::Input).channelNames[1] += "    ";      // padded as received
        Open(std::move(store));
        QCOMPARE(m_reported.size(), size_t(1));
        QCOMPARE(m_reported[0].location, std::string("Error Displaying Buttons"));
        QCOMPARE(m_reported[0].category, std::string("Button Error"));
        QCOMPARE(Current().buttonCount, int16_t(32));
        QCOMPARE(Current().buttons.size(), size_t(32));
        QCOMPARE(Button(2).label, std::string("L2"));
        QCOMPARE(Button(3).label, std::string("Button 4"));
        QCOMPARE(Button(31).label, std::string("Button 32"));
        QCOMPARE(Button(31).channel, kNoChannel);
        // The first page shows the template's buttons by their system label.
        QCOMPARE(Key(1)->text(), QString("MIC 2"));
        QCOMPARE(Get<QLabel>("lblButton_15")->text(), QString("Btn 16"));
        // Paging: the caption names the other page; the keys show 17-32.
        Click("cmdMore");
        QCOMPARE(m_editor->pageOffset(), 16);
        QCOMPARE(Get<QPushButton>("cmdMore")->text(), QString("Buttons 1-16"));
        QCOMPARE(Get<QLabel>("lblButton_0")->text(), QString("Btn 17"));
        QCOMPARE(Get<QLabel>("lblButton_16")->text(), QString("Button 17"));
        Click("cmdMore");
        QCOMPARE(Get<QPushButton>("cmdMore")->text(), QString("Buttons 17-32"));
    }

    void navigation_data() {
        QTest::addColumn<int>("start");
        QTest::addColumn<QList<int>>("after"); // first, -10, previous, next, +10, last
        QTest::newRow("0") << 0 << QList<int>{0, 0, 0, 1, 4, 4};
        QTest::newRow("1") << 1 << QList<int>{0, 0, 0, 2, 4, 4};
        QTest::newRow("2") << 2 << QList<int>{0, 0, 1, 3, 4, 4};
        QTest::newRow("3") << 3 << QList<int>{0, 0, 2, 4, 4, 4};
        QTest::newRow("4") << 4 << QList<int>{0, 0, 3, 4, 4, 4};
    }
    void navigation() {
        QFETCH(int, start);
        QFETCH(QList<int>, after);
        Open(MakeStore(5));
        for (int k = 0; k < 6; ++k) {
            Number()->setText(QString::number(start + 1));
            QTest::keyClick(Number(), Qt::Key_Return);
            QCOMPARE(m_editor->currentTemplate(), start);
            Click(QStringLiteral("cmdNav_%1").arg(k));
            QCOMPARE(m_editor->currentTemplate(), after[k]);
            QCOMPARE(Number()->text(), QStringLiteral("0%1").arg(after[k] + 1));
            QCOMPARE(Get<QLineEdit>("txtTemplateName")->text(),
                     QStringLiteral("Template %1").arg(after[k] + 1));
        }
    }

    void templateNumberEntry_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("current");
        QTest::addColumn<QString>("shown");
        QTest::newRow("zero") << "0" << 1 << "2";
        QTest::newRow("beyond the count") << "6" << 1 << "2";
        QTest::newRow("empty") << "" << 1 << "2";
        QTest::newRow("a template") << "4" << 3 << "04";
    }
    void templateNumberEntry() {
        QFETCH(QString, typed);
        QFETCH(int, current);
        QFETCH(QString, shown);
        Open(MakeStore(5));
        Click("cmdNav_3");
        Number()->clear();
        QTest::keyClicks(Number(), typed);
        QTest::keyClick(Number(), Qt::Key_Return);
        QCOMPARE(m_editor->currentTemplate(), current);
        QCOMPARE(Number()->text(), shown);
    }

    void templateNumberTakesThreeDigitsOnly() {
        Open(MakeStore(5));
        Number()->clear();
        QTest::keyClicks(Number(), "1x2-34");
        QCOMPARE(Number()->text(), QString("123"));
        Number()->selectAll();
        QTest::keyClicks(Number(), "5");
        QCOMPARE(Number()->text(), QString("5"));
        QTest::keyClick(Number(), Qt::Key_Escape);
        QCOMPARE(Number()->text(), QString("01"));
        QVERIFY(m_editor->isVisible());
    }

    void typeChangeKeepsChannelsAndReloadsTheLists() {
        Open(MakeStore(1));
        Key(3)->click();
        Get<QComboBox>("cmbType")->setCurrentIndex(8); // Relay Toggle - Opto Tally
        QCOMPARE(Button(3).type, int16_t(1010));
        QCOMPARE(Button(3).channel, int16_t(3));
        QCOMPARE(Get<QLabel>("lblType_3")->text(), QString("RlyTgl"));
        QCOMPARE(Channel(0)->count(), 5); // Undefined + four relays
        QCOMPARE(Channel(0)->currentText(), QString("GPO 4 [0004]"));
        QVERIFY(Channel(1)->isEnabled());
        QCOMPARE(Channel(1)->count(), 7);
        QCOMPARE(Channel(1)->currentText(), QString("Undefined"));
        // A channel beyond the new list's entries selects nothing.
        Key(7)->click();
        Get<QComboBox>("cmbType")->setCurrentIndex(8);
        QCOMPARE(Channel(0)->currentIndex(), -1);
        QCOMPARE(Button(7).channel, int16_t(7));
        Get<QComboBox>("cmbType")->setCurrentIndex(2); // Talk: no second channel
        QVERIFY(!Channel(1)->isEnabled());
        QCOMPARE(Channel(1)->count(), 1);
        // The lists are the shared models, not copies.
        QCOMPARE(Channel(0)->model(), m_models->model(SubType::Output));
    }

    void channelChoiceStoresThePositionRule() {
        Open(MakeStore(1));
        Key(2)->click();
        Channel(0)->setCurrentIndex(0);
        QCOMPARE(Button(2).channel, kNoChannel);
        QCOMPARE(Key(2)->text(), QString("None"));
        Channel(0)->setCurrentIndex(12);
        QCOMPARE(Button(2).channel, int16_t(11));
        QCOMPARE(Key(2)->text(), QString("MIC 12 ["));
        QCOMPARE(Get<QLineEdit>("txtCaption")->text(), QString("MIC 12 [0012]"));
        Get<QComboBox>("cmbType")->setCurrentIndex(4); // Output Select W/Listen
        Channel(1)->setCurrentIndex(3);
        QCOMPARE(Button(2).channel2, int16_t(2));
    }

    void renamedChannelsUnderTheOpenWindowChangeNoButton() {
        // A download rebuilds the shared lists while the window is open: the
        // lists' resets must not reach the buttons, and the selected button
        // shows its channel's new name.
        Open(MakeStore(1));
        Key(2)->click();
        Channel(0)->setCurrentIndex(12);
        m_store.alpha(SubType::Input).channelNames[11] = "TALKBACK";
        m_models->RebuildAll(m_store);
        QCOMPARE(Button(2).channel, int16_t(11));
        QCOMPARE(Channel(0)->currentText(), QString("TALKBACK [0012]"));
        QCOMPARE(Key(2)->text(), QString("TALKBACK"));
        // The window's handlers work again after the rebuild.
        Channel(0)->setCurrentIndex(1);
        QCOMPARE(Button(2).channel, int16_t(0));
    }

    void typingFindsAChannelAnywhereIgnoringCase() {
        Open(MakeStore(1));
        Key(0)->click();
        QComboBox* combo = Channel(0);
        combo->lineEdit()->selectAll();
        QTest::keyClicks(combo->lineEdit(), "ic 33");
        QAbstractItemView* popup = combo->completer()->popup();
        QTRY_VERIFY(popup->isVisible());
        QCOMPARE(combo->completer()->completionCount(), 1);
        QTest::keyClick(popup, Qt::Key_Down);
        QTest::keyClick(popup, Qt::Key_Return);
        QTRY_COMPARE(Button(0).channel, int16_t(32));
        // Enter without choosing takes the first entry holding the text.
        combo->lineEdit()->selectAll();
        QTest::keyClicks(combo->lineEdit(), "MIC 2");
        QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
        QCOMPARE(Button(0).channel, int16_t(1));
        // Text naming no entry leaves the button and shows its entry again.
        combo->lineEdit()->selectAll();
        QTest::keyClicks(combo->lineEdit(), "nothing like it");
        QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
        QCOMPARE(Button(0).channel, int16_t(1));
        QCOMPARE(combo->currentText(), QString("MIC 2 [0002]"));
    }

    void captionKeysInBothModes_data() {
        QTest::addColumn<bool>("custom");
        QTest::addColumn<QString>("stored"); // the button's label before
        QTest::addColumn<QString>("alpha");  // its channel's name
        QTest::addColumn<QString>("typed");  // over the whole box; "" types nothing
        QTest::addColumn<int>("key");        // then pressed; other than Enter and Escape
                                             // the box is then left
        QTest::addColumn<QString>("label");  // the button's label after
        QTest::addColumn<QString>("shown");  // the box after
        const int enter = Qt::Key_Return, escape = Qt::Key_Escape, none = 0;
        const struct {
            const char* row;
            bool custom;
            const char *stored, *alpha, *typed;
            int key;
            const char *label, *shown;
        } rows[] = {
            {"custom Enter", true, "L1", "MIC 2", "NEW", enter, "NEW", "NEW"},
            {"custom leave", true, "L1", "MIC 2", "NEW", none, "NEW", "NEW"},
            {"custom Escape", true, "L1", "MIC 2", "NEW", escape, "L1", "L1"},
            {"custom typed past 8", true, "L1", "MIC 2", "ABCDEFGHIJ", enter, "ABCDEFGH",
             "ABCDEFGH"},
            {"system Enter", false, "L1", "MIC 2", "", enter, "MIC 2", "MIC 2"},
            {"system leave", false, "L1", "MIC 2", "", none, "MIC 2", "MIC 2"},
            {"system Escape", false, "L1", "MIC 2", "", escape, "L1", "L1"},
            {"system long name", false, "L1", "MICROPHONE 2    ", "", enter, "MICROPHO",
             "MICROPHONE 2    "},
            {"long label unedited", true, "LONGLABEL12", "MIC 2", "", none, "LONGLABEL12",
             "LONGLABEL12"},
            {"long label edited", true, "LONGLABEL12", "MIC 2", "", int(Qt::Key_Backspace),
             "LONGLABE", "LONGLABE"},
        };
        for (const auto& r : rows)
            QTest::newRow(r.row) << r.custom << QString(r.stored) << QString(r.alpha)
                                 << QString(r.typed) << r.key << QString(r.label)
                                 << QString(r.shown);
    }
    void captionKeysInBothModes() {
        QFETCH(bool, custom);
        QFETCH(QString, stored);
        QFETCH(QString, alpha);
        QFETCH(QString, typed);
        QFETCH(int, key);
        QFETCH(QString, label);
        QFETCH(QString, shown);
        PanelStore store = MakeStore(1);
        store.templates.buttonTemplates[0].buttons[1].captionOption = custom ? 1 : 0;
        store.templates.buttonTemplates[0].buttons[1].label = stored.toStdString();
        store.alpha(SubType::Input).channelNames[1] = alpha.toStdString();
        Open(std::move(store));
        Key(1)->click();
        auto* caption = Get<QLineEdit>("txtCaption");
        QCOMPARE(caption->isReadOnly(), !custom);
        QCOMPARE(caption->text(), custom ? stored : alpha);
        if (!typed.isEmpty()) {
            caption->selectAll();
            QTest::keyClicks(caption, typed);
        }
        if (key != 0)
            QTest::keyClick(caption, Qt::Key(key));
        if (key != Qt::Key_Return && key != Qt::Key_Escape) {
            QFocusEvent leave(QEvent::FocusOut);
            QApplication::sendEvent(caption, &leave);
        }
        QVERIFY(m_editor->isVisible());
        QCOMPARE(ToQt(Button(1).label), label);
        QCOMPARE(caption->text(), shown);
        QCOMPARE(Button(1).captionOption, int16_t(custom ? 1 : 0));
    }

    void tabbingThroughChangesNoButton() {
        Open(MakeStore(1));
        m_editor->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_editor.get()));
        Key(1)->click();
        Key(1)->setFocus();
        const ButtonTemplate shown = Current();
        for (int k = 0; k < 40; ++k)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(Current() == shown);
    }

    void labelModeAndTheNameLimit() {
        Open(MakeStore(1));
        Key(1)->click();
        auto* caption = Get<QLineEdit>("txtCaption");
        QVERIFY(caption->isReadOnly());
        QCOMPARE(caption->text(), QString("MIC 2"));
        ChooseCaption(1);
        QCOMPARE(Button(1).captionOption, int16_t(1));
        QVERIFY(!caption->isReadOnly());
        QCOMPARE(caption->text(), QString("L1"));
        ChooseCaption(0);
        QCOMPARE(Button(1).captionOption, int16_t(0));
        // Showing a button again does not flip its bit.
        Key(1)->click();
        QCOMPARE(Button(1).captionOption, int16_t(0));

        auto* name = Get<QLineEdit>("txtTemplateName");
        name->clear();
        QTest::keyClicks(name, "Studio A Morning Show");
        QCOMPARE(name->text(), QString("Studio A Morning"));
        QFocusEvent leave(QEvent::FocusOut); // leaving the box stores it
        QApplication::sendEvent(name, &leave);
        QCOMPARE(m_store.templates.templateNames[0], std::string("Studio A Morning"));

        // A download of the templates while a name is being typed keeps the
        // typing, still to be stored; the rest of the editor shows the download.
        name->setFocus();
        name->clear();
        QTest::keyClicks(name, "Late Show");
        m_store.templates.templateNames[0] = "Server Side";
        m_store.templates.buttonTemplates[0].buttons[1].label = "SRV";
        m_editor->PartReplaced(Part::Templates);
        QCOMPARE(name->text(), QString("Late Show"));
        QCOMPARE(caption->text(), QString("MIC 2"));
        QCOMPARE(m_store.templates.templateNames[0], std::string("Server Side"));
        QTest::keyClick(name, Qt::Key_Return);
        QCOMPARE(m_store.templates.templateNames[0], std::string("Late Show"));
    }

    // Keys whose button uses its custom label are marked and show that label as
    // the panel gets it (8 characters, trailing blanks dropped); the key face
    // keeps the system label. The marks follow the option, a stored label, the
    // page and the template.
    void keysShowTheCustomLabelThePanelShows() {
        PanelStore store = MakeStore(2);
        std::vector<PanelButton>& buttons = store.templates.buttonTemplates[0].buttons;
        buttons[2] = {40, 1, "MON+OFFA", 2, kNoChannel};
        buttons[5] = {40, 3, "TALK  ", 5, kNoChannel}; // bit 0 set among others
        buttons[7] = {40, 1, "LONGERTHAN8", 7, kNoChannel};
        buttons[9] = {40, 2, "IGNORED", 9, kNoChannel}; // bit 0 clear
        buttons[20] = {40, 1, "PAGE2", 20, kNoChannel};
        Open(std::move(store));
        const auto chip = [this](int p) {
            return Get<QLabel>(QStringLiteral("lblCustom_%1").arg(p));
        };
        // The custom label each key shows, "-" for a key without one.
        const auto shown = [&] {
            QStringList keys;
            for (int p = 0; p < ButtonEditor::kPageKeys; ++p) {
                const bool marked = Key(p)->property("customLabel").toBool();
                if (marked != chip(p)->isVisible())
                    return QStringList{QStringLiteral("mark and chip disagree at %1").arg(p)};
                keys << (marked ? chip(p)->text() : QStringLiteral("-"));
            }
            return keys;
        };
        const auto expect = [](std::initializer_list<std::pair<int, QString>> custom) {
            QStringList keys(ButtonEditor::kPageKeys, QStringLiteral("-"));
            for (const auto& [p, text] : custom)
                keys[p] = text;
            return keys;
        };
        QCOMPARE(shown(), expect({{2, "MON+OFFA"}, {5, "TALK"}, {7, "LONGERTH"}}));
        QVERIFY(chip(2)->toolTip().contains("\"MON+OFFA\""));
        // The faces are the system labels still.
        QCOMPARE(Key(2)->text(), QString("MIC 3"));
        QCOMPARE(Key(9)->text(), QString("MIC 10"));

        // The selected key shows the start of its channel entry: that too stays.
        Key(9)->click();
        const QString face9 = Key(9)->text();
        ChooseCaption(1);
        QCOMPARE(shown(), expect({{2, "MON+OFFA"}, {5, "TALK"}, {7, "LONGERTH"}, {9, "IGNORED"}}));
        auto* caption = Get<QLineEdit>("txtCaption");
        caption->clear();
        QTest::keyClicks(caption, "CUE 1   ");
        QTest::keyClick(caption, Qt::Key_Return);
        QCOMPARE(chip(9)->text(), QString("CUE 1"));
        QCOMPARE(Key(9)->text(), face9);
        Key(2)->click();
        const QString face2 = Key(2)->text();
        ChooseCaption(0);
        QCOMPARE(shown(), expect({{5, "TALK"}, {7, "LONGERTH"}, {9, "CUE 1"}}));
        QCOMPARE(Key(2)->text(), face2);

        Click("cmdMore");
        QCOMPARE(shown(), expect({{4, "PAGE2"}}));
        Click("cmdMore");
        Click("cmdNav_3");
        QCOMPARE(m_editor->currentTemplate(), 1);
        QCOMPARE(shown(), expect({}));
    }

    void addAndClear() {
        PanelStore store = MakeStore(5);
        store.templates.buttonTemplates[4].buttons[6].channel2 = 9;
        store.templates.buttonTemplates[4].buttons[6].channel = 2;
        store.templates.buttonTemplates[4].buttons[6].type = 1100;
        store.templates.buttonTemplates[4].buttons[6].captionOption = 1;
        Open(std::move(store));
        Click("CmdAdd");
        QCOMPARE(m_store.templates.templateCount, int16_t(6));
        QCOMPARE(m_editor->currentTemplate(), 5);
        QCOMPARE(m_store.templates.templateNames[5], std::string("Btn Tmplate 006"));
        QCOMPARE(m_store.templates.templatePosition[5], int16_t(5));
        QCOMPARE(Button(31).label, std::string("Button 31"));
        QCOMPARE(Number()->text(), QString("06"));

        Click("cmdNav_2");
        Click("cmdClear");
        QCOMPARE(m_store.templates.templateNames[4], std::string("Unused 05"));
        QCOMPARE(Button(6).type, int16_t(1100));
        QCOMPARE(Button(6).channel2, int16_t(9));
        QCOMPARE(Button(6).channel, kNoChannel);
        QCOMPARE(Button(6).captionOption, int16_t(0));
        QCOMPARE(Button(6).label, std::string("Button 6"));
        QCOMPARE(Key(6)->text(), QString("None"));
        QVERIFY(m_reported.empty());
    }

    void duplicateOntoNewAndExistingTemplates() {
        PanelStore store = MakeStore(10);
        store.templates.buttonTemplates[3].buttons[15].captionOption = 1;
        store.templates.buttonTemplates[3].buttons[15].channel2 = 4;
        Open(std::move(store));
        const PanelStore before = m_store;
        DuplicateTemplateDialog dialog(m_store, Recorder(), m_editor.get());
        QCOMPARE(dialog.windowTitle(), QString("Duplicate Button Template"));
        auto* from = Child<QComboBox>(&dialog, "cmbListAlphas_0");
        auto* to = Child<QComboBox>(&dialog, "cmbListAlphas_1");
        QCOMPARE(from->count(), 10);
        QCOMPARE(to->itemText(10), QString("New Template"));

        from->setCurrentIndex(3);
        to->setCurrentIndex(10);
        QTest::mouseClick(Child<QPushButton>(&dialog, "cmdCopy"), Qt::LeftButton);
        QCOMPARE(m_store.templates.templateCount, int16_t(11));
        QCOMPARE(m_store.templates.templateNames[10], before.templates.templateNames[3]);
        QCOMPARE(m_store.templates.templateIndex[10], int16_t(10));
        const ButtonTemplate& copy = m_store.templates.buttonTemplates[10];
        QCOMPARE(copy.buttonCount, int16_t(16));
        for (int b = 0; b < 16; ++b) {
            const PanelButton& want = before.templates.buttonTemplates[3].buttons[size_t(b)];
            const PanelButton& got = copy.buttons[size_t(b)];
            QVERIFY(got.type == want.type && got.captionOption == want.captionOption &&
                    got.label == want.label && got.channel == want.channel &&
                    got.channel2 == want.channel2);
        }
        QCOMPARE(from->currentIndex(), 0);
        QCOMPARE(to->currentIndex(), 0);
        QCOMPARE(to->count(), 12);

        // Onto an existing template: only the name changes.
        from->setCurrentIndex(3);
        to->setCurrentIndex(5);
        QTest::mouseClick(Child<QPushButton>(&dialog, "cmdCopy"), Qt::LeftButton);
        QCOMPARE(m_store.templates.templateNames[5], before.templates.templateNames[3]);
        QCOMPARE(m_store.templates.buttonTemplates[5].buttons[0].channel, int16_t(5));
        QCOMPARE(to->itemText(5), ToQt(before.templates.templateNames[3]));
        // Onto itself: nothing changes.
        const std::string bytes = EncodePanelData(m_store);
        from->setCurrentIndex(2);
        to->setCurrentIndex(2);
        QTest::mouseClick(Child<QPushButton>(&dialog, "cmdCopy"), Qt::LeftButton);
        QCOMPARE(EncodePanelData(m_store), bytes);

        // The 16-button copy is grown to 32 when the editor shows it.
        Click("cmdNav_5");
        QCOMPARE(m_editor->currentTemplate(), 10);
        QCOMPARE(Current().buttonCount, int16_t(32));
        QCOMPARE(Button(15).channel2, int16_t(4));
        QCOMPARE(Button(16).label, std::string("Button 17"));
        QCOMPARE(Button(16).channel, kNoChannel);

        // A source short of 16 buttons: the appended template stays, and the
        // failure is reported.
        m_store.templates.buttonTemplates[2].buttons.resize(3);
        from->setCurrentIndex(2);
        to->setCurrentIndex(11);
        QTest::mouseClick(Child<QPushButton>(&dialog, "cmdCopy"), Qt::LeftButton);
        QCOMPARE(m_store.templates.templateCount, int16_t(12));
        QCOMPARE(to->count(), 13);
        QCOMPARE(m_reported.size(), size_t(1));
        QCOMPARE(m_reported[0].location, std::string("Error Copying Template"));
        QCOMPARE(m_reported[0].category, std::string("Data Error"));
    }

    void copyMenuOpensTheDialogAndRedisplays() {
        Open(MakeStore(2));
        WhenModal("frmDuplicateTemplate", [](QWidget* dialog) {
            Child<QComboBox>(dialog, "cmbListAlphas_0")->setCurrentIndex(1);
            Child<QComboBox>(dialog, "cmbListAlphas_1")->setCurrentIndex(0);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdCopy"), Qt::LeftButton);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
        });
        Child<QAction>(m_editor.get(), "mnuCopy")->trigger();
        QCOMPARE(m_store.templates.templateNames[0], std::string("Template 2"));
        QCOMPARE(Get<QLineEdit>("txtTemplateName")->text(), QString("Template 2"));
    }

    void labelSheetExport() {
        PanelStore store = MakeStore(3);
        store.templates.buttonTemplates[1].buttons[0].captionOption = 1;
        Open(std::move(store));
        const LabelSheetPage page = LabelSheetPageFor(m_store, 1);
        QCOMPARE(page.keys[0].face, std::string("L0"));
        QCOMPARE(page.keys[2].face, std::string("MIC 4"));
        QCOMPARE(page.keys[2].function, std::string("SrcSel"));
        QCOMPARE(page.keys[2].number, std::string("0004"));

        const QString path = m_home.path() + "/LabelSheet.pdf";
        FileDialog::setNextFileName(path);
        Child<QAction>(m_editor.get(), "mnuSheet")->trigger();
        QCOMPARE(FileDialog::lastRequest()->title, QString("Export Label Sheet"));
        QCOMPARE(FileDialog::lastRequest()->presetName, QString("LabelSheet.pdf"));
        QFile pdf(path);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        const QByteArray bytes = pdf.readAll();
        QVERIFY(bytes.startsWith("%PDF"));
        QCOMPARE(bytes.count("/Type /Page\n"), qsizetype(3));
        QVERIFY(m_reported.empty());

        FileDialog::setNextFileName(m_home.path() + "/missing/LabelSheet.pdf");
        Child<QAction>(m_editor.get(), "mnuSheet")->trigger();
        QCOMPARE(m_reported.size(), size_t(1));
        QCOMPARE(m_reported[0].location, std::string("Error Exporting Label Sheet"));
        QCOMPARE(m_reported[0].category, std::string("File Error"));
    }

    void loadingAFileKeepsTheTemplateIndexPair() {
        PanelStore store = MakeStore(5);
        for (int t = 0; t < 5; ++t)
            store.templates.templateIndex[size_t(t)] = store.templates.templatePosition[size_t(t)] =
                int16_t(t + 7);
        const std::string file = EncodePanelData(MakeStore(2));
        QCOMPARE(LoadPanelData(file, store).outcome, LoadOutcome::Loaded);
        QCOMPARE(store.templates.templateCount, int16_t(2));
        QCOMPARE(store.templates.templateIndex, (std::vector<int16_t>{7, 8, 9, 10, 11}));
        QCOMPARE(store.templates.templatePosition, (std::vector<int16_t>{7, 8, 9, 10, 11}));
    }

    void theMainWindowOpensTheEditorModally() {
        QTemporaryDir home;
        MainWindow window(home.path().toStdString() + "/");
        window.store() = MakeStore(2);
        auto* progress = Child<QLabel>(&window, "stbStatus_2");
        WhenModal("frmButtons", [](QWidget* editor) {
            QVERIFY(editor->isModal());
            QTest::mouseClick(Child<QPushButton>(editor, "cmdOk"), Qt::LeftButton);
        });
        QTest::mouseClick(Child<QPushButton>(&window, "cmdEditButtons"), Qt::LeftButton);
        QCOMPARE(progress->text(), QString());
        WhenModal("frmButtons", [](QWidget* editor) {
            QTest::mouseClick(Child<QPushButton>(editor, "CmdAdd"), Qt::LeftButton);
            Child<QAction>(editor, "mnuExit")->trigger();
        });
        Child<QAction>(&window, "mnuButtons")->trigger();
        QCOMPARE(window.store().templates.templateCount, int16_t(3));
        QCOMPARE(progress->text(), QString("Unapplied changes"));
    }
};

QTEST_MAIN(ButtonEditorTest)
#include "test_button_editor.moc"
