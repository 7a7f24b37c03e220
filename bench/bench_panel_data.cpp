// Load and save of a large configuration: 4 x 500 display lists of 64
// channels, 200 user groups of 40 lists, 500 templates of 32 buttons. The
// target is 10 ms or less each way for the panel data file, in memory and
// through a file; the JSON document's targets are given below.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "files/check_report.h"
#include "files/file_io.h"
#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "model/store_check.h"
#include "tools/sim/demo_config.h"

namespace {

// The emulator's generated "large" set.
lumeth::PanelStore LargeStore() {
    return lumeth::sim::MakeDemo("large").store;
}

std::string TempPath() {
    return (std::filesystem::temp_directory_path() /
            ("lumeth-bench-" + std::to_string(getpid()) + ".dat"))
        .string();
}

void BM_EncodeInMemory(benchmark::State& state) {
    const lumeth::PanelStore store = LargeStore();
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::EncodePanelData(store));
    }
    state.counters["bytes"] = static_cast<double>(lumeth::EncodePanelData(store).size());
}
BENCHMARK(BM_EncodeInMemory)->Unit(benchmark::kMillisecond);

void BM_LoadInMemory(benchmark::State& state) {
    const std::string bytes = lumeth::EncodePanelData(LargeStore());
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::LoadPanelData(bytes, store));
    }
}
BENCHMARK(BM_LoadInMemory)->Unit(benchmark::kMillisecond);

void BM_SaveToFile(benchmark::State& state) {
    const lumeth::PanelStore store = LargeStore();
    const std::string path = TempPath();
    for (auto _ : state) {
        if (!lumeth::SavePanelDataFile(path, store).ok()) {
            state.SkipWithError("save failed");
            break;
        }
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_SaveToFile)->Unit(benchmark::kMillisecond);

void BM_LoadFromFile(benchmark::State& state) {
    const std::string path = TempPath();
    if (!lumeth::SavePanelDataFile(path, LargeStore()).ok()) {
        state.SkipWithError("save failed");
        return;
    }
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::LoadPanelDataFile(path, store));
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_LoadFromFile)->Unit(benchmark::kMillisecond);

// The JSON document of the same configuration as `lumeth-cli fetch -o`
// writes it (with the channel names). Targets: the document 2.5 MB or less,
// written in 20 ms or less, read in 50 ms or less.
// The large set as a fetch receives it: the download keeps names at their
// wire width (16 for lists, groups and templates, 8 for labels, the longest
// name for the channel names).
lumeth::PanelStore FetchedLargeStore() {
    lumeth::PanelStore store = LargeStore();
    const auto pad = [](std::string& text, size_t width) { text.resize(width, ' '); };
    for (lumeth::SubType s : lumeth::kAllSubTypes) {
        for (lumeth::DisplayList& list : store.lists(s)) {
            pad(list.name, lumeth::kNameWidth);
        }
        auto& names = store.alpha(s).channelNames;
        size_t width = 0;
        for (const std::string& name : names) {
            width = std::max(width, name.size());
        }
        for (std::string& name : names) {
            pad(name, width);
        }
    }
    for (std::string& name : store.groups.userGroupNames) {
        pad(name, lumeth::kNameWidth);
    }
    for (std::string& name : store.templates.templateNames) {
        pad(name, lumeth::kNameWidth);
    }
    for (lumeth::ButtonTemplate& tmpl : store.templates.buttonTemplates) {
        for (lumeth::PanelButton& button : tmpl.buttons) {
            pad(button.label, lumeth::kLabelWidth);
        }
    }
    return store;
}

lumeth::JsonDocumentOptions FetchOptions() {
    lumeth::JsonDocumentOptions options;
    options.includeAlphas = true;
    return options;
}

void BM_JsonWrite(benchmark::State& state) {
    const lumeth::PanelStore store = FetchedLargeStore();
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::WriteJsonDocument(store, FetchOptions()));
    }
    state.counters["MB"] =
        static_cast<double>(lumeth::WriteJsonDocument(store, FetchOptions()).size()) / 1e6;
}
BENCHMARK(BM_JsonWrite)->Unit(benchmark::kMillisecond);

// Streamed into a replaced file: written beside it, fsync, rename.
void BM_JsonWriteToFile(benchmark::State& state) {
    const lumeth::PanelStore store = FetchedLargeStore();
    const std::string path = TempPath() + ".json";
    for (auto _ : state) {
        const lumeth::Status written = lumeth::ReplaceFile(path, [&](const lumeth::ByteSink& sink) {
            return lumeth::WriteJsonDocument(store, FetchOptions(), sink);
        });
        if (!written) {
            state.SkipWithError(written.failure().detail.c_str());
            break;
        }
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_JsonWriteToFile)->Unit(benchmark::kMillisecond);

void BM_JsonRead(benchmark::State& state) {
    const std::string text = lumeth::WriteJsonDocument(FetchedLargeStore(), FetchOptions());
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::ReadJsonDocument(text, store));
    }
}
BENCHMARK(BM_JsonRead)->Unit(benchmark::kMillisecond);

// A document whose one string runs for the argument's MiB: refused where the
// string passes the longest value, so the time does not grow with it.
void BM_JsonRefuseLongString(benchmark::State& state) {
    const std::string text = R"({"format": "lumeth-panel-data", "version": 1, "password": ")" +
                             std::string(static_cast<size_t>(state.range(0)) << 20, 'x') + "\"}";
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::ReadJsonDocument(text, store));
    }
}
BENCHMARK(BM_JsonRefuseLongString)->Arg(1)->Arg(256)->Unit(benchmark::kMicrosecond);

// `lumeth-cli check` on the emulator's largest configuration and on one
// past every 14-bit count: the checks stay linear in the entries.
void BM_CheckMax(benchmark::State& state) {
    const lumeth::PanelStore store = lumeth::sim::MakeDemo("max").store;
    // What check prints: the findings, their grouped lines and the count.
    for (auto _ : state) {
        const std::vector<lumeth::CheckFinding> findings = lumeth::CheckStore(store, true);
        benchmark::DoNotOptimize(lumeth::CheckReportLines(findings, store));
        benchmark::DoNotOptimize(lumeth::CheckSummary(findings));
    }
}
BENCHMARK(BM_CheckMax)->Unit(benchmark::kMillisecond);

void BM_CheckPastTheLimits(benchmark::State& state) {
    constexpr int16_t kPast = 20000;
    lumeth::PanelStore store;
    for (lumeth::SubType s : lumeth::kAllSubTypes) {
        store.listCount(s) = kPast;
        store.lists(s).assign(kPast, lumeth::DisplayList{1, "List", {0}});
    }
    store.lists(lumeth::SubType::Input)[0] =
        lumeth::DisplayList{kPast, "Wide", std::vector<int16_t>(kPast, 0)};
    store.groups.userGroupCount = kPast;
    store.groups.Resize(kPast);
    store.groups.userGroups.assign(kPast, lumeth::UserGroup{1, {0}, {11}});
    store.templates.templateCount = kPast;
    store.templates.Resize(kPast);
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::CheckStore(store, false));
    }
}
BENCHMARK(BM_CheckPastTheLimits)->Unit(benchmark::kMillisecond);

} // namespace
