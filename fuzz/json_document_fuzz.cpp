// JSON document reader on arbitrary text. A document that reads must write
// back to one that reads to the same configuration, channel names and
// password.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "files/json_document.h"
#include "files/panel_data_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    lumeth::PanelStore store;
    const lumeth::JsonReadResult first = lumeth::ReadJsonDocument(text, store);
    if (!first.status.ok()) {
        return 0;
    }
    lumeth::JsonDocumentOptions options;
    options.includeAlphas = first.hasAlphas;
    options.password = first.password;
    const std::string written = lumeth::WriteJsonDocument(store, options);

    lumeth::PanelStore again;
    const lumeth::JsonReadResult second = lumeth::ReadJsonDocument(written, again);
    if (!second.status.ok() || second.password != first.password ||
        lumeth::EncodePanelData(again) != lumeth::EncodePanelData(store) ||
        lumeth::WriteJsonDocument(again, options) != written) {
        std::abort();
    }
    return 0;
}
