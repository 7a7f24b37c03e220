#pragma once

#include <string>
#include <string_view>

#include "model/failure.h"
#include "tools/sim/sim_state.h"

namespace lumeth::sim {

// The password of every demo configuration.
inline constexpr std::string_view kDemoPassword = "studio";

// A demo configuration by name:
//  "demo"  the bundled demo document, compiled into the binary;
//  "large" 4 alpha tables of 1024 channels, 4 x 500 display lists of 64
//          channels, 200 user groups of 40 lists, 500 templates of 32 buttons;
//  "max"   as large, but alpha tables of 16383 channels with many blank and
//          duplicate names.
// The generated sets are the same on every run.
struct DemoResult {
    Status status;
    PanelStore store;
    std::string password;
};
DemoResult MakeDemo(std::string_view name);

// The bundled demo document's text (generated at build time).
std::string_view BuiltInDemoDocument();

} // namespace lumeth::sim
