// Link core speed: the alpha table download with its sort (next to the
// literal exchange sort), the framing over many small frames, and building
// the Apply messages for a large configuration.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "link/codec.h"
#include "link/decoders.h"
#include "link/session.h"
#include "model/alpha_sort.h"
#include "tests/link/alpha_sort_reference.h"
#include "tools/sim/demo_config.h"

namespace lumeth {
namespace {

class NullObserver : public SessionObserver {
public:
    void PartReceived(Part) override { ++changes; }
    void WriteErrorLog(std::string_view, std::string_view) override { ++errors; }
    void ReportError(std::string_view, std::string_view, const Failure&) override { ++errors; }
    void LogActivity(std::string_view, std::string_view) override {}
    long changes = 0;
    long errors = 0;
};

// Router-like channel names: many blanks and duplicates, mixed case.
std::vector<std::string> TiedNames(size_t n) {
    std::mt19937 rng(static_cast<unsigned>(n));
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_int_distribution<size_t> id(0, n / 8 + 1);
    std::vector<std::string> names(n);
    for (auto& name : names) {
        const int k = kind(rng);
        if (k < 2) {
            name = "";
        } else if (k < 4) {
            name = "SPARE";
        } else {
            const std::string base = "Mic " + std::to_string(id(rng));
            name = k < 7 ? base : "mic " + base.substr(4);
        }
    }
    return names;
}

void BM_AlphaDownload(benchmark::State& state) {
    const auto n = static_cast<size_t>(state.range(0));
    const std::string message = codec::AlphaTableMessage(SubType::Input, TiedNames(n), 12);
    const PanelStore store;
    for (auto _ : state) {
        const Decoded decoded = decode::AlphaTable(message, store);
        const auto* table = std::get_if<AlphaTable>(&decoded.value);
        if (!decoded.complete || table == nullptr || table->count != static_cast<int16_t>(n)) {
            state.SkipWithError("alpha table not accepted");
            break;
        }
        benchmark::DoNotOptimize(table->names.data());
    }
}
BENCHMARK(BM_AlphaDownload)->Arg(1024)->Arg(4096)->Arg(16383)->Unit(benchmark::kMillisecond);

void BM_AlphaSortLiteral(benchmark::State& state) {
    const auto n = static_cast<size_t>(state.range(0));
    std::vector<std::string> input = TiedNames(n);
    for (auto& name : input) {
        name = codec::FixedWidth(name, 12);
    }
    for (auto _ : state) {
        std::vector<std::string> names = input;
        std::vector<int16_t> numbers(n);
        for (size_t i = 0; i < n; ++i) {
            numbers[i] = static_cast<int16_t>(i);
        }
        testing::LiteralExchangeSort(names, numbers);
        benchmark::DoNotOptimize(numbers.data());
    }
}
BENCHMARK(BM_AlphaSortLiteral)
    ->Arg(1024)
    ->Arg(4096)
    ->Arg(16383)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// 100,000 small frames: polls, acknowledgements, password answers, server
// requests and unknown commands, arriving in 4 KB reads as from a socket.
void BM_DecodeSmallFrames(benchmark::State& state) {
    std::string stream;
    const std::string password = codec::PasswordMessage("pw1");
    const std::string request = codec::DataRequest(0, 0, 0);
    constexpr int kFrames = 100000;
    for (int i = 0; i < kFrames; ++i) {
        switch (i % 5) {
        case 0:
            stream += Char(Command::Poll);
            break;
        case 1:
            stream += Char(Command::Acknowledge1);
            break;
        case 2:
            stream += password;
            break;
        case 3:
            stream += request;
            break;
        default:
            stream += "\xA0\x01\x01\xFF";
            break;
        }
    }
    constexpr size_t kRead = 4096;
    for (auto _ : state) {
        PanelStore store;
        LinkState link;
        NullObserver observer;
        LinkSession session(store, link, observer);
        for (size_t at = 0; at < stream.size(); at += kRead) {
            session.Receive(std::string_view(stream).substr(at, kRead));
            while (!session.BufferEmpty()) {
                const size_t before = link.receiveBuffer.size();
                session.DecodeNext();
                if (link.receiveBuffer.size() == before) {
                    break;
                }
            }
            benchmark::DoNotOptimize(session.TakeOutgoing());
        }
        if (observer.errors != 0 || !session.BufferEmpty()) {
            state.SkipWithError("stream not decoded cleanly");
        }
    }
    state.SetItemsProcessed(state.iterations() * kFrames);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(stream.size()));
}
BENCHMARK(BM_DecodeSmallFrames)->Unit(benchmark::kMillisecond);

// 4 x 500 lists of 64 channels, 200 groups of 40 lists, 500 templates of 32
// buttons: the emulator's generated "large" set.
PanelStore LargeConfiguration() {
    return sim::MakeDemo("large").store;
}

void BM_BuildApplyMessages(benchmark::State& state) {
    const PanelStore store = LargeConfiguration();
    int64_t bytes = 0;
    for (auto _ : state) {
        const auto messages = codec::UploadMessages(store);
        for (const auto& m : messages) {
            bytes += static_cast<int64_t>(m.message.size());
        }
        benchmark::DoNotOptimize(messages.data());
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_BuildApplyMessages)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace lumeth
