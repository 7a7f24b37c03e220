#pragma once

#include <optional>
#include <string>

#include "model/failure.h"
#include "model/panel_store.h"

namespace lumeth {

// The panel configuration as a diffable JSON document ("lumeth-panel-data",
// version 1). Alphas and the password are optional parts.
struct JsonDocumentOptions {
    bool includeAlphas = false;
    std::optional<std::string> password; // bytes
};

// Serialise (pretty-printed, two-space indent, trailing newline).
std::string WriteJsonDocument(const PanelStore& store, const JsonDocumentOptions& options = {});

struct JsonReadResult {
    Status status; // detail names the JSON path on error
    bool hasAlphas = false;
    std::optional<std::string> password; // bytes
};

// Strict reader: replaces the lists, groups and templates of `store` (and the
// alpha tables when the document has them: channel names in channel order,
// sorted as a download would). On error `store` is left unchanged.
JsonReadResult ReadJsonDocument(std::string_view text, PanelStore& store);

} // namespace lumeth
