#include "files/crosspoint_map.h"

#include <stdexcept>

#include "files/csv_table.h"
#include "files/file_io.h"
#include "model/channel_alpha.h"
#include "model/limits.h"
#include "model/view_keys.h"

namespace lumeth {

namespace {

void AppendLists(const PanelStore& store, SubType subType, bool named, std::string& csv) {
    const auto& lists = store.lists(subType);
    for (int i = 0; i < store.listCount(subType); ++i) {
        const DisplayList& list = lists.at(static_cast<size_t>(i));
        const std::string listName = CsvName(list.name);
        for (int k = 0; k < list.channelCount; ++k) {
            const int channel = list.channels.at(static_cast<size_t>(k));
            const std::string fields[] = {
                SubTypeName(subType),
                std::to_string(i),
                listName,
                std::to_string(k + 1),
                std::to_string(channel),
                ChannelKey(channel),
                named ? CsvName(ChannelAlpha(store, subType, channel).value()) : std::string(),
            };
            AppendCsvRow(csv, fields);
        }
    }
}

} // namespace

Status EncodeCrosspointMap(const PanelStore& store, std::string& csv) {
    csv = "sub_type,list,list_name,position,channel,key,channel_name\r\n";
    const bool named = HasChannelNames(store);
    try {
        AppendLists(store, SubType::Input, named, csv);
        AppendLists(store, SubType::Output, named, csv);
    } catch (const std::exception& error) {
        return Status(FailureFromException(error));
    }
    return Status::Ok();
}

Status SaveCrosspointMap(const std::string& path, const PanelStore& store) {
    std::string csv;
    const Status encoded = EncodeCrosspointMap(store, csv);
    if (!encoded)
        return encoded;
    return ReplaceFileContents(path, csv);
}

} // namespace lumeth
