#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace lumeth {

// Error numbers in the style of BASIC runtime errors, so that log lines read
// "Error # 53 - File not found". One catalogue for the whole core.
enum class ErrorCode : int {
    None = 0,
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    BadFileName = 52,
    FileNotFound = 53,
    BadFileMode = 54,
    DeviceIoError = 57,
    FileAlreadyExists = 58,
    DiskFull = 61,
    InputPastEndOfFile = 62,
    PermissionDenied = 70,
    PathFileAccessError = 75,
    PathNotFound = 76,
    InvalidFileFormat = 321,
};

// The catalogue's description of a code ("File not found").
std::string_view ErrorDescription(ErrorCode code);

// A failure carried back to the caller: the catalogue code plus a detail that
// says precisely what went wrong (for the command line and tests; the error log
// uses number and description only).
struct Failure {
    ErrorCode code = ErrorCode::None;
    std::string detail;

    int number() const { return static_cast<int>(code); }
    std::string_view description() const { return ErrorDescription(code); }
    // "Error # 53 - File not found"
    std::string LogMessage() const;
};

// A failure caught as an exception: out of memory for std::bad_alloc, a
// subscript out of range for anything else (a position beyond an array).
Failure FailureFromException(const std::exception& error);

// Ok, or a failure with a reason.
class Status {
public:
    Status() = default;
    Status(Failure failure) : m_failure(std::move(failure)) {}
    static Status Ok() { return {}; }
    static Status Fail(ErrorCode code, std::string detail) {
        return Status(Failure{code, std::move(detail)});
    }

    bool ok() const { return m_failure.code == ErrorCode::None; }
    explicit operator bool() const { return ok(); }
    const Failure& failure() const { return m_failure; }

private:
    Failure m_failure;
};

} // namespace lumeth
