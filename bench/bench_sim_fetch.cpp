// A full fetch from the emulator over loopback: the administrator's
// Connection (decode timer and all) against lumeth-sim's server, in one
// process. The administrator decodes one message per 10 ms tick, so eleven
// answers after the identity exchange cannot take less than 110 ms; the
// benchmark reports each set next to that floor.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <memory>
#include <string>

#include "app/safe_apply.h"
#include "app/server_reader.h"
#include "files/error_log.h"
#include "link/connection.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/sim_server.h"

namespace {

constexpr double kFloorMs = 11 * 10.0;
constexpr int kAnswers = 11;

QCoreApplication& App() {
    static int argc = 1;
    static char name[] = "bench_sim_fetch";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    return app;
}

// The emulator serving a demo set on a free loopback port of this process.
struct Emulator {
    lumeth::sim::SimState state;
    std::unique_ptr<lumeth::sim::SimServer> server;

    // Empty, or why it could not start.
    std::string Start(const char* demoName) {
        lumeth::sim::DemoResult demo = lumeth::sim::MakeDemo(demoName);
        if (!demo.status) {
            return demo.status.failure().detail;
        }
        state.Reset(std::move(demo.store), demo.password);
        lumeth::sim::SimServerOptions options;
        options.pollIntervalMs = 0;
        server = std::make_unique<lumeth::sim::SimServer>(state, options);
        QString error;
        bool inUse = false;
        return server->Listen("127.0.0.1", 0, error, inUse) ? std::string() : error.toStdString();
    }
};

void BM_SimFetch(benchmark::State& st, const char* demoName) {
    App();
    Emulator emulator;
    if (const std::string error = emulator.Start(demoName); !error.empty()) {
        st.SkipWithError(error.c_str());
        return;
    }
    const lumeth::sim::SimServer& server = *emulator.server;
    QTemporaryDir folder;
    lumeth::ErrorLog log(folder.path().toStdString() + "/");

    double totalMs = 0;
    for (auto _ : st) {
        lumeth::PanelStore store;
        lumeth::LinkState link;
        link.serverAddress = "127.0.0.1";
        link.serverPort = server.port();
        lumeth::Connection connection(store, link, log);
        int answers = 0;
        QEventLoop loop;
        QObject::connect(&connection, &lumeth::Connection::partReceived, &loop, [&] {
            if (++answers == kAnswers) {
                loop.quit();
            }
        });
        QTimer::singleShot(120000, &loop, &QEventLoop::quit);

        const auto start = std::chrono::steady_clock::now();
        connection.Connect();
        loop.exec();
        const auto end = std::chrono::steady_clock::now();
        if (answers != kAnswers || link.AnyPending()) {
            st.SkipWithError("the fetch did not complete");
            break;
        }
        const double ms = std::chrono::duration<double, std::milli>(end - start).count();
        st.SetIterationTime(ms / 1000.0);
        totalMs += ms;
        connection.Disconnect();
        // Let the server see the close before the next connection.
        QCoreApplication::processEvents();
    }
    const double meanMs = totalMs / static_cast<double>(st.iterations());
    st.counters["fetch_ms"] = meanMs;
    st.counters["floor_ms"] = kFloorMs;
    st.counters["x_floor"] = meanMs / kFloorMs;
}

// Runs lumeth-cli with `args` to its end, serving this process's events
// meanwhile; returns the wall time in ms, or a negative value on failure.
// `tty` "1" has it draw its progress line as on a terminal.
double RunCli(const QStringList& args, const QString& folder, const char* tty = "0") {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("LUMETH_PASSWORD", "studio");
    env.insert("LUMETH_CLI_TTY", tty);
    env.insert("XDG_DATA_HOME", folder); // its error log stays in the bench's folder
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(folder);
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(120000, &loop, &QEventLoop::quit);
    const auto start = std::chrono::steady_clock::now();
    process.start(QStringLiteral(LUMETH_CLI_PATH), args);
    loop.exec();
    const auto end = std::chrono::steady_clock::now();
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(2000);
        return -1;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return -1;
    }
    return std::chrono::duration<double, std::milli>(end - start).count();
}

// The emulator serving "large"; false (the benchmark skipped) when it cannot start.
bool StartLarge(benchmark::State& st, Emulator& emulator) {
    App();
    if (const std::string error = emulator.Start("large"); !error.empty()) {
        st.SkipWithError(error.c_str());
        return false;
    }
    return true;
}

// `lumeth-cli fetch -o OUT` from the emulator.
QStringList FetchArguments(const Emulator& emulator, const char* out = "large.json") {
    return {"fetch", "-o", out, "--server",
            QString("127.0.0.1:%1").arg(emulator.server->port())};
}

// The whole `lumeth-cli fetch -o large.json` process against the emulator
// (here in this process): log in, download, write the JSON document. Target:
// within 1.3 times the decode-tick floor, plus what starting the process
// costs (measured as `lumeth-cli --help`). Also with OUT "-" (the document
// through a pipe to this process) and with the progress line drawn.
void BM_CliFetchProcess(benchmark::State& st, const char* out, const char* tty) {
    Emulator emulator;
    if (!StartLarge(st, emulator))
        return;
    QTemporaryDir folder;
    const QStringList fetch = FetchArguments(emulator, out);
    double startMs = 0;
    double fetchMs = 0;
    for (auto _ : st) {
        const double start = RunCli({"--help"}, folder.path());
        const double ms = RunCli(fetch, folder.path(), tty);
        if (start < 0 || ms < 0) {
            st.SkipWithError("lumeth-cli failed");
            return;
        }
        st.SetIterationTime(ms / 1000.0);
        startMs += start;
        fetchMs += ms;
    }
    const auto n = static_cast<double>(st.iterations());
    st.counters["fetch_ms"] = fetchMs / n;
    st.counters["start_ms"] = startMs / n;
    st.counters["target_ms"] = 1.3 * kFloorMs + startMs / n;
    st.counters["x_target"] = (fetchMs / n) / (1.3 * kFloorMs + startMs / n);
}

// `lumeth-cli apply large.json` against `apply large.json --base large.json`
// (a fetch of the emulator's "large" set, so nothing conflicts and all six
// parts go out), each with its backup and read-back. Target: --base costs at
// most one fetch more (extra_ms <= fetch_ms); it reuses the login's download,
// so it should cost about nothing.
void BM_CliApplyWithBase(benchmark::State& st) {
    App();
    Emulator emulator;
    const std::string error = emulator.Start("large");
    if (!error.empty()) {
        st.SkipWithError(error.c_str());
        return;
    }
    const QStringList server{"--server", QString("127.0.0.1:%1").arg(emulator.server->port())};
    QTemporaryDir folder;
    const QStringList fetch = QStringList{"fetch", "-o", "large.json"} + server;
    const QStringList apply = QStringList{"apply", "large.json"} + server;
    const QStringList withBase = apply + QStringList{"--base", "large.json"};
    double fetchMs = 0;
    double applyMs = 0;
    double baseMs = 0;
    for (auto _ : st) {
        const double f = RunCli(fetch, folder.path());
        const double a = RunCli(apply, folder.path());
        const double b = RunCli(withBase, folder.path());
        if (f < 0 || a < 0 || b < 0) {
            st.SkipWithError("lumeth-cli failed");
            return;
        }
        st.SetIterationTime(b / 1000.0);
        fetchMs += f;
        applyMs += a;
        baseMs += b;
    }
    const auto n = static_cast<double>(st.iterations());
    st.counters["fetch_ms"] = fetchMs / n;
    st.counters["apply_ms"] = applyMs / n;
    st.counters["base_ms"] = baseMs / n;
    st.counters["extra_ms"] = (baseMs - applyMs) / n;
    st.counters["x_fetch"] = ((baseMs - applyMs) / n) / (fetchMs / n);
}

// The window's Compare with Server Module on "large" without its dialogs: a
// second connection reads everything (ServerReader) and the report compares
// it with the window's configuration (one list renamed) and with what was
// received before. Target: within 1.3 times the whole `lumeth-cli fetch`
// process, run alongside each time.
void BM_CompareWithServer(benchmark::State& st) {
    Emulator emulator;
    if (!StartLarge(st, emulator))
        return;
    QTemporaryDir folder;
    lumeth::ErrorLog log(folder.path().toStdString() + "/");
    const lumeth::PanelStore base = emulator.state.store();
    lumeth::PanelStore mine = base;
    mine.listTable(lumeth::SubType::Input).displayLists[0].name = "Renamed";
    const QStringList fetch = FetchArguments(emulator);
    double compareMs = 0;
    double cliMs = 0;
    size_t lines = 0;
    for (auto _ : st) {
        lumeth::ServerReader reader(log);
        bool ok = false;
        QEventLoop loop;
        QObject::connect(&reader, &lumeth::ServerReader::finished, &loop, [&](bool done) {
            ok = done;
            loop.quit();
        });
        const auto start = std::chrono::steady_clock::now();
        reader.Start("127.0.0.1", emulator.server->port(), emulator.state.password());
        loop.exec();
        lines =
            ok ? lumeth::SafeApply::CompareLines(base, lumeth::kUploadParts, reader.store(), mine)
                     .size()
               : 0;
        const auto end = std::chrono::steady_clock::now();
        const double cli = RunCli(fetch, folder.path());
        if (!ok || lines == 0 || cli < 0) {
            st.SkipWithError("the comparison or the fetch failed");
            return;
        }
        const double ms = std::chrono::duration<double, std::milli>(end - start).count();
        st.SetIterationTime(ms / 1000.0);
        compareMs += ms;
        cliMs += cli;
        QCoreApplication::processEvents();
    }
    const auto n = static_cast<double>(st.iterations());
    st.counters["compare_ms"] = compareMs / n;
    st.counters["cli_fetch_ms"] = cliMs / n;
    st.counters["x_cli_fetch"] = compareMs / cliMs;
    st.counters["lines"] = static_cast<double>(lines);
}

} // namespace

BENCHMARK_CAPTURE(BM_CliFetchProcess, file, "large.json", "0")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_CliFetchProcess, stdout, "-", "0")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_CliFetchProcess, progress_line, "large.json", "1")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK(BM_CliApplyWithBase)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_CompareWithServer)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK_CAPTURE(BM_SimFetch, large, "large")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_SimFetch, max, "max")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
