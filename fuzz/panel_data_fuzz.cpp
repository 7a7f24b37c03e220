// Panel data file loader on arbitrary bytes. Besides crashes it checks that
// the store keeps its shape after any load (arrays hold at least max(count, 1)
// entries), and that a loaded file encodes to a file that loads back to the
// same encoding.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "files/json_document.h"
#include "files/panel_data_file.h"

namespace {

void Check(bool ok) {
    if (!ok) {
        std::abort();
    }
}

void CheckShape(const lumeth::PanelStore& s) {
    for (lumeth::SubType t : lumeth::kAllSubTypes) {
        Check(s.lists(t).size() >= lumeth::ArraySizeFor(s.listCount(t)));
        for (const auto& list : s.lists(t)) {
            Check(list.channels.size() >= lumeth::ArraySizeFor(list.channelCount));
        }
    }
    const size_t groups = lumeth::ArraySizeFor(s.groups.userGroupCount);
    Check(s.groups.userGroups.size() >= groups && s.groups.userGroupNames.size() >= groups &&
          s.groups.userGroupIndex.size() >= groups && s.groups.userGroupNumber.size() >= groups);
    const size_t templates = lumeth::ArraySizeFor(s.templates.templateCount);
    Check(s.templates.buttonTemplates.size() >= templates &&
          s.templates.templateNames.size() >= templates);
    for (const auto& t : s.templates.buttonTemplates) {
        Check(t.buttons.size() >= lumeth::ArraySizeFor(t.buttonCount));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    lumeth::PanelStore store;
    const lumeth::LoadResult result = lumeth::LoadPanelData(bytes, store);
    CheckShape(store);
    if (result.outcome != lumeth::LoadOutcome::Loaded) {
        return 0;
    }
    const std::string encoded = lumeth::EncodePanelData(store);
    lumeth::PanelStore again;
    Check(lumeth::LoadPanelData(encoded, again).outcome == lumeth::LoadOutcome::Loaded);
    Check(lumeth::EncodePanelData(again) == encoded);

    lumeth::PanelStore viaJson;
    if (lumeth::ReadJsonDocument(lumeth::WriteJsonDocument(store), viaJson).status.ok()) {
        Check(lumeth::EncodePanelData(viaJson) == encoded);
    }
    return 0;
}
