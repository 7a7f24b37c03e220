#include "files/file_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace lumeth {

Failure FailureFromErrno(int err, ErrorCode fallback, const std::string& path, ErrorCode missing) {
    ErrorCode code = fallback;
    switch (err) {
    case ENOENT:
    case ENOTDIR:
        code = missing;
        break;
    case EACCES:
    case EPERM:
        code = ErrorCode::PermissionDenied;
        break;
    case EISDIR:
        code = ErrorCode::PathFileAccessError;
        break;
    case ENOSPC:
        code = ErrorCode::DiskFull;
        break;
    case ENAMETOOLONG:
        code = ErrorCode::BadFileName;
        break;
    default:
        break;
    }
    return Failure{code, path + ": " + std::strerror(err)};
}

Status ReadFileBytes(const std::string& path, std::string& bytes) {
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) {
        return FailureFromErrno(errno, ErrorCode::PathFileAccessError, path,
                                ErrorCode::FileNotFound);
    }
    bytes.clear();
    char buf[4096];
    size_t n = 0;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) {
        bytes.append(buf, n);
    }
    const bool failed = std::ferror(f) != 0;
    const int err = errno;
    std::fclose(f);
    if (failed) {
        return FailureFromErrno(err, ErrorCode::DeviceIoError, path, ErrorCode::FileNotFound);
    }
    return Status::Ok();
}

Status WriteFileBytes(const std::string& path, const char* mode, std::string_view bytes) {
    std::FILE* f = std::fopen(path.c_str(), mode);
    if (f == nullptr) {
        return FailureFromErrno(errno, ErrorCode::PathFileAccessError, path,
                                ErrorCode::PathNotFound);
    }
    const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), f);
    int err = written == bytes.size() ? 0 : errno;
    if (std::fclose(f) != 0 && err == 0) {
        err = errno;
    }
    if (written != bytes.size() || err != 0) {
        return FailureFromErrno(err, ErrorCode::DeviceIoError, path, ErrorCode::PathNotFound);
    }
    return Status::Ok();
}

} // namespace lumeth
