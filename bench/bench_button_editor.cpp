// The button template editor on the largest configuration the emulator
// generates (16383 channels per sub type, 500 templates): showing another
// button (both channel lists switched to another sub type's list), moving to
// another template, pasting and deleting keys in bulk, a fill from a list,
// and the label sheet of all 500 templates. Each editor
// iteration includes the paint that follows, as the operator sees it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QPushButton>

#include <memory>

#include "bench/max_configuration.h"
#include "model/key_clipboard.h"
#include "ui/button_editor.h"
#include "ui/channel_list_models.h"
#include "ui/key_commands.h"
#include "ui/label_sheet_pdf.h"

using namespace lumeth;

namespace {

struct Fixture {
    std::unique_ptr<QApplication> app;
    PanelStore store;
    std::unique_ptr<ChannelListModels> models;
    std::unique_ptr<ButtonEditor> editor;
    KeyCommands* keys = nullptr;
};

Fixture& Shared() {
    static Fixture* fixture = [] {
        auto* f = new Fixture;
        f->app = bench::OffscreenApplication();
        f->store = bench::MaxConfiguration();
        f->models = std::make_unique<ChannelListModels>();
        f->models->RebuildAll(f->store);
        f->editor = std::make_unique<ButtonEditor>(f->store, *f->models, nullptr, "/tmp/");
        bench::ShowAt(*f->editor, 1100, 620);
        f->keys = f->editor->findChild<KeyCommands*>();
        return f;
    }();
    return *fixture;
}

// Consecutive buttons of the generated templates have different functions,
// so every step switches the channel lists to another sub type's list.
void BM_DisplayCurrentButton(benchmark::State& state) {
    Fixture& f = Shared();
    int p = 0;
    for (auto _ : state) {
        f.editor->ButtonClicked(p);
        bench::Settle();
        p = (p + 1) % 16;
    }
    state.counters["channels"] = f.store.alpha(SubType::Input).count;
}
BENCHMARK(BM_DisplayCurrentButton)->Unit(benchmark::kMillisecond);

void BM_DisplayCurrentTemplate(benchmark::State& state) {
    Fixture& f = Shared();
    int step = 0;
    for (auto _ : state) {
        f.editor->Navigate(step++ % 2 == 0 ? 3 : 2); // next, previous
        bench::Settle();
    }
    state.counters["templates"] = f.store.templates.templateCount;
}
BENCHMARK(BM_DisplayCurrentTemplate)->Unit(benchmark::kMillisecond);

// Opening the channel list of an Input button: 16384 entries.
void BM_OpenChannelList(benchmark::State& state) {
    Fixture& f = Shared();
    f.editor->Navigate(0);
    f.editor->ButtonClicked(1); // Source Select on the first template
    auto* combo = f.editor->findChild<QComboBox*>("cmbChannel_0");
    for (auto _ : state) {
        combo->showPopup();
        bench::Settle();
        combo->hidePopup();
        bench::Settle();
    }
    state.counters["entries"] = combo->count();
}
BENCHMARK(BM_OpenChannelList)->Unit(benchmark::kMillisecond);

// What a download of one sub type's channel names costs the editor.
void BM_RebuildChannelList(benchmark::State& state) {
    Fixture& f = Shared();
    for (auto _ : state) {
        f.models->Rebuild(f.store, SubType::Input);
    }
}
BENCHMARK(BM_RebuildChannelList)->Unit(benchmark::kMillisecond);

// The whole sheet, 500 pages; goal: at most 5 s.
void BM_LabelSheet(benchmark::State& state) {
    Fixture& f = Shared();
    const std::vector<int> all = AllTemplatePositions(f.store);
    qsizetype size = 0;
    for (auto _ : state) {
        size = RenderLabelSheet(f.store, all).size();
        benchmark::DoNotOptimize(size);
    }
    state.counters["pages"] = static_cast<double>(all.size());
    state.counters["MB"] = static_cast<double>(size) / (1024.0 * 1024.0);
}
BENCHMARK(BM_LabelSheet)->Unit(benchmark::kMillisecond)->Iterations(2);

// The same sheet with every key at its widest: an 8-character custom label of
// wide letters on every button, so every face is set smaller to fit.
void BM_LabelSheetWidestLabels(benchmark::State& state) {
    Fixture& f = Shared();
    PanelStore store = f.store;
    for (ButtonTemplate& t : store.templates.buttonTemplates) {
        for (PanelButton& button : t.buttons) {
            button.captionOption = 1;
            button.label = "MWMWMWMW";
        }
    }
    const std::vector<int> all = AllTemplatePositions(store);
    for (auto _ : state) {
        benchmark::DoNotOptimize(RenderLabelSheet(store, all).size());
    }
    state.counters["pages"] = static_cast<double>(all.size());
}
BENCHMARK(BM_LabelSheetWidestLabels)->Unit(benchmark::kMillisecond)->Iterations(2);

// Keys in bulk: each at most 100 ms, so a bulk edit feels as immediate as a
// click on a key.
// All 32 keys of the first template pasted onto the second, then deleted.
void BM_PasteAndDeleteAllKeys(benchmark::State& state) {
    Fixture& f = Shared();
    f.editor->Navigate(0);
    f.keys->SelectAll();
    f.keys->Copy();
    f.editor->Navigate(3);
    f.editor->ButtonClicked(0);
    for (auto _ : state) {
        f.keys->Paste();
        bench::Settle();
        f.keys->SelectAll();
        f.keys->Delete();
        bench::Settle();
    }
    state.counters["keys"] = static_cast<double>(KeyCommands::clipboard().keys.size());
}
BENCHMARK(BM_PasteAndDeleteAllKeys)->Unit(benchmark::kMillisecond);

// The longest Input list given to the keys from the first on, and shown.
void BM_FillFromLongestList(benchmark::State& state) {
    Fixture& f = Shared();
    KeyFill fill{SubType::Input, 0, 40, 0};
    const std::vector<DisplayList>& lists = f.store.lists(SubType::Input);
    for (int p = 0; p < f.store.listCount(SubType::Input); ++p) {
        if (lists[size_t(p)].channelCount > lists[size_t(fill.list)].channelCount)
            fill.list = p;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(FillKeysFromList(f.store, f.editor->currentTemplate(), fill));
        f.editor->DisplayCurrentTemplate();
        bench::Settle();
    }
    state.counters["channels"] = lists[size_t(fill.list)].channelCount;
}
BENCHMARK(BM_FillFromLongestList)->Unit(benchmark::kMillisecond);

} // namespace
