#include "files/csv_configuration.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <system_error>

#include "files/csv_columns.h"
#include "files/file_io.h"
#include "model/button_catalogue.h"
#include "model/channel_alpha.h"
#include "model/limits.h"
#include "model/record_names.h"
#include "model/view_keys.h"

namespace lumeth {

using csv::GroupColumn;
using csv::ListColumn;
using csv::TemplateColumn;

namespace {

// A value the files cannot hold; the reason names the record.
struct Unwritable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

using Where = std::function<std::string()>;

// A 14-bit value as a decimal number.
std::string Value14(int value, const Where& where) {
    if (value < 0 || value > kMax14Bit)
        throw Unwritable(where() + ": " + std::to_string(value) + " is outside 0 to " +
                         std::to_string(kMax14Bit));
    return std::to_string(value);
}

// A channel by its key; "no channel" is an empty field where it may be.
std::string ChannelField(int channel, bool noneIsEmpty, const Where& where) {
    if (noneIsEmpty && channel == kNoChannel)
        return {};
    Value14(channel, where);
    return ChannelKey(channel);
}

// The name of a template key's channel, read from `subType`'s table in
// channel order, as the template editor's lists show it.
std::string ButtonChannelName(const PanelStore& store, std::optional<SubType> subType,
                              int channel) {
    if (!subType || channel == kNoChannel)
        return {};
    return CsvName(RefAt(store.alpha(*subType).channelNames, channel));
}

// A record's rows: one per entry, `fill` setting the entry columns, or one
// with them empty for a record without entries.
template <typename Column, typename Fill>
void AppendRecord(csv::Row<Column>& row, int entries, std::string& out, Fill fill) {
    if (entries == 0)
        row.AppendTo(out);
    for (int e = 0; e < entries; ++e) {
        fill(e);
        row.AppendTo(out);
    }
}

void ExportList(const PanelStore& store, SubType s, int i, bool named, std::string& out) {
    const DisplayList& list = store.lists(s).at(static_cast<size_t>(i));
    csv::Row<ListColumn> row;
    row[ListColumn::SubType] = SubTypeName(s);
    row[ListColumn::List] = ListKey(i);
    row[ListColumn::ListName] = CsvName(list.name);
    AppendRecord(row, ValidCount(list.channelCount), out, [&](int k) {
        const int channel = list.channels.at(static_cast<size_t>(k));
        row[ListColumn::Position] = std::to_string(k + 1);
        row[ListColumn::Channel] = ChannelField(channel, false, [&] {
            return ListRecordName(store, s, i) + " position " + std::to_string(k + 1);
        });
        row[ListColumn::ChannelName] =
            named ? CsvName(ChannelAlpha(store, s, channel).value_or("")) : std::string();
    });
}

std::string ExportLists(const PanelStore& store) {
    std::string out = CsvHeader(CsvFile::DisplayLists) + "\r\n";
    const bool named = HasChannelNames(store);
    for (SubType s : kAllSubTypes) {
        for (int i = 0; i < ValidCount(store.listCount(s)); ++i)
            ExportList(store, s, i, named, out);
    }
    return out;
}

void ExportGroupEntry(const PanelStore& store, int g, int e, csv::Row<GroupColumn>& row) {
    const UserGroup& group = store.groups.userGroups.at(static_cast<size_t>(g));
    const int type = group.listTypes.at(static_cast<size_t>(e));
    const int position = group.listIndexes.at(static_cast<size_t>(e));
    const auto where = [&] {
        return GroupRecordName(store, g) + " entry " + std::to_string(e + 1);
    };
    const std::optional<SubType> s = SubTypeFromListCode(type);
    if (!s)
        throw Unwritable(where() + ": list type " + std::to_string(type) + " is no sub type");
    if (position < 0 || position >= kMax14Bit)
        throw Unwritable(where() + ": list position " + std::to_string(position) +
                         " is outside 0 to " + std::to_string(kMax14Bit - 1));
    row[GroupColumn::Entry] = std::to_string(e + 1);
    row[GroupColumn::SubType] = SubTypeName(*s);
    row[GroupColumn::List] = ListKey(position);
    row[GroupColumn::ListName] = position < ValidCount(store.listCount(*s))
                                     ? CsvName(RefAt(store.lists(*s), position).name)
                                     : std::string();
}

std::string ExportGroups(const PanelStore& store) {
    std::string out = CsvHeader(CsvFile::UserGroups) + "\r\n";
    const UserGroupTable& groups = store.groups;
    for (int g = 0; g < ValidCount(groups.userGroupCount); ++g) {
        csv::Row<GroupColumn> row;
        row[GroupColumn::Group] = GroupKey(g);
        row[GroupColumn::GroupName] = CsvName(groups.userGroupNames.at(static_cast<size_t>(g)));
        AppendRecord(row, ValidCount(groups.userGroups.at(static_cast<size_t>(g)).listCount), out,
                     [&](int e) { ExportGroupEntry(store, g, e, row); });
    }
    return out;
}

void ExportButton(const PanelStore& store, int t, int b, csv::Row<TemplateColumn>& row) {
    const PanelButton& button = store.templates.buttonTemplates.at(static_cast<size_t>(t))
                                    .buttons.at(static_cast<size_t>(b));
    const auto where = [&](const char* field) {
        return [&store, t, b, field] {
            return TemplateRecordName(store, t) + " " + ButtonKey(b) + " " + field;
        };
    };
    const ButtonFunction& function = ButtonFunctionOf(button.type);
    row[TemplateColumn::Button] = ButtonKey(b);
    // A code the catalogue lacks keeps its number.
    row[TemplateColumn::Function] = function.code == button.type
                                        ? std::string(function.longName)
                                        : Value14(button.type, where("function"));
    row[TemplateColumn::CaptionOption] = Value14(button.captionOption, where("caption option"));
    row[TemplateColumn::Label] = CsvName(button.label);
    row[TemplateColumn::Channel] = ChannelField(button.channel, true, where("channel"));
    row[TemplateColumn::ChannelName] =
        ButtonChannelName(store, function.channelSubType, button.channel);
    row[TemplateColumn::Channel2] = ChannelField(button.channel2, true, where("channel2"));
    row[TemplateColumn::Channel2Name] =
        ButtonChannelName(store, function.channel2SubType, button.channel2);
}

std::string ExportTemplates(const PanelStore& store) {
    std::string out = CsvHeader(CsvFile::Templates) + "\r\n";
    const TemplateTable& templates = store.templates;
    for (int t = 0; t < ValidCount(templates.templateCount); ++t) {
        const ButtonTemplate& tpl = templates.buttonTemplates.at(static_cast<size_t>(t));
        csv::Row<TemplateColumn> row;
        row[TemplateColumn::Template] = TemplateKey(t);
        row[TemplateColumn::TemplateName] =
            CsvName(templates.templateNames.at(static_cast<size_t>(t)));
        row[TemplateColumn::Number] =
            Value14(tpl.number, [&] { return TemplateRecordName(store, t) + " number"; });
        AppendRecord(row, ValidCount(tpl.buttonCount), out,
                     [&](int b) { ExportButton(store, t, b, row); });
    }
    return out;
}

} // namespace

std::string_view CsvFileName(CsvFile file) {
    switch (file) {
    case CsvFile::DisplayLists:
        return "display_lists.csv";
    case CsvFile::UserGroups:
        return "user_groups.csv";
    case CsvFile::Templates:
        break;
    }
    return "templates.csv";
}

std::span<const std::string_view> CsvColumns(CsvFile file) {
    switch (file) {
    case CsvFile::DisplayLists:
        return csv::kListColumns;
    case CsvFile::UserGroups:
        return csv::kGroupColumns;
    case CsvFile::Templates:
        break;
    }
    return csv::kTemplateColumns;
}

std::string CsvHeader(CsvFile file) {
    std::string header;
    for (const std::string_view column : CsvColumns(file)) {
        if (!header.empty())
            header.push_back(',');
        header.append(column);
    }
    return header;
}

Status ExportCsv(const PanelStore& store, CsvTexts& texts) {
    try {
        texts[size_t(CsvFile::DisplayLists)] = ExportLists(store);
        texts[size_t(CsvFile::UserGroups)] = ExportGroups(store);
        texts[size_t(CsvFile::Templates)] = ExportTemplates(store);
    } catch (const Unwritable& error) {
        return Status::Fail(ErrorCode::InvalidFileFormat, error.what());
    } catch (const std::exception& error) {
        return Status(FailureFromException(error));
    }
    return Status::Ok();
}

std::string CsvPath(const std::string& folder, CsvFile file) {
    return (std::filesystem::path(folder) / CsvFileName(file)).string();
}

Status WriteCsvFolder(const std::string& folder, const CsvTexts& texts) {
    std::error_code error;
    std::filesystem::create_directory(folder, error);
    if (error)
        return FailureFromErrno(error.value(), ErrorCode::PathFileAccessError, folder,
                                ErrorCode::PathNotFound);
    for (CsvFile file : kCsvFiles) {
        const std::string path = CsvPath(folder, file);
        const Status written = ReplaceFileContents(path, texts[size_t(file)]);
        if (!written)
            return Status::Fail(written.failure().code, path + ": " + written.failure().detail);
    }
    return Status::Ok();
}

} // namespace lumeth
