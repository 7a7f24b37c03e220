// The operator's safety net on the emulator's generated configurations:
// Review Changes, the unapplied indicator and `lumeth-cli diff` between "max"
// and a copy with 100 scattered edits, one undo step on "large", a download
// over unapplied edits of "large" kept as one undo step, the memory 50 steps hold, and keeping the
// unapplied edits of "max" in the recovery file.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <unistd.h>
#include <utility>

#include <QTemporaryDir>

#include "app/main_window.h"
#include "bench/max_configuration.h"
#include "files/panel_data_file.h"
#include "files/recovery_file.h"
#include "link/connection.h"
#include "model/kept_edits.h"
#include "model/server_mirror.h"
#include "model/store_diff.h"
#include "model/undo_history.h"
#include "ui/changes_dialog.h"
#include "ui/file_dialog.h"

using namespace lumeth;

namespace {

// 100 edits spread over the lists, groups and templates of every sub type.
PanelStore Edited(PanelStore store) {
    for (int k = 0; k < 100; ++k) {
        const SubType s = kAllSubTypes[static_cast<size_t>(k % 4)];
        const int lists = store.listCount(s);
        DisplayList& list = store.lists(s)[static_cast<size_t>((k * 37) % lists)];
        switch (k % 5) {
        case 0:
            list.name = "Edited " + std::to_string(k);
            break;
        case 1: // a channel removed
            if (list.channelCount > 0)
                list.channels.erase(list.channels.begin() + list.channelCount / 2);
            list.channelCount = static_cast<int16_t>(std::max(list.channelCount - 1, 0));
            break;
        case 2: // two channels swapped
            if (list.channelCount > 2)
                std::swap(list.channels[0], list.channels[size_t(list.channelCount - 1)]);
            break;
        case 3: { // a button's label
            ButtonTemplate& t =
                store.templates
                    .buttonTemplates[static_cast<size_t>((k * 13) % store.templates.templateCount)];
            t.buttons[static_cast<size_t>(k % std::max<int>(t.buttonCount, 1))].label = "NEW";
            break;
        }
        case 4: { // a list added to a group
            UserGroup& g =
                store.groups.userGroups[static_cast<size_t>((k * 7) % store.groups.userGroupCount)];
            g.listIndexes.resize(size_t(g.listCount));
            g.listTypes.resize(size_t(g.listCount));
            g.listIndexes.push_back(static_cast<int16_t>(k % lists));
            g.listTypes.push_back(ListTypeCode(s));
            ++g.listCount;
            break;
        }
        }
    }
    return store;
}

struct MaxPair {
    PanelStore before = bench::MaxConfiguration();
    PanelStore after = Edited(before);
};

const MaxPair& Max() {
    static const MaxPair* pair = new MaxPair;
    return *pair;
}

PanelStore Large() {
    return std::move(sim::MakeDemo("large").store);
}

// The report alone, as the window and `diff` make it.
void BM_DiffMaxWith100Edits(benchmark::State& state) {
    const MaxPair& pair = Max();
    size_t lines = 0;
    for (auto _ : state) {
        lines = DiffStores(pair.before, pair.after).size();
        benchmark::DoNotOptimize(lines);
    }
    state.counters["lines"] = double(lines);
}
BENCHMARK(BM_DiffMaxWith100Edits)->Unit(benchmark::kMillisecond);

// The unapplied indicator after a step on "max": which parts differ, as sent,
// from what the server module holds (the same comparison as Review's report).
void BM_UnappliedMaxWith100Edits(benchmark::State& state) {
    const MaxPair& pair = Max();
    ServerMirror mirror(pair.before);
    size_t parts = 0;
    for (auto _ : state) {
        parts = static_cast<size_t>(mirror.Unapplied(pair.after).size());
        benchmark::DoNotOptimize(parts);
    }
    state.counters["parts"] = double(parts);
}
BENCHMARK(BM_UnappliedMaxWith100Edits)->Unit(benchmark::kMillisecond);

// `lumeth-cli diff A.dat B.dat`: both files decoded, then the report.
void BM_DiffCommandMaxFiles(benchmark::State& state) {
    const std::string a = EncodePanelData(Max().before);
    const std::string b = EncodePanelData(Max().after);
    for (auto _ : state) {
        PanelStore before;
        PanelStore after;
        LoadPanelData(a, before);
        LoadPanelData(b, after);
        benchmark::DoNotOptimize(DiffStores(before, after));
    }
}
BENCHMARK(BM_DiffCommandMaxFiles)->Unit(benchmark::kMillisecond);

QApplication& Application() {
    // Never destroyed: run among the exit handlers, after Qt's own statics
    // are gone, its destructor crashes the process at the end of the run.
    static QApplication* app = bench::OffscreenApplication().release();
    return *app;
}

// Review Changes: the report put into the dialog's text view.
void BM_ReviewChangesMax(benchmark::State& state) {
    Application();
    ChangesDialog dialog;
    for (auto _ : state) {
        dialog.setLines(DiffStores(Max().before, Max().after));
        QApplication::processEvents();
    }
}
BENCHMARK(BM_ReviewChangesMax)->Unit(benchmark::kMillisecond);

// One undo or redo step on "large", alternately.
void BM_UndoStepLarge(benchmark::State& state) {
    PanelStore store = Large();
    UndoHistory history;
    history.Record(TakeSnapshot(store));
    store.lists(SubType::Input)[0].name = "Edited";
    for (auto _ : state) {
        if (history.canUndo())
            history.Undo(store);
        else
            history.Redo(store);
    }
}
BENCHMARK(BM_UndoStepLarge)->Unit(benchmark::kMillisecond);

// The same in the window, with the redraw of its views: Load All of "large"
// is the step, undone and redone alternately.
void BM_WindowUndoStepLarge(benchmark::State& state) {
    Application();
    QTemporaryDir home;
    const QString path = home.filePath("large.dat");
    if (!SavePanelDataFile(path.toStdString(), Large())) {
        state.SkipWithError("cannot write large.dat");
        return;
    }
    MainWindow window((home.path() + "/").toStdString());
    window.show();
    FileDialog::setNextFileName(path);
    window.LoadAll();
    QApplication::processEvents();
    for (auto _ : state) {
        if (window.history().canUndo())
            window.Undo();
        else
            window.Redo();
        QApplication::processEvents();
    }
}
BENCHMARK(BM_WindowUndoStepLarge)->Unit(benchmark::kMillisecond);

// A download of the six parts Apply sends, each different from the "large"
// configuration loaded from a file and not yet applied, as the window takes
// it: the edits each part replaces join one undo step, the views are redrawn
// and the unapplied indicator follows. The undo that brings the edits back
// runs between iterations, untimed.
void BM_WindowDownloadOverEditsLarge(benchmark::State& state) {
    Application();
    QTemporaryDir home;
    const QString path = home.filePath("large.dat");
    const PanelStore local = Large();
    if (!SavePanelDataFile(path.toStdString(), local)) {
        state.SkipWithError("cannot write large.dat");
        return;
    }
    PanelStore server = local;
    for (SubType s : kAllSubTypes)
        server.lists(s)[0].name = "Elsewhere";
    server.groups.userGroupNames[0] = "Elsewhere";
    server.templates.templateNames[0] = "Elsewhere";
    const PanelSnapshot downloaded = TakeSnapshot(server);

    MainWindow window((home.path() + "/").toStdString());
    window.show();
    FileDialog::setNextFileName(path);
    window.LoadAll();
    QApplication::processEvents();
    Connection& link = window.connection();
    const size_t depth = window.history().undoDepth();
    for (auto _ : state) {
        ForEachPart(kUploadParts, [&](Part part) {
            emit link.partArriving(part);
            RestoreParts(downloaded, PartSet{part}, window.store());
            emit link.partReceived(part);
        });
        state.PauseTiming();
        if (window.history().undoDepth() != depth + 1 || window.hasUnappliedChanges()) {
            state.SkipWithError("the download was not kept as an undo step");
            break;
        }
        window.Undo();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_WindowDownloadOverEditsLarge)->Unit(benchmark::kMillisecond);

double ResidentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// 50 steps recorded on "large", each a different list edited, as the window
// records them (the state before each step, sharing the parts it left alone).
void BM_FiftyStepsLargeResident(benchmark::State& state) {
    double grown = 0;
    double resident = 0;
    for (auto _ : state) {
        PanelStore store = Large();
        const double before = ResidentMegabytes();
        UndoHistory history;
        PanelSnapshot base = TakeSnapshot(store);
        for (int k = 0; k < 50; ++k) {
            store.lists(kAllSubTypes[size_t(k % 4)])[size_t(k)].name = "Step " + std::to_string(k);
            PanelSnapshot now = TakeSnapshot(store, &base);
            history.Record(std::exchange(base, std::move(now)));
        }
        resident = ResidentMegabytes();
        grown = resident - before;
        benchmark::DoNotOptimize(history.undoDepth());
    }
    state.counters["history_MB"] = grown;
    state.counters["resident_MB"] = resident;
}
BENCHMARK(BM_FiftyStepsLargeResident)->Unit(benchmark::kMillisecond)->Iterations(1);

// The recovery file for "max" with every editable part edited, written
// atomically (temporary file, fsync, rename) as the window's timer does.
void BM_WriteRecoveryFileMax(benchmark::State& state) {
    QTemporaryDir folder;
    const std::string path = folder.path().toStdString() + "/" + kRecoveryFileName;
    const RecoveredEdits edits{kUploadParts, TakeSnapshot(Max().after)};
    for (auto _ : state) {
        if (!WriteRecoveryFile(path, edits)) {
            state.SkipWithError("recovery file not written");
            break;
        }
    }
}
BENCHMARK(BM_WriteRecoveryFileMax)->Unit(benchmark::kMillisecond);

// What each recorded step costs the window to keep the edits up to date
// (the file itself is written later, by the timer).
void BM_KeptEditsNoteMax(benchmark::State& state) {
    KeptEdits kept(Max().before);
    PanelStore store = Max().before;
    int k = 0;
    for (auto _ : state) {
        store.groups.userGroupNames[0] = "Step " + std::to_string(++k);
        benchmark::DoNotOptimize(kept.Note(store));
    }
}
BENCHMARK(BM_KeptEditsNoteMax)->Unit(benchmark::kMillisecond);

} // namespace
