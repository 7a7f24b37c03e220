#include "model/channel_alpha.h"

#include <stdexcept>

namespace lumeth {

int ChannelBound(const PanelStore& store, SubType subType) {
    const bool inputSide = subType == SubType::Input || subType == SubType::Opto;
    return store.alpha(inputSide ? SubType::Input : SubType::Output).count;
}

std::string ChannelAlpha(const PanelStore& store, SubType subType, int channel) {
    if (channel >= ChannelBound(store, subType))
        return "*Invalid*";
    const AlphaTable& table = store.alpha(subType);
    const int16_t position = table.positionOf.at(static_cast<size_t>(channel));
    if (position < 0)
        throw std::out_of_range("channel " + std::to_string(channel) + " has no name position");
    return table.names.at(static_cast<size_t>(position));
}

std::string ItemText(std::string alpha, const std::string& key) {
    alpha += " (";
    alpha += key;
    alpha += ')';
    return alpha;
}

} // namespace lumeth
