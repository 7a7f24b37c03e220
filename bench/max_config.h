#pragma once

#include <QApplication>

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>

#include "model/alpha_sort.h"
#include "model/list_records.h"
#include "tools/sim/demo_config.h"

// What the widget benchmarks share: an offscreen application and the largest
// configuration the emulator generates.
namespace lumeth::bench {

inline std::unique_ptr<QApplication> OffscreenApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "lumeth-bench";
    static char* argv[] = {name, nullptr};
    return std::make_unique<QApplication>(argc, argv);
}

// The emulator's "max" configuration (16383 channels per sub type), with the
// alpha tables sorted as a download leaves them.
inline PanelStore MaxStore() {
    PanelStore store = sim::MakeDemo("max").store;
    for (SubType s : kAllSubTypes) {
        AlphaTable& table = store.alpha(s);
        BuildAlphaTable(table, table.channelNames);
    }
    return store;
}

// Append an Input list holding Input channels 0 to `channels` - 1; returns
// its position.
inline int AppendInputList(PanelStore& store, const std::string& name, int channels) {
    const int position = AppendRecord(store, ListTypeCode(SubType::Input), name);
    DisplayList& list = store.lists(SubType::Input)[static_cast<size_t>(position)];
    list.channelCount = static_cast<int16_t>(channels);
    list.channels.resize(static_cast<size_t>(std::max(channels, 1)));
    std::iota(list.channels.begin(), list.channels.end(), int16_t(0));
    return position;
}

} // namespace lumeth::bench
