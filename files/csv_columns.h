#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "files/csv_table.h"

// The columns of the three configuration CSV files, named once here for the
// writer, the reader and the header rows.
namespace lumeth::csv {

enum class ListColumn : size_t { SubType, List, ListName, Position, Channel, ChannelName, Count };
inline constexpr std::array<std::string_view, size_t(ListColumn::Count)> kListColumns{
    "sub_type", "list", "list_name", "position", "channel", "channel_name"};

enum class GroupColumn : size_t { Group, GroupName, Entry, SubType, List, ListName, Count };
inline constexpr std::array<std::string_view, size_t(GroupColumn::Count)> kGroupColumns{
    "group", "group_name", "entry", "sub_type", "list", "list_name"};

enum class TemplateColumn : size_t {
    Template,
    TemplateName,
    Number,
    Button,
    Function,
    CaptionOption,
    Label,
    Channel,
    ChannelName,
    Channel2,
    Channel2Name,
    Count
};
inline constexpr std::array<std::string_view, size_t(TemplateColumn::Count)> kTemplateColumns{
    "template", "template_name", "number",       "button",   "function",     "caption_option",
    "label",    "channel",       "channel_name", "channel2", "channel2_name"};

inline std::string_view ColumnName(ListColumn c) {
    return kListColumns[size_t(c)];
}
inline std::string_view ColumnName(GroupColumn c) {
    return kGroupColumns[size_t(c)];
}
inline std::string_view ColumnName(TemplateColumn c) {
    return kTemplateColumns[size_t(c)];
}

// One row's fields, addressed by column.
template <typename Column> struct Row {
    std::array<std::string, size_t(Column::Count)> fields;

    std::string& operator[](Column c) { return fields[size_t(c)]; }
    void AppendTo(std::string& csv) const { AppendCsvRow(csv, fields); }
};

// A field of a row read back, addressed by column; the row has one field per
// column.
template <typename Column> const std::string& Field(const CsvRow& row, Column c) {
    return row[size_t(c)];
}

} // namespace lumeth::csv
