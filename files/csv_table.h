#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/failure.h"

// Comma-separated values as RFC 4180 has them: fields separated by commas,
// rows ended by CR LF (a lone LF is read too), a field quoted when it holds a
// comma, a quote or a line break, a quote inside a quoted field doubled.
namespace lumeth {

// How much one CSV text may hold; past these a text is refused, so that a
// hostile file cannot take more memory than its own size and a row.
struct CsvLimits {
    size_t fileBytes = size_t(64) << 20;
    size_t fieldBytes = 4096;
    size_t fieldsPerRow = 64;
};

// Where a CSV text is wrong: the 1-based line the row starts on (0 for the
// whole text) and why.
struct CsvProblem {
    int line = 0;
    std::string reason;
};

using CsvRow = std::vector<std::string>;
// Takes one row and the line it starts on; a returned text refuses the row
// with that reason and stops the reading.
using CsvRowHandler = std::function<std::optional<std::string>(int line, const CsvRow& row)>;

// Read `text` row by row into `onRow`. A UTF-8 byte order mark at the start
// and empty lines are skipped. Stops at the first malformed row (an unclosed
// quote, text after a closing quote, a quote inside an unquoted field, a
// carriage return without its line feed, a NUL byte, a field or row past the
// limits) or the first row `onRow` refuses; nothing when every row was read.
std::optional<CsvProblem> ReadCsv(std::string_view text, const CsvRowHandler& onRow,
                                  const CsvLimits& limits = {});

// Read the CSV file at `path` whole, refusing one that is no regular file or
// larger than `limits.fileBytes` before reading it.
Status ReadCsvFile(const std::string& path, std::string& text, const CsvLimits& limits = {});

// A name or label (Windows-1252 bytes) as a field: UTF-8, trailing blanks
// dropped.
std::string CsvName(std::string_view bytes);
// Append one field, quoted only when it must be.
void AppendCsvField(std::string& csv, std::string_view field);
// Append one row of fields and its CR LF.
void AppendCsvRow(std::string& csv, std::span<const std::string> fields);

} // namespace lumeth
