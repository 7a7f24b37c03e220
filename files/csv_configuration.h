#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "files/csv_table.h"
#include "model/failure.h"
#include "model/panel_store.h"

// The configuration's display lists, user groups and button templates as
// three CSV files for spreadsheets and scripts: one row per list channel,
// group entry and template key, records named by the main window's keys
// (Lst.000, Gr.001, template 01, Btn 1, Ch.0001), names and labels in UTF-8
// (through the Windows-1252 table), the names of channels and lists beside
// their keys for reading (ignored when read back). A list, group or template
// with nothing in it is one row with the entry columns empty.
namespace lumeth {

enum class CsvFile { DisplayLists, UserGroups, Templates };
inline constexpr size_t kCsvFileCount = 3;
inline constexpr std::array<CsvFile, kCsvFileCount> kCsvFiles{
    CsvFile::DisplayLists, CsvFile::UserGroups, CsvFile::Templates};

// "display_lists.csv", "user_groups.csv", "templates.csv".
std::string_view CsvFileName(CsvFile file);
// The column names of `file`, in order; its first row.
std::span<const std::string_view> CsvColumns(CsvFile file);
// The header row without its line end: "sub_type,list,...".
std::string CsvHeader(CsvFile file);

// The three files' texts, indexed by CsvFile.
using CsvTexts = std::array<std::string, kCsvFileCount>;

// The three files of `store`. Fails naming the record when a value cannot be
// written (a negative channel, a list type that is no sub type, a count past
// its array).
Status ExportCsv(const PanelStore& store, CsvTexts& texts);

// The file, line and reason of a row that cannot be read back.
struct CsvImportProblem {
    CsvFile file = CsvFile::DisplayLists;
    CsvProblem problem;
};

// Replace the display lists of every sub type, the user groups and the
// templates of `store` with what the three texts hold; the channel names and
// the selection are kept. On a problem `store` is left as it was.
std::optional<CsvImportProblem> ImportCsv(const CsvTexts& texts, PanelStore& store,
                                          const CsvLimits& limits = {});

// The file's path in `folder`.
std::string CsvPath(const std::string& folder, CsvFile file);
// Write the three files into `folder` (made when missing), each replaced
// atomically; the detail of a failure starts with the path that failed.
Status WriteCsvFolder(const std::string& folder, const CsvTexts& texts);
// Import the three files in `folder`; the detail of a refused row is
// "FOLDER/FILE:LINE: reason". On failure `store` is left as it was.
Status ImportCsvFolder(const std::string& folder, PanelStore& store);

} // namespace lumeth
