#pragma once

#include <string>

#include "model/failure.h"
#include "tools/sim/sim_state.h"

namespace lumeth::sim {

// The emulator's state file: a panel data JSON document with the alpha
// tables and the password.

// Read `path` into `state`. On failure the detail says what is wrong with the
// file (one line) and `state` is unchanged. A document without a password is
// refused: the emulator could not serve a login.
Status LoadStateFile(const std::string& path, SimState& state);

// Write `state` to `path` atomically: a temporary file in the same folder,
// flushed to disk, then renamed over the old file, so an emulator killed at
// any moment leaves either the old or the new state. A new file is created
// 0600 (it holds the password). Returns "" or the error.
std::string SaveStateFile(const std::string& path, const SimState& state);

} // namespace lumeth::sim
