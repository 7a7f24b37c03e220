#include "model/record_names.h"

#include "model/limits.h"
#include "model/number_text.h"
#include "model/view_keys.h"

namespace lumeth {

std::string QuotedName(const std::string& name, size_t width) {
    std::string quoted(1, '"');
    quoted += AsSent(name, width);
    quoted += '"';
    return quoted;
}

std::string GroupRecordName(const PanelStore& store, int index) {
    std::string text = GroupKey(index);
    if (index >= 0 && index < ValidCount(store.groups.userGroupCount))
        text.append(" ").append(QuotedName(RefAt(store.groups.userGroupNames, index), kNameWidth));
    return text;
}

std::string ListRecordName(const PanelStore& store, SubType s, int position) {
    std::string text = SubTypeName(s);
    text += ' ';
    text += ListKey(position);
    if (position >= 0 && position < ValidCount(store.listCount(s)))
        text.append(" ").append(QuotedName(RefAt(store.lists(s), position).name, kNameWidth));
    return text;
}

std::string TemplateKey(int index) {
    std::string text = "template ";
    text += ZeroPadded(index + 1, 2);
    return text;
}

std::string TemplateRecordName(const PanelStore& store, int index) {
    std::string text = TemplateKey(index);
    if (index >= 0 && index < ValidCount(store.templates.templateCount))
        text.append(" ").append(
            QuotedName(RefAt(store.templates.templateNames, index), kNameWidth));
    return text;
}

std::string ButtonKey(int button) {
    std::string text = "Btn ";
    text += std::to_string(button + 1);
    return text;
}

namespace {

// "Ch.0013 \"CD 2\"": a channel within its sub type.
std::string ChannelInSubType(const PanelStore& store, SubType s, int channel) {
    std::string text = ChannelKey(channel);
    const AlphaTable& names = store.alpha(s);
    if (channel >= 0 && channel < ValidCount(names.count))
        text.append(" ").append(QuotedName(RefAt(names.channelNames, channel), kNameWidth));
    return text;
}

std::string ListLocationName(const PanelStore& store, SubType s, const StoreLocation& at) {
    std::string text = ListRecordName(store, s, at.record);
    if (at.field != StoreField::Channel || at.entry < 0)
        return text;
    const DisplayList& list = RefAt(store.lists(s), at.record);
    if (at.entry >= ValidCount(list.channelCount))
        return text.append(" channel ").append(std::to_string(at.entry + 1));
    return text.append(" ").append(ChannelInSubType(store, s, RefAt(list.channels, at.entry)));
}

} // namespace

std::string ChannelRecordName(const PanelStore& store, SubType s, int channel) {
    std::string text = SubTypeName(s);
    return text.append(" ").append(ChannelInSubType(store, s, channel));
}

std::string LocationName(const PanelStore& store, const StoreLocation& at) {
    const PartInfo& info = Info(at.part);
    if (at.record < 0)
        return std::string(info.name);
    switch (info.kind) {
    case PartKind::DisplayLists:
        if (at.record < ValidCount(store.listCount(*info.subType)))
            return ListLocationName(store, *info.subType, at);
        return ListRecordName(store, *info.subType, at.record);
    case PartKind::UserGroups: {
        std::string text = GroupRecordName(store, at.record);
        if (at.entry >= 0)
            text.append(" entry ").append(std::to_string(at.entry + 1));
        return text;
    }
    case PartKind::Templates: {
        std::string text = TemplateRecordName(store, at.record);
        if (at.entry >= 0)
            text.append(" ").append(ButtonKey(at.entry));
        return text;
    }
    default:
        return std::string(info.name);
    }
}

} // namespace lumeth
