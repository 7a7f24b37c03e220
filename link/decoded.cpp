#include "link/decoded.h"

namespace lumeth {

void StorePart(PanelStore& store, Part part, PartValue&& value) {
    const std::optional<SubType> subType = Info(part).subType;
    if (auto* alpha = std::get_if<AlphaTable>(&value)) {
        store.alpha(*subType) = std::move(*alpha);
    } else if (auto* lists = std::get_if<DisplayListTable>(&value)) {
        store.listTable(*subType) = std::move(*lists);
    } else if (auto* groups = std::get_if<UserGroupTable>(&value)) {
        store.groups = std::move(*groups);
    } else if (auto* templates = std::get_if<TemplateTable>(&value)) {
        store.templates = std::move(*templates);
    }
}

} // namespace lumeth
