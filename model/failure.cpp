#include "model/failure.h"

#include <new>

namespace lumeth {

std::string_view ErrorDescription(ErrorCode code) {
    switch (code) {
    // A report made while no runtime error is pending (the checksum reports)
    // carries number 0 and an empty description: "Error # 0 - ".
    case ErrorCode::None:
        return "";
    case ErrorCode::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case ErrorCode::Overflow:
        return "Overflow";
    case ErrorCode::OutOfMemory:
        return "Out of memory";
    case ErrorCode::SubscriptOutOfRange:
        return "Subscript out of range";
    case ErrorCode::TypeMismatch:
        return "Type mismatch";
    case ErrorCode::BadFileName:
        return "Bad file name or number";
    case ErrorCode::FileNotFound:
        return "File not found";
    case ErrorCode::BadFileMode:
        return "Bad file mode";
    case ErrorCode::DeviceIoError:
        return "Device I/O error";
    case ErrorCode::FileAlreadyExists:
        return "File already exists";
    case ErrorCode::DiskFull:
        return "Disk full";
    case ErrorCode::InputPastEndOfFile:
        return "Input past end of file";
    case ErrorCode::PermissionDenied:
        return "Permission denied";
    case ErrorCode::PathFileAccessError:
        return "Path/File access error";
    case ErrorCode::PathNotFound:
        return "Path not found";
    case ErrorCode::InvalidFileFormat:
        return "Invalid file format";
    }
    return "Application-defined or object-defined error";
}

std::string Failure::LogMessage() const {
    return "Error # " + std::to_string(number()) + " - " + std::string(description());
}

Failure FailureFromException(const std::exception& error) {
    const bool memory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    return Failure{memory ? ErrorCode::OutOfMemory : ErrorCode::SubscriptOutOfRange, error.what()};
}

} // namespace lumeth
