// The main window's four redraw operations on the largest configuration the
// emulator generates, with a 16383-channel Input list for the channel view.
// Each iteration includes the paint that follows, as the operator sees it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTreeWidget>
#include <QWidget>

#include <fstream>
#include <memory>
#include <numeric>

#include "app/main_views.h"
#include "bench/max_configuration.h"

using namespace lumeth;

namespace {

struct Fixture {
    std::unique_ptr<QApplication> app;
    PanelStore store;
    std::unique_ptr<QWidget> host;
    MainViews* views = nullptr;
    int bigList = 0;
};

Fixture& Shared() {
    static Fixture* fixture = [] {
        auto* f = new Fixture;
        f->app = bench::OffscreenApplication();
        f->store = bench::MaxConfiguration();
        // The channel view's worst case: one list holding every Input channel,
        // listed first in group 0.
        DisplayList all;
        all.name = "Every Input";
        all.channelCount = f->store.alpha(SubType::Input).count;
        all.channels.resize(static_cast<size_t>(all.channelCount));
        std::iota(all.channels.begin(), all.channels.end(), int16_t(0));
        auto& inputs = f->store.lists(SubType::Input);
        inputs.resize(static_cast<size_t>(f->store.listCount(SubType::Input)));
        inputs.push_back(std::move(all));
        f->bigList = static_cast<int>(inputs.size()) - 1;
        f->store.listCount(SubType::Input) = static_cast<int16_t>(inputs.size());
        UserGroup& group = f->store.groups.userGroups[0];
        group.listIndexes.resize(static_cast<size_t>(group.listCount));
        group.listTypes.resize(static_cast<size_t>(group.listCount));
        group.listIndexes.insert(group.listIndexes.begin(), static_cast<int16_t>(f->bigList));
        group.listTypes.insert(group.listTypes.begin(), ListTypeCode(SubType::Input));
        ++group.listCount;

        f->host = std::make_unique<QWidget>();
        f->views = new MainViews(f->store, {}, f->host.get());
        f->views->groups()->setGeometry(0, 30, 380, 660);
        f->views->displayLists()->setGeometry(400, 30, 380, 660);
        f->views->items()->setGeometry(800, 30, 380, 660);
        bench::ShowAt(*f->host, 1200, 700);
        return f;
    }();
    return *fixture;
}

double ResidentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * 4096.0 / (1024.0 * 1024.0);
}

void BM_DisplayUserGroups(benchmark::State& state) {
    Fixture& f = Shared();
    for (auto _ : state) {
        f.views->DisplayUserGroups();
        bench::Settle();
    }
    state.counters["groups"] = f.views->groups()->topLevelItemCount();
}
BENCHMARK(BM_DisplayUserGroups)->Unit(benchmark::kMillisecond);

void BM_ShowGroupData(benchmark::State& state) {
    Fixture& f = Shared();
    f.store.currentListType = ListTypeCode(SubType::Input);
    for (auto _ : state) {
        f.views->ShowGroupData(0);
        bench::Settle();
    }
    state.counters["lists"] = f.views->displayLists()->topLevelItemCount();
}
BENCHMARK(BM_ShowGroupData)->Unit(benchmark::kMillisecond);

void BM_ShowDisplayListData(benchmark::State& state) {
    Fixture& f = Shared();
    f.store.currentListType = ListTypeCode(SubType::Input);
    for (auto _ : state) {
        f.views->ShowDisplayListData(f.bigList);
        bench::Settle();
    }
    state.counters["channels"] = f.views->items()->topLevelItemCount();
}
BENCHMARK(BM_ShowDisplayListData)->Unit(benchmark::kMillisecond);

void BM_DetermineSubType(benchmark::State& state) {
    Fixture& f = Shared();
    for (auto _ : state) {
        f.store.currentUserGroup = 0;
        f.views->DetermineSubType();
        benchmark::DoNotOptimize(f.store.currentListType);
    }
}
BENCHMARK(BM_DetermineSubType)->Unit(benchmark::kMicrosecond);

// A whole drill-down as after a download: groups, sub type, lists, channels.
void BM_FullRedraw(benchmark::State& state) {
    Fixture& f = Shared();
    for (auto _ : state) {
        f.views->DisplayUserGroups();
        f.store.currentUserGroup = 0;
        f.views->DetermineSubType();
        f.views->ShowGroupData(0);
        f.views->ShowDisplayListData(f.bigList);
        bench::Settle();
    }
    state.counters["channels"] = f.views->items()->topLevelItemCount();
    state.counters["rss_MB"] = ResidentMegabytes();
}
BENCHMARK(BM_FullRedraw)->Unit(benchmark::kMillisecond);

} // namespace
