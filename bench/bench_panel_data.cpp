// Load and save of a large configuration: 4 x 500 display lists of 64
// channels, 200 user groups of 40 lists, 500 templates of 32 buttons. The
// target is 10 ms or less each way, in memory and through a file.
#include <unistd.h>

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "files/file_io.h"
#include "files/json_document.h"
#include "files/panel_data_file.h"
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
lumeth::JsonDocumentOptions FetchOptions() {
    lumeth::JsonDocumentOptions options;
    options.includeAlphas = true;
    return options;
}

void BM_JsonWrite(benchmark::State& state) {
    const lumeth::PanelStore store = LargeStore();
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::WriteJsonDocument(store, FetchOptions()));
    }
    state.counters["MB"] =
        static_cast<double>(lumeth::WriteJsonDocument(store, FetchOptions()).size()) / 1e6;
}
BENCHMARK(BM_JsonWrite)->Unit(benchmark::kMillisecond);

// Streamed into a replaced file: written beside it, fsync, rename.
void BM_JsonWriteToFile(benchmark::State& state) {
    const lumeth::PanelStore store = LargeStore();
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
    const std::string text = lumeth::WriteJsonDocument(LargeStore(), FetchOptions());
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::ReadJsonDocument(text, store));
    }
}
BENCHMARK(BM_JsonRead)->Unit(benchmark::kMillisecond);

} // namespace
