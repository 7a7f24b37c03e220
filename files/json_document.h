#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "files/file_io.h"
#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// The panel configuration as a diffable JSON document ("lumeth-panel-data",
// version 1). Alphas and the password are optional parts.
struct JsonDocumentOptions {
    bool includeAlphas = false;
    std::optional<std::string> password; // bytes
};

// A larger document is refused unread. Counts are 16-bit, so the format
// could describe configurations of tens of GiB of text, more than any machine
// reads; the limit follows the largest panel data files in use instead: their
// documents take about 2.6 bytes per file byte for display lists (a two-byte
// channel becomes "16383,"), so a 134 MB file of display lists (350 MB of
// text) converts both ways. Reading needs memory in proportion to the
// configuration read, not to the text.
inline constexpr size_t kMaxJsonDocumentBytes = size_t{512} << 20;
// Fails for a document of `bytes` above that limit.
Status CheckJsonDocumentSize(uintmax_t bytes);

// Write the document for people and for diff: two-space indentation, one
// display list, user group, button or channel name per line with its
// numbers inline, a final newline. The text goes to `sink` in pieces;
// returns false when the sink failed. Values are written as held: check
// them first with CheckJsonDocumentValues.
bool WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options,
                       const ByteSink& sink);
std::string WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options = {});

// Whether the reader would take back every value of `store` (a panel data
// file may hold channel numbers outside 0..16383); the detail names the first
// that it would not.
Status CheckJsonDocumentValues(const PanelStore& store);

struct JsonReadResult {
    Status status; // detail names the JSON path on error
    bool hasAlphas = false;
    std::optional<std::string> password; // bytes
    // The sections the document holds; the others are read as empty.
    PartSet sections;

    // Fails naming the missing sections: for sending a document, where a
    // missing section would empty that part on the server module.
    Status RequireAllSections() const;
};

// Fails naming the sections a document holding `present` leaves out.
Status RequireJsonSections(PartSet present);

// Strict reader: replaces the lists, groups and templates of `store` (and the
// alpha tables when the document has them: channel names in channel order,
// sorted as a download would). On error `store` is left unchanged.
JsonReadResult ReadJsonDocument(std::string_view text, PanelStore& store);

} // namespace lumeth
