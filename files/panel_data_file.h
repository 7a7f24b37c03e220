#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"
#include "model/store_check.h"

namespace lumeth {

inline constexpr const char* kDefaultPanelDataFileName = "LumethEX.dat";

// Layout constants of the file.
inline constexpr int16_t kPanelDataMarker = 140;
inline constexpr int16_t kPanelDataVersionEscape = 16383;
inline constexpr int16_t kPanelDataVersion = 3;

// Result of reading a panel data file.
enum class LoadOutcome {
    Loaded,       // the whole file was read
    NoFile,       // no file of that name: nothing done, the store untouched
    NotPanelData, // the marker is not 140: the store is left in its default state
    Failed,       // I/O error or truncated: defaults plus what was read
};

struct LoadResult {
    LoadOutcome outcome = LoadOutcome::Loaded;
    int version = 3;
    Status status; // failure detail for NotPanelData and Failed
    // What shows the file is damaged though it reads to the end: a negative
    // count (stored as read all the same) and bytes after the last template.
    std::vector<CheckFinding> damage;
};

// The parts a file of `version` holds: before version 3 there are no Opto
// and Relay display lists (a load leaves their single default list).
PartSet PanelDataSections(int version);

// Load `path` into `store` (ResetToDefaults first, then versions 0..3).
LoadResult LoadPanelDataFile(const std::string& path, PanelStore& store);
// Same, from bytes already in memory.
LoadResult LoadPanelData(std::string_view bytes, PanelStore& store);

// Encode `store` as a version-3 panel data file.
std::string EncodePanelData(const PanelStore& store);
// Write `store` to `path` as version 3: written to a temporary file in the same
// folder and renamed over the target, so a failed save keeps the old file.
Status SavePanelDataFile(const std::string& path, const PanelStore& store);

} // namespace lumeth
