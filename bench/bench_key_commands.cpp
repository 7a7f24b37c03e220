// Keys in bulk in the template editor on the largest configuration the
// emulator generates (16383 channels per sub type, 500 templates): pasting
// all 32 keys and deleting them again, each with the redisplay and paint the
// operator waits for, and a fill from the longest display list. Goal: each
// at most 100 ms, so a bulk edit feels as immediate as a click on a key.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QWidget>

#include <memory>

#include "bench/max_configuration.h"
#include "model/key_clipboard.h"
#include "ui/button_editor.h"
#include "ui/channel_list_models.h"
#include "ui/key_commands.h"

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
