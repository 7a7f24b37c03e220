#pragma once

#include <QApplication>

#include <memory>

#include "model/alpha_sort.h"
#include "model/panel_store.h"
#include "tools/sim/demo_config.h"

namespace lumeth::bench {

// The offscreen application the window benchmarks draw in.
inline std::unique_ptr<QApplication> OffscreenApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "lumeth_bench";
    static char* argv[] = {name, nullptr};
    return std::make_unique<QApplication>(argc, argv);
}

// Let the window draw what the last step changed.
inline void Settle() {
    QApplication::processEvents();
}

// Show `widget` at a fixed size, drawn once, so that the timed steps measure
// redraws only.
inline void ShowAt(QWidget& widget, int width, int height) {
    widget.resize(width, height);
    widget.show();
    Settle();
}

// The emulator's largest generated configuration, its channel names sorted as
// a download leaves them.
inline PanelStore MaxConfiguration() {
    sim::DemoResult demo = sim::MakeDemo("max");
    PanelStore store = std::move(demo.store);
    for (SubType s : kAllSubTypes) {
        AlphaTable& table = store.alpha(s);
        BuildAlphaTable(table, table.channelNames);
    }
    return store;
}

} // namespace lumeth::bench
