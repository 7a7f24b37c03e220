// Reading the configuration's CSV files back (see csv_configuration.h): each
// file's rows build its records in order, refusing the first row that does
// not fit, and the store is replaced only when all three files were read.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <utility>

#include "files/csv_columns.h"
#include "files/csv_configuration.h"
#include "model/button_catalogue.h"
#include "model/cp1252.h"
#include "model/limits.h"
#include "model/record_names.h"
#include "model/view_keys.h"

namespace lumeth {

using csv::Field;
using csv::GroupColumn;
using csv::ListColumn;
using csv::TemplateColumn;

namespace {

// A row that does not fit, and why.
struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// A decimal number from 0 to `highest`.
int ReadNumber(std::string_view field, int highest, const char* what) {
    int value = -1;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (field.empty() || error != std::errc() || end != field.data() + field.size() || value < 0 ||
        value > highest)
        throw Refused(std::string("the ") + what + " " + Quoted(field) +
                      " is not a number from 0 to " + std::to_string(highest));
    return value;
}

using KeyMaker = std::string (*)(int);

// The number behind a key `make` writes ("Lst.003" gives 3 for ListKey), from
// 0 to `highest`; the key must be written as `make` writes it.
int ReadKey(std::string_view field, KeyMaker make, int highest, const char* what) {
    const std::string first = make(0);
    const size_t digitsAt = first.find_last_not_of("0123456789") + 1;
    const std::string_view digits = field.substr(std::min(digitsAt, field.size()));
    int number = -1;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const int value = number - (std::stoi(first.substr(digitsAt)));
    const bool shaped = field.substr(0, digitsAt) == std::string_view(first).substr(0, digitsAt) &&
                        !digits.empty() && digits.size() <= 6 && error == std::errc() &&
                        end == digits.data() + digits.size() && value >= 0;
    if (!shaped || make(std::min(value, highest + 1)) != field)
        throw Refused(Quoted(field) + " is not a " + what + " key such as " + first);
    if (value > highest)
        throw Refused(std::string(field) + " is past " + make(highest) + ", the last " + what +
                      " the panels carry");
    return value;
}

// A name or label, UTF-8 in the file, as Windows-1252 bytes.
std::string ReadName(std::string_view field, const char* what) {
    std::string bytes;
    char32_t refused = 0;
    if (cp1252::FromUtf8Exact(field, bytes, refused))
        return bytes;
    if (refused == 0xFFFD)
        throw Refused(std::string("the ") + what + " is not UTF-8 text");
    char code[16];
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(refused));
    throw Refused(std::string("the ") + what + " holds " + code +
                  ", a character Windows-1252 does not have");
}

SubType ReadSubType(std::string_view field) {
    for (SubType s : kAllSubTypes) {
        if (field == SubTypeName(s))
            return s;
    }
    throw Refused("unknown sub type " + Quoted(field) + " (Input, Output, Opto or Relay)");
}

int16_t ReadChannel(std::string_view field, bool emptyIsNone) {
    if (emptyIsNone && field.empty())
        return kNoChannel;
    return static_cast<int16_t>(ReadKey(field, ChannelKey, kMax14Bit, "channel"));
}

int16_t ReadFunction(std::string_view field) {
    for (const ButtonFunction& function : ButtonCatalogue()) {
        if (field == function.longName)
            return function.code;
    }
    // A code the catalogue lacks is written as its number.
    if (!field.empty() && field.find_first_not_of("0123456789") == std::string_view::npos)
        return static_cast<int16_t>(ReadNumber(field, kMax14Bit, "function code"));
    throw Refused("unknown function " + Quoted(field));
}

// Columns that must be empty on the one row of a record without entries.
template <typename Column>
void RequireEmpty(const CsvRow& row, std::initializer_list<Column> columns) {
    for (Column c : columns) {
        if (!Field(row, c).empty())
            throw Refused("a row without an entry has nothing in " +
                          std::string(csv::ColumnName(c)));
    }
}

using KeyLabel = std::function<std::string(int)>;

// An entry numbered `number` (from 1) must be the next of a record holding
// `count`.
void RequireNext(int number, size_t count, const KeyLabel& label) {
    if (number != static_cast<int>(count) + 1)
        throw Refused(label(number) + " out of order: " + label(static_cast<int>(count) + 1) +
                      " comes next");
}

// Which record the last row belonged to. A record's rows come together,
// records come in key order from the first without gaps, and a record
// without entries is one row with its entry columns empty.
class RecordOrder {
public:
    // True when a row of record `key` starts the next of `count` records,
    // false when it continues the last one (`sameKind`: the last row was of
    // this kind of record).
    bool Next(int key, size_t count, bool sameKind, const KeyLabel& label) {
        const int n = static_cast<int>(count);
        if (sameKind && key + 1 == n) {
            if (m_empty)
                throw Refused(label(key) + " was given without entries, on one row");
            return false;
        }
        if (key != n)
            throw Refused(key < n ? label(key) + " again after other rows: a record's rows go "
                                                 "together"
                                  : label(key) + " before " + label(n) +
                                        ": records are numbered from the first without gaps");
        m_empty = false;
        return true;
    }
    // Whether the row holds an entry; a row without one (`given` false) is
    // the only row of its record.
    bool Entry(bool given, bool first, std::string_view what) {
        if (given)
            return true;
        if (!first)
            throw Refused("no " + std::string(what) + " on a second row of the record");
        m_empty = true;
        return false;
    }

private:
    bool m_empty = false;
};

void RequireSame(const std::string& now, const std::string& first, const char* what) {
    if (now != first)
        throw Refused(std::string("the ") + what + " differs from the record's first row");
}

class ListRows {
public:
    void Take(const CsvRow& row) {
        const SubType s = ReadSubType(Field(row, ListColumn::SubType));
        const int key = ReadKey(Field(row, ListColumn::List), ListKey, kMax14Bit - 1, "list");
        const std::string name = ReadName(Field(row, ListColumn::ListName), "list name");
        std::vector<DisplayList>& lists = m_lists[Index(s)];
        const bool next = m_order.Next(key, lists.size(), m_last == s, [s](int k) {
            return std::string(SubTypeName(s)) + " " + ListKey(k);
        });
        m_last = s;
        if (next) {
            lists.emplace_back().name = name;
            lists.back().channels.clear();
        }
        DisplayList& list = lists.back();
        RequireSame(name, list.name, "list name");
        const std::string& position = Field(row, ListColumn::Position);
        if (!m_order.Entry(!position.empty(), next, "position")) {
            RequireEmpty(row, {ListColumn::Channel});
            return;
        }
        RequireNext(ReadNumber(position, kMax14Bit, "position"), list.channels.size(),
                    [](int n) { return "position " + std::to_string(n); });
        list.channels.push_back(ReadChannel(Field(row, ListColumn::Channel), false));
    }

    void Into(PanelStore& store) {
        for (SubType s : kAllSubTypes) {
            std::vector<DisplayList>& lists = m_lists[Index(s)];
            DisplayListTable table;
            table.displayListCount = static_cast<int16_t>(lists.size());
            for (DisplayList& list : lists) {
                list.channelCount = static_cast<int16_t>(list.channels.size());
                list.channels.resize(ArraySizeFor(list.channelCount));
            }
            if (!lists.empty())
                table.displayLists = std::move(lists);
            store.listTable(s) = std::move(table);
        }
    }

private:
    std::array<std::vector<DisplayList>, kSubTypeCount> m_lists;
    std::optional<SubType> m_last;
    RecordOrder m_order;
};

struct NamedGroup {
    std::string name;
    UserGroup group;
};

class GroupRows {
public:
    void Take(const CsvRow& row) {
        const int key = ReadKey(Field(row, GroupColumn::Group), GroupKey, kMax14Bit - 1, "group");
        const std::string name = ReadName(Field(row, GroupColumn::GroupName), "group name");
        const bool next = m_order.Next(key, m_groups.size(), true, GroupKey);
        if (next) {
            NamedGroup& added = m_groups.emplace_back();
            added.name = name;
            added.group.listIndexes.clear();
            added.group.listTypes.clear();
        }
        NamedGroup& group = m_groups.back();
        RequireSame(name, group.name, "group name");
        const std::string& entry = Field(row, GroupColumn::Entry);
        if (!m_order.Entry(!entry.empty(), next, "entry")) {
            RequireEmpty(row, {GroupColumn::SubType, GroupColumn::List});
            return;
        }
        RequireNext(ReadNumber(entry, kMax14Bit, "entry"), group.group.listIndexes.size(),
                    [](int n) { return "entry " + std::to_string(n); });
        const SubType s = ReadSubType(Field(row, GroupColumn::SubType));
        group.group.listIndexes.push_back(static_cast<int16_t>(
            ReadKey(Field(row, GroupColumn::List), ListKey, kMax14Bit - 1, "list")));
        group.group.listTypes.push_back(ListTypeCode(s));
    }

    void Into(PanelStore& store) {
        UserGroupTable table;
        const int n = static_cast<int>(m_groups.size());
        table.userGroupCount = static_cast<int16_t>(n);
        table.Resize(n);
        for (int g = 0; g < n; ++g) {
            const auto i = static_cast<size_t>(g);
            UserGroup& group = m_groups[i].group;
            group.listCount = static_cast<int16_t>(group.listIndexes.size());
            group.listIndexes.resize(ArraySizeFor(group.listCount));
            group.listTypes.resize(ArraySizeFor(group.listCount));
            table.userGroupNames[i] = std::move(m_groups[i].name);
            table.userGroups[i] = std::move(group);
            table.userGroupIndex[i] = static_cast<int16_t>(g);
            table.userGroupNumber[i] = static_cast<int16_t>(g);
        }
        store.groups = std::move(table);
    }

private:
    std::vector<NamedGroup> m_groups;
    RecordOrder m_order;
};

struct NamedTemplate {
    std::string name;
    ButtonTemplate buttons;
};

PanelButton ReadButton(const CsvRow& row) {
    PanelButton button;
    button.type = ReadFunction(Field(row, TemplateColumn::Function));
    button.captionOption = static_cast<int16_t>(
        ReadNumber(Field(row, TemplateColumn::CaptionOption), kMax14Bit, "caption option"));
    button.label = ReadName(Field(row, TemplateColumn::Label), "label");
    button.channel = ReadChannel(Field(row, TemplateColumn::Channel), true);
    button.channel2 = ReadChannel(Field(row, TemplateColumn::Channel2), true);
    return button;
}

class TemplateRows {
public:
    void Take(const CsvRow& row) {
        const int key =
            ReadKey(Field(row, TemplateColumn::Template), TemplateKey, kMax14Bit - 1, "template");
        const std::string name =
            ReadName(Field(row, TemplateColumn::TemplateName), "template name");
        const auto number = static_cast<int16_t>(
            ReadNumber(Field(row, TemplateColumn::Number), kMax14Bit, "template number"));
        const bool next = m_order.Next(key, m_templates.size(), true, TemplateKey);
        if (next) {
            NamedTemplate& added = m_templates.emplace_back();
            added.name = name;
            added.buttons.number = number;
            added.buttons.buttons.clear();
        }
        NamedTemplate& tpl = m_templates.back();
        RequireSame(name, tpl.name, "template name");
        if (number != tpl.buttons.number)
            throw Refused("the template number differs from the record's first row");
        const std::string& button = Field(row, TemplateColumn::Button);
        if (!m_order.Entry(!button.empty(), next, "button")) {
            RequireEmpty(row, {TemplateColumn::Function, TemplateColumn::CaptionOption,
                               TemplateColumn::Label, TemplateColumn::Channel,
                               TemplateColumn::Channel2});
            return;
        }
        RequireNext(ReadKey(button, ButtonKey, kTemplateButtons - 1, "button") + 1,
                    tpl.buttons.buttons.size(), [](int n) { return ButtonKey(n - 1); });
        tpl.buttons.buttons.push_back(ReadButton(row));
    }

    void Into(PanelStore& store) {
        TemplateTable table;
        const int n = static_cast<int>(m_templates.size());
        table.templateCount = static_cast<int16_t>(n);
        table.Resize(n);
        for (int t = 0; t < n; ++t) {
            const auto i = static_cast<size_t>(t);
            ButtonTemplate& buttons = m_templates[i].buttons;
            buttons.buttonCount = static_cast<int16_t>(buttons.buttons.size());
            buttons.buttons.resize(ArraySizeFor(buttons.buttonCount));
            table.templateNames[i] = std::move(m_templates[i].name);
            table.buttonTemplates[i] = std::move(buttons);
            table.templateIndex[i] = static_cast<int16_t>(t);
            table.templatePosition[i] = static_cast<int16_t>(t);
        }
        store.templates = std::move(table);
    }

private:
    std::vector<NamedTemplate> m_templates;
    RecordOrder m_order;
};

// Read the rows of `file` into `rows`: the header first, then records.
template <typename Rows>
std::optional<CsvProblem> ReadRows(std::string_view text, CsvFile file, Rows& rows,
                                   const CsvLimits& limits) {
    const std::span<const std::string_view> columns = CsvColumns(file);
    bool header = false;
    std::optional<CsvProblem> problem = ReadCsv(
        text,
        [&](int, const CsvRow& row) -> std::optional<std::string> {
            if (!header) {
                header = true;
                if (!std::equal(row.begin(), row.end(), columns.begin(), columns.end()))
                    return "the first row is not the header " + CsvHeader(file);
                return std::nullopt;
            }
            if (row.size() != columns.size())
                return std::to_string(columns.size()) + " fields expected, " +
                       std::to_string(row.size()) + " found";
            try {
                rows.Take(row);
            } catch (const Refused& refused) {
                return std::string(refused.what());
            }
            return std::nullopt;
        },
        limits);
    if (!problem && !header)
        return CsvProblem{1, "no header row " + CsvHeader(file)};
    return problem;
}

// The three files read one at a time into their records.
class CsvImport {
public:
    std::optional<CsvImportProblem> Read(CsvFile file, std::string_view text,
                                         const CsvLimits& limits) {
        std::optional<CsvProblem> problem;
        switch (file) {
        case CsvFile::DisplayLists:
            problem = ReadRows(text, file, m_lists, limits);
            break;
        case CsvFile::UserGroups:
            problem = ReadRows(text, file, m_groups, limits);
            break;
        case CsvFile::Templates:
            problem = ReadRows(text, file, m_templates, limits);
            break;
        }
        if (problem)
            return CsvImportProblem{file, std::move(*problem)};
        return std::nullopt;
    }

    void Into(PanelStore& store) {
        m_lists.Into(store);
        m_groups.Into(store);
        m_templates.Into(store);
    }

private:
    ListRows m_lists;
    GroupRows m_groups;
    TemplateRows m_templates;
};

} // namespace

std::optional<CsvImportProblem> ImportCsv(const CsvTexts& texts, PanelStore& store,
                                          const CsvLimits& limits) {
    CsvImport import;
    for (CsvFile file : kCsvFiles) {
        if (std::optional<CsvImportProblem> problem =
                import.Read(file, texts[size_t(file)], limits))
            return problem;
    }
    import.Into(store);
    return std::nullopt;
}

Status ImportCsvFolder(const std::string& folder, PanelStore& store) {
    CsvImport import;
    for (CsvFile file : kCsvFiles) {
        const std::string path = CsvPath(folder, file);
        std::string text;
        if (const Status read = ReadCsvFile(path, text); !read)
            return read;
        if (std::optional<CsvImportProblem> problem = import.Read(file, text, {})) {
            const CsvProblem& at = problem->problem;
            const std::string line = at.line > 0 ? ":" + std::to_string(at.line) : "";
            return Status::Fail(ErrorCode::InvalidFileFormat, path + line + ": " + at.reason);
        }
    }
    import.Into(store);
    return Status::Ok();
}
} // namespace lumeth
