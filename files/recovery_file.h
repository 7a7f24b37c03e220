#pragma once

#include <string>
#include <string_view>

#include "model/failure.h"
#include "model/panel_snapshot.h"
#include "model/parts.h"

namespace lumeth {

// The file in the program's folder that keeps the unapplied edits until a
// download shows that the server module holds them, so that a crash, a killed
// process or a lost login loses nothing.
inline constexpr const char* kRecoveryFileName = "LumethEX-recovery.dat";

// What a recovery file holds: which upload parts were edited, and those parts.
struct RecoveredEdits {
    PartSet parts;
    PanelSnapshot edits;
};

// The file's bytes: a marker, the edited parts, the length and checksum of
// what follows, then the edited parts whole (the others are not written and
// are read back as the store's defaults).
std::string EncodeRecoveryFile(const RecoveredEdits& recovered);
// Read the bytes back; a damaged or foreign file is refused whole
// (InvalidFileFormat), never half read.
Status DecodeRecoveryFile(std::string_view bytes, RecoveredEdits& recovered);

// Replace the file at `path` atomically with `recovered`.
Status WriteRecoveryFile(const std::string& path, const RecoveredEdits& recovered);
// Read the file at `path` (FileNotFound when there is none).
Status ReadRecoveryFile(const std::string& path, RecoveredEdits& recovered);
// Remove the file; none there is no failure.
Status RemoveRecoveryFile(const std::string& path);

} // namespace lumeth
