// The display list editor on the largest configuration the emulator
// generates (16383 channels per sub type): opening it on an Input list, Add
// All into an empty list, committing that list, and one filter keystroke.
// Each iteration includes the paint that follows, as the operator sees it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QTreeView>

#include <memory>
#include <numeric>

#include "bench/max_configuration.h"
#include "model/list_records.h"
#include "ui/display_list_editor.h"

using namespace lumeth;

namespace {

struct Fixture {
    std::unique_ptr<QApplication> app;
    PanelStore store;
    std::unique_ptr<DisplayListEditor> editor;
    int emptyList = 0;
    int fullList = 0;
};

Fixture& Shared() {
    static Fixture* fixture = [] {
        auto* f = new Fixture;
        f->app = bench::OffscreenApplication();
        f->store = bench::MaxConfiguration();
        // Two more Input lists: an empty one and one holding every channel.
        f->emptyList = AppendRecord(f->store, ListTypeCode(SubType::Input), "Empty").value();
        f->fullList = AppendRecord(f->store, ListTypeCode(SubType::Input), "Every Input").value();
        DisplayList& all = f->store.lists(SubType::Input)[size_t(f->fullList)];
        all.channelCount = f->store.alpha(SubType::Input).count;
        all.channels.resize(size_t(all.channelCount));
        std::iota(all.channels.begin(), all.channels.end(), int16_t(0));

        f->editor = std::make_unique<DisplayListEditor>(f->store, "/tmp/", ErrorReporter{});
        bench::ShowAt(*f->editor, 880, 620);
        return f;
    }();
    return *fixture;
}

void OpenOn(Fixture& f, int list) {
    f.store.editorListType = ListTypeCode(SubType::Input);
    f.store.currentList = static_cast<int16_t>(list);
    f.editor->Open();
}

void BM_OpenOnInputList(benchmark::State& state) {
    Fixture& f = Shared();
    const int list = state.range(0) == 0 ? 0 : f.fullList;
    for (auto _ : state) {
        OpenOn(f, list);
        bench::Settle();
    }
    state.counters["available"] = f.editor->findChild<QTreeView*>("lvChannel")->model()->rowCount();
    state.counters["members"] = f.editor->findChild<QTreeView*>("lvList")->model()->rowCount();
}
// 0: a list of 64 channels; 1: a list of all 16383.
BENCHMARK(BM_OpenOnInputList)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_AddAllIntoEmptyList(benchmark::State& state) {
    Fixture& f = Shared();
    OpenOn(f, f.emptyList);
    for (auto _ : state) {
        state.PauseTiming();
        f.editor->RemoveAll();
        bench::Settle();
        state.ResumeTiming();
        f.editor->AddAll();
        bench::Settle();
    }
    state.counters["members"] = f.editor->findChild<QTreeView*>("lvList")->model()->rowCount();
}
BENCHMARK(BM_AddAllIntoEmptyList)->Unit(benchmark::kMillisecond);

void BM_CommitFullList(benchmark::State& state) {
    Fixture& f = Shared();
    OpenOn(f, f.emptyList);
    f.editor->AddAll();
    for (auto _ : state)
        f.editor->CommitEditedList();
    state.counters["channels"] = f.store.lists(SubType::Input)[size_t(f.emptyList)].channelCount;
}
BENCHMARK(BM_CommitFullList)->Unit(benchmark::kMillisecond);

void BM_FilterKeystroke(benchmark::State& state) {
    Fixture& f = Shared();
    OpenOn(f, 0);
    auto* filter = f.editor->findChild<QLineEdit*>("txtFilter");
    auto* view = f.editor->findChild<QTreeView*>("lvChannel");
    // Typing one more character, then deleting it again, in turn.
    const QString texts[2] = {QStringLiteral("1"), QStringLiteral("12")};
    int shown = 0;
    for (auto _ : state) {
        filter->setText(texts[shown % 2]);
        bench::Settle();
        ++shown;
    }
    filter->clear();
    state.counters["items"] = view->model()->rowCount();
}
BENCHMARK(BM_FilterKeystroke)->Unit(benchmark::kMillisecond);

} // namespace
