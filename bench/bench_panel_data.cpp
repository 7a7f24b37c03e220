// Load and save of a large configuration: 4 x 500 display lists of 64
// channels, 200 user groups of 40 lists, 500 templates of 32 buttons. The
// target is 10 ms or less each way, in memory and through a file.
#include <unistd.h>

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "files/json_document.h"
#include "files/panel_data_file.h"

namespace {

lumeth::PanelStore LargeStore() {
    using namespace lumeth;
    PanelStore s;
    s.ResetToDefaults();
    for (SubType t : kAllSubTypes) {
        s.listCount(t) = 500;
        s.lists(t).assign(500, DisplayList{});
        for (int i = 0; i < 500; ++i) {
            DisplayList& list = s.lists(t)[static_cast<size_t>(i)];
            list.name = "List " + std::to_string(i);
            list.channelCount = 64;
            list.channels.resize(64);
            for (int k = 0; k < 64; ++k) {
                list.channels[static_cast<size_t>(k)] = static_cast<int16_t>((i + k) % 1000);
            }
        }
    }
    s.userGroupCount = 200;
    s.ResizeUserGroups(200);
    for (size_t g = 0; g < 200; ++g) {
        s.userGroupNames[g] = "Group " + std::to_string(g);
        UserGroup& group = s.userGroups[g];
        group.listCount = 40;
        group.listIndexes.resize(40);
        group.listTypes.resize(40);
        for (size_t k = 0; k < 40; ++k) {
            group.listIndexes[k] = static_cast<int16_t>((g + k) % 500);
            group.listTypes[k] = ListTypeCode(kAllSubTypes[k % 4]);
        }
    }
    s.templateCount = 500;
    s.ResizeTemplates(500);
    for (size_t t = 0; t < 500; ++t) {
        s.templateNames[t] = "Template " + std::to_string(t);
        ButtonTemplate& tmpl = s.buttonTemplates[t];
        tmpl.number = static_cast<int16_t>(t);
        tmpl.buttonCount = 32;
        tmpl.buttons.assign(32, PanelButton{40, 1, "LABEL", 1, kNoChannel});
    }
    return s;
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

// The JSON document of the same configuration, for comparison.
void BM_JsonWrite(benchmark::State& state) {
    const lumeth::PanelStore store = LargeStore();
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::WriteJsonDocument(store));
    }
}
BENCHMARK(BM_JsonWrite)->Unit(benchmark::kMillisecond);

void BM_JsonRead(benchmark::State& state) {
    const std::string text = lumeth::WriteJsonDocument(LargeStore());
    lumeth::PanelStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lumeth::ReadJsonDocument(text, store));
    }
}
BENCHMARK(BM_JsonRead)->Unit(benchmark::kMillisecond);

} // namespace
