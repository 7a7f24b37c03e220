#include "model/channel_alpha.h"

#include "model/limits.h"

namespace lumeth {

int ChannelBound(const PanelStore& store, SubType subType) {
    const bool inputSide = subType == SubType::Input || subType == SubType::Opto;
    return store.alpha(inputSide ? SubType::Input : SubType::Output).count;
}

std::optional<std::string> ChannelAlpha(const PanelStore& store, SubType subType, int channel) {
    if (channel >= ChannelBound(store, subType))
        return "*Invalid*";
    const AlphaTable& table = store.alpha(subType);
    const int position = ValueAt<int16_t>(table.positionOf, channel, -1);
    if (channel < 0 || position < 0 || static_cast<size_t>(position) >= table.names.size())
        return std::nullopt;
    return table.names[static_cast<size_t>(position)];
}

bool HasChannelNames(const PanelStore& store) {
    for (SubType subType : kAllSubTypes) {
        if (store.alpha(subType).count > 0)
            return true;
    }
    return false;
}

std::string ItemText(std::string alpha, const std::string& key) {
    alpha += " (";
    alpha += key;
    alpha += ')';
    return alpha;
}

} // namespace lumeth
