#include "files/csv_table.h"

#include <cerrno>
#include <sys/stat.h>

#include "files/file_io.h"
#include "model/cp1252.h"
#include "model/limits.h"

namespace lumeth {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string Bytes(size_t n) {
    if (n % (size_t(1) << 20) == 0)
        return std::to_string(n >> 20) + " MiB";
    return std::to_string(n) + " bytes";
}

// Reads one text; `m_pos` and `m_line` move through it as rows are taken.
class CsvReader {
public:
    CsvReader(std::string_view text, const CsvLimits& limits) : m_text(text), m_limits(limits) {
        if (m_text.substr(0, kByteOrderMark.size()) == kByteOrderMark)
            m_pos = kByteOrderMark.size();
    }

    std::optional<CsvProblem> Run(const CsvRowHandler& onRow) {
        CsvRow row;
        while (SkipEmptyLines()) {
            const int rowLine = m_line;
            if (std::optional<CsvProblem> bad = ReadRow(row))
                return bad;
            if (std::optional<std::string> refused = onRow(rowLine, row))
                return CsvProblem{rowLine, std::move(*refused)};
        }
        return std::nullopt;
    }

private:
    bool AtEnd() const { return m_pos >= m_text.size(); }
    char Peek() const { return m_text[m_pos]; }

    // Past empty lines; false at the end of the text.
    bool SkipEmptyLines() {
        while (!AtEnd()) {
            if (Peek() == '\n') {
                ++m_pos;
                ++m_line;
            } else if (m_text.substr(m_pos, 2) == "\r\n") {
                m_pos += 2;
                ++m_line;
            } else {
                return true;
            }
        }
        return false;
    }

    CsvProblem Problem(std::string reason) const { return CsvProblem{m_line, std::move(reason)}; }

    std::optional<CsvProblem> ReadRow(CsvRow& row) {
        row.clear();
        for (;;) {
            std::string field;
            std::optional<CsvProblem> bad =
                AtEnd() || Peek() != '"' ? ReadPlain(field) : ReadQuoted(field);
            if (bad)
                return bad;
            if (field.find('\0') != std::string::npos)
                return Problem("a NUL byte: this is not a text file");
            if (row.size() == m_limits.fieldsPerRow)
                return Problem("more than " + std::to_string(m_limits.fieldsPerRow) +
                               " fields in a row");
            row.push_back(std::move(field));
            if (AtEnd())
                return std::nullopt;
            if (Peek() == ',') {
                ++m_pos;
                continue;
            }
            // ReadPlain and ReadQuoted stop only at a comma or a line end.
            m_pos += Peek() == '\r' ? 2 : 1;
            ++m_line;
            return std::nullopt;
        }
    }

    // Checks the character a field stopped at: a comma, a line end or the end.
    std::optional<CsvProblem> Ended(const char* after) const {
        if (AtEnd() || Peek() == ',' || Peek() == '\n' || m_text.substr(m_pos, 2) == "\r\n")
            return std::nullopt;
        if (Peek() == '\r')
            return Problem("a carriage return without its line feed");
        return Problem(std::string("text after ") + after);
    }

    std::optional<CsvProblem> TooLong() const {
        return Problem("a field longer than " + Bytes(m_limits.fieldBytes));
    }

    std::optional<CsvProblem> ReadPlain(std::string& field) {
        const size_t start = m_pos;
        const size_t end = m_text.find_first_of(",\r\n\"", start);
        m_pos = end == std::string_view::npos ? m_text.size() : end;
        if (m_pos - start > m_limits.fieldBytes)
            return TooLong();
        field.assign(m_text.substr(start, m_pos - start));
        if (!AtEnd() && Peek() == '"')
            return Problem("a quote inside a field that does not start with one");
        return Ended("a field");
    }

    std::optional<CsvProblem> ReadQuoted(std::string& field) {
        const int opened = m_line;
        ++m_pos;
        for (;;) {
            const size_t quote = m_text.find('"', m_pos);
            if (quote == std::string_view::npos) {
                return CsvProblem{opened, "a quoted field that is never closed"};
            }
            const std::string_view run = m_text.substr(m_pos, quote - m_pos);
            if (field.size() + run.size() > m_limits.fieldBytes)
                return TooLong();
            for (const char c : run)
                m_line += c == '\n' ? 1 : 0;
            field.append(run);
            m_pos = quote + 1;
            if (AtEnd() || Peek() != '"')
                return Ended("the closing quote of a field");
            field.push_back('"');
            ++m_pos;
        }
    }

    std::string_view m_text;
    const CsvLimits& m_limits;
    size_t m_pos = 0;
    int m_line = 1;
};

} // namespace

std::optional<CsvProblem> ReadCsv(std::string_view text, const CsvRowHandler& onRow,
                                  const CsvLimits& limits) {
    if (text.size() > limits.fileBytes)
        return CsvProblem{0, "larger than " + Bytes(limits.fileBytes)};
    return CsvReader(text, limits).Run(onRow);
}

Status ReadCsvFile(const std::string& path, std::string& text, const CsvLimits& limits) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return FailureFromErrno(errno, ErrorCode::PathFileAccessError, path,
                                ErrorCode::FileNotFound);
    if (!S_ISREG(info.st_mode))
        return Status::Fail(ErrorCode::BadFileMode, path + ": not a regular file");
    const auto tooLarge = [&] {
        return Status::Fail(ErrorCode::InvalidFileFormat,
                            path + ": larger than " + Bytes(limits.fileBytes));
    };
    if (static_cast<size_t>(info.st_size) > limits.fileBytes)
        return tooLarge();
    if (const Status read = ReadFileBytes(path, text); !read)
        return read;
    // The file may have grown since it was looked at.
    return text.size() > limits.fileBytes ? tooLarge() : Status::Ok();
}

std::string CsvName(std::string_view bytes) {
    return cp1252::ToUtf8(TrimTrailingBlanks(bytes));
}

void AppendCsvField(std::string& csv, std::string_view field) {
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        csv.append(field);
        return;
    }
    csv.push_back('"');
    for (const char c : field) {
        if (c == '"')
            csv.push_back('"');
        csv.push_back(c);
    }
    csv.push_back('"');
}

void AppendCsvRow(std::string& csv, std::span<const std::string> fields) {
    for (size_t f = 0; f < fields.size(); ++f) {
        if (f > 0)
            csv.push_back(',');
        AppendCsvField(csv, fields[f]);
    }
    csv.append("\r\n");
}

} // namespace lumeth
