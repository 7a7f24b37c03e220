// The configuration as CSV files on the emulator's max configuration (16383
// channel names per sub type, 4 x 500 lists of 64 channels, 200 groups of 40
// lists, 500 templates of 32 keys). Target: export plus import in 1 s or less.
#include <QWidget>

#include <benchmark/benchmark.h>

#include "bench/max_configuration.h"
#include "files/csv_configuration.h"

namespace {

size_t TotalBytes(const lumeth::CsvTexts& texts) {
    size_t bytes = 0;
    for (const std::string& text : texts)
        bytes += text.size();
    return bytes;
}

void BM_CsvExportMax(benchmark::State& state) {
    const lumeth::PanelStore store = lumeth::bench::MaxConfiguration();
    lumeth::CsvTexts texts;
    for (auto _ : state) {
        if (!lumeth::ExportCsv(store, texts)) {
            state.SkipWithError("export failed");
            break;
        }
    }
    state.counters["bytes"] = static_cast<double>(TotalBytes(texts));
}
BENCHMARK(BM_CsvExportMax)->Unit(benchmark::kMillisecond);

void BM_CsvImportMax(benchmark::State& state) {
    lumeth::CsvTexts texts;
    if (!lumeth::ExportCsv(lumeth::bench::MaxConfiguration(), texts)) {
        state.SkipWithError("export failed");
        return;
    }
    lumeth::PanelStore store;
    for (auto _ : state) {
        if (lumeth::ImportCsv(texts, store)) {
            state.SkipWithError("import refused the export");
            break;
        }
    }
}
BENCHMARK(BM_CsvImportMax)->Unit(benchmark::kMillisecond);

// The round trip as the command line and the window run it.
void BM_CsvExportThenImportMax(benchmark::State& state) {
    const lumeth::PanelStore store = lumeth::bench::MaxConfiguration();
    lumeth::PanelStore back;
    for (auto _ : state) {
        lumeth::CsvTexts texts;
        if (!lumeth::ExportCsv(store, texts) || lumeth::ImportCsv(texts, back)) {
            state.SkipWithError("round trip failed");
            break;
        }
    }
}
BENCHMARK(BM_CsvExportThenImportMax)->Unit(benchmark::kMillisecond);

} // namespace
