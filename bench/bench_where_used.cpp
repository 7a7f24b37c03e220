// Where-used and the delete and move of whole display lists on the largest
// configuration the emulator generates (16383 channels per sub type, 500
// lists of each, 200 groups of 40 lists, 500 templates of 32 keys), plus one
// Input list holding every channel. Goals: where-used at most 20 ms, a delete
// with its group references fixed at most 50 ms (in the list editor,
// including its redraw).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>

#include <memory>
#include <numeric>

#include "bench/max_configuration.h"
#include "model/list_records.h"
#include "model/record_moves.h"
#include "model/record_names.h"
#include "model/where_used.h"
#include "ui/display_list_editor.h"
#include "ui/message_box.h"

using namespace lumeth;

namespace {

struct Fixture {
    std::unique_ptr<QApplication> app;
    PanelStore store;
};

Fixture& Shared() {
    static Fixture* fixture = [] {
        auto* f = new Fixture;
        f->app = bench::OffscreenApplication();
        f->store = bench::MaxConfiguration();
        const int every =
            AppendRecord(f->store, ListTypeCode(SubType::Input), "Every Input").value();
        DisplayList& all = f->store.lists(SubType::Input)[size_t(every)];
        all.channelCount = f->store.alpha(SubType::Input).count;
        all.channels.resize(size_t(all.channelCount));
        std::iota(all.channels.begin(), all.channels.end(), int16_t(0));
        return f;
    }();
    return *fixture;
}

void BM_WhereUsedChannel(benchmark::State& state) {
    const PanelStore& store = Shared().store;
    size_t uses = 0;
    for (auto _ : state) {
        const auto found = ChannelUses(store, SubType::Input, 100);
        const auto lines =
            WhereUsedLines(store, ChannelRecordName(store, SubType::Input, 100), found);
        benchmark::DoNotOptimize(lines.data());
        uses = found.size();
    }
    state.counters["uses"] = double(uses);
}
BENCHMARK(BM_WhereUsedChannel)->Unit(benchmark::kMillisecond);

void BM_WhereUsedList(benchmark::State& state) {
    const PanelStore& store = Shared().store;
    size_t uses = 0;
    for (auto _ : state) {
        const auto found = ListUses(store, SubType::Input, 3);
        const auto lines = WhereUsedLines(store, ListRecordName(store, SubType::Input, 3), found);
        benchmark::DoNotOptimize(lines.data());
        uses = found.size();
    }
    state.counters["uses"] = double(uses);
}
BENCHMARK(BM_WhereUsedList)->Unit(benchmark::kMillisecond);

// The core operation: the list goes, every group's entries follow.
void BM_DeleteListWithReferences(benchmark::State& state) {
    const PanelStore& base = Shared().store;
    PanelStore store;
    int changed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        store = base;
        state.ResumeTiming();
        changed = int(DeleteDisplayList(store, SubType::Input, 0).groupsChanged.size());
    }
    state.counters["groups changed"] = changed;
}
BENCHMARK(BM_DeleteListWithReferences)->Unit(benchmark::kMillisecond);

void BM_MoveListFirstToLast(benchmark::State& state) {
    PanelStore store = Shared().store;
    const int last = store.listCount(SubType::Input) - 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(MoveDisplayList(store, SubType::Input, 0, last).status.ok());
}
BENCHMARK(BM_MoveListFirstToLast)->Unit(benchmark::kMillisecond);

// What the operator waits for: Delete List in the editor on an Input list
// that groups use (the question answered Yes), until the editor shows the
// list after it with all 16383 available channels.
void BM_EditorDeleteList(benchmark::State& state) {
    Fixture& f = Shared();
    PanelStore store = f.store;
    DisplayListEditor editor(store, "/tmp/", ErrorReporter{});
    bench::ShowAt(editor, 880, 620);
    for (auto _ : state) {
        state.PauseTiming();
        store = f.store;
        store.editorListType = ListTypeCode(SubType::Input);
        store.currentList = 3;
        editor.Open();
        bench::Settle();
        MessageBox::setNextAnswer(QMessageBox::Yes);
        state.ResumeTiming();
        editor.DeleteList();
        bench::Settle();
    }
    state.counters["lists left"] = store.listCount(SubType::Input);
}
BENCHMARK(BM_EditorDeleteList)->Unit(benchmark::kMillisecond);

} // namespace
