// Keys in bulk in the template editor, offscreen: picking keys with Ctrl and
// Shift, the Edit menu's copy, cut, paste and delete with their shortcuts, and
// the fill from a display list. Every change must be one step for undo.
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <optional>

#include "model/alpha_sort.h"
#include "model/button_templates.h"
#include "model/edit_steps.h"
#include "tests/gui/gui_support.h"
#include "tests/support/store_builders.h"
#include "ui/button_editor.h"
#include "ui/channel_list_models.h"
#include "ui/key_commands.h"

using namespace lumeth;
using lumeth::test::Child;
using lumeth::test::WhenModal;

namespace {

// Three templates; key b of template t is a Source Select of Input channel
// 10 * t + b. Relay list 0 "Lights" holds channels 3, 1, 2.
PanelStore MakeStore() {
    PanelStore store;
    store.ResetToDefaults();
    for (SubType s : kAllSubTypes) {
        std::vector<std::string> names;
        for (int n = 1; n <= 60; ++n)
            names.push_back(SubTypeName(s) + std::to_string(n));
        BuildAlphaTable(store.alpha(s), names);
    }
    store.templates.templateCount = 0;
    for (int t = 0; t < 3; ++t) {
        std::vector<PanelButton>& keys =
            store.templates.buttonTemplates[size_t(AddButtonTemplate(store))].buttons;
        for (int b = 0; b < kTemplateButtons; ++b)
            keys[size_t(b)].channel = static_cast<int16_t>(10 * t + b);
    }
    store.lists(SubType::Relay)[0] = test::List("Lights", {3, 1, 2});
    return store;
}

} // namespace

class KeyCommandsTest : public QObject {
    Q_OBJECT

private:
    PanelStore m_store;
    std::unique_ptr<ChannelListModels> m_models;
    std::unique_ptr<ButtonEditor> m_editor;
    std::optional<EditSteps> m_steps;

    void Open() {
        m_store = MakeStore();
        m_models = std::make_unique<ChannelListModels>();
        m_models->RebuildAll(m_store);
        m_editor = std::make_unique<ButtonEditor>(m_store, *m_models, nullptr, "/tmp/");
        m_steps.emplace(m_store);
        m_editor->setStepHook([this] { m_steps->Record(m_store); });
        m_editor->show();
        QApplication::setActiveWindow(m_editor.get());
        QVERIFY(QTest::qWaitForWindowActive(m_editor.get()));
    }
    template <typename T = QWidget> T* Get(const QString& name) {
        return Child<T>(m_editor.get(), name);
    }
    QPushButton* Key(int p) { return Get<QPushButton>(QStringLiteral("cmdButton_%1").arg(p)); }
    void ClickKey(int p, Qt::KeyboardModifiers mods = {}) {
        QTest::mouseClick(Key(p), Qt::LeftButton, mods);
    }
    // A shortcut typed with the focus on key `p` of the grid.
    void Shortcut(int p, Qt::Key key, Qt::KeyboardModifiers mods = Qt::ControlModifier) {
        QTest::keyClick(Key(p), key, mods);
    }
    const PanelButton& Button(int t, int b) {
        return m_store.templates.buttonTemplates[size_t(t)].buttons[size_t(b)];
    }
    std::vector<int> Picked() {
        return m_editor->findChild<KeyCommands*>()->selection().keysOr(-1);
    }
    QString Note() { return Get<QLabel>("lblKeysNote")->text(); }

private slots:
    void cleanup() { m_editor.reset(); }

    void ctrlAndShiftClicksPickKeysAndKeepTheCurrentKey() {
        Open();
        ClickKey(2);
        ClickKey(4, Qt::ControlModifier);
        ClickKey(6, Qt::ControlModifier);
        ClickKey(4, Qt::ControlModifier); // dropped again
        QCOMPARE(m_editor->currentButton(), 2);
        QCOMPARE(Picked(), (std::vector<int>{2, 6}));
        QVERIFY(Key(6)->property("keyPicked").toBool());
        // Shift: the run from the last key clicked.
        ClickKey(7, Qt::ShiftModifier);
        QCOMPARE(Picked(), (std::vector<int>{4, 5, 6, 7}));
        ClickKey(1, Qt::ShiftModifier);
        QCOMPARE(Picked(), (std::vector<int>{1, 2, 3, 4}));
        Shortcut(0, Qt::Key_A);
        QCOMPARE(Picked().size(), size_t(32));
        // A plain click picks that key alone, as before.
        ClickKey(9);
        QCOMPARE(m_editor->currentButton(), 9);
        QCOMPARE(Picked(), (std::vector<int>{9}));
        QVERIFY(!Key(4)->property("keyPicked").toBool());
    }

    // Cut on one template, pasted onto another and past its last key; each
    // change is one step and undoes whole.
    void cutPasteAndDeleteAcrossTemplates() {
        Open();
        const PanelStore before = m_store;
        const auto& original = before.templates.buttonTemplates;
        ClickKey(2);
        ClickKey(4, Qt::ControlModifier);
        Shortcut(4, Qt::Key_X);
        QCOMPARE(Note(), QString("2 keys cut"));
        QCOMPARE(Button(0, 2), BlankTemplateButton(2));
        QCOMPARE(Key(4)->text(), QString("None"));
        QTest::mouseClick(Get<QPushButton>("cmdNav_3"), Qt::LeftButton);
        ClickKey(15);
        Shortcut(15, Qt::Key_V);
        QCOMPARE(Button(1, 15), original[0].buttons[2]);
        QCOMPARE(Button(1, 16), original[0].buttons[4]);
        QCOMPARE(Note(), QString("2 keys pasted from Btn 16"));
        QTest::mouseClick(Get<QPushButton>("cmdMore"), Qt::LeftButton);
        ClickKey(15);
        Get<QAction>("mnuPasteKeys")->trigger();
        QCOMPARE(Button(1, 31), original[0].buttons[2]);
        QCOMPARE(Note(), QString("1 key pasted from Btn 32; 1 did not fit after Btn 32"));
        Shortcut(15, Qt::Key_Delete, {});
        QCOMPARE(Button(1, 31), BlankTemplateButton(31));
        QCOMPARE(m_steps->history().undoDepth(), size_t(4));
        while (m_steps->Undo(m_store)) {
        }
        QCOMPARE(m_store.templates, before.templates);
    }

    // Ctrl+C, Delete and Ctrl+V in the name box edit its text; in the caption
    // box, read-only while the key shows its system alpha, they do nothing.
    void shortcutsInTheTextBoxesLeaveTheKeysAlone() {
        Open();
        ClickKey(0);
        Shortcut(0, Qt::Key_C);
        const PanelStore before = m_store;
        for (const char* box : {"txtTemplateName", "txtCaption"}) {
            auto* edit = Get<QLineEdit>(box);
            QTest::mouseClick(edit, Qt::LeftButton);
            QTRY_VERIFY(edit->hasFocus());
            const QString text = edit->text();
            QVERIFY(!text.isEmpty());
            edit->selectAll();
            QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
            QTest::keyClick(edit, Qt::Key_Delete);
            QCOMPARE(edit->text(), edit->isReadOnly() ? text : QString());
            QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(edit->text(), text);
            QCOMPARE(m_store.templates.buttonTemplates, before.templates.buttonTemplates);
        }
    }

    void fillFromADisplayList() {
        Open();
        ClickKey(14);
        WhenModal("frmFill", [](QWidget* dialog) {
            auto* lists = Child<QComboBox>(dialog, "cmbList");
            QCOMPARE(Child<QComboBox>(dialog, "cmbStartKey")->currentText(), QString("Btn 15"));
            const int lights = lists->findText("Relay Lst.000 \"Lights\" (3 channels)");
            QVERIFY(lights >= 0);
            lists->setCurrentIndex(lights);
            auto* functions = Child<QComboBox>(dialog, "cmbFunction");
            QCOMPARE(functions->count(), 4);
            functions->setCurrentIndex(functions->findText("Relay Momentary"));
            Child<QComboBox>(dialog, "cmbStartKey")->setCurrentIndex(29);
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdOk"), Qt::LeftButton);
        });
        Get<QAction>("mnuFill")->trigger();
        QCOMPARE(Button(0, 29).type, int16_t(1002));
        QCOMPARE(Button(0, 29).channel, int16_t(3));
        QCOMPARE(Button(0, 30).channel, int16_t(1));
        QCOMPARE(Button(0, 31).channel, int16_t(2));
        QCOMPARE(Note(), QString("3 keys filled from Relay Lst.000 \"Lights\""));
        QCOMPARE(m_steps->history().undoDepth(), size_t(1));
        // Cancelled: nothing changes and no step is made.
        WhenModal("frmFill", [](QWidget* dialog) {
            QTest::mouseClick(Child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
        });
        Get<QAction>("mnuFill")->trigger();
        QCOMPARE(m_steps->history().undoDepth(), size_t(1));
    }
};

QTEST_MAIN(KeyCommandsTest)
#include "test_key_commands.moc"
