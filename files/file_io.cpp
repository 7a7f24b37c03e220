#include "files/file_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

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

namespace {

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

Status WriteFailure(int err, const std::string& path) {
    Failure failure =
        FailureFromErrno(err, ErrorCode::DeviceIoError, path, ErrorCode::PathNotFound);
    failure.detail = std::strerror(err);
    return failure;
}

Status NotRegular() {
    return Status::Fail(ErrorCode::PathFileAccessError, "not a regular file");
}

// Whether `path` may be replaced: absent, a regular file or a folder (whose
// rename fails with its own reason), never a FIFO, device or socket, nor a
// symbolic link to one or to nothing. Only lstat and stat look at it: opening
// a FIFO for writing would block until someone reads it.
Status CheckTarget(const std::string& path) {
    struct stat entry {};
    if (::lstat(path.c_str(), &entry) != 0) {
        return errno == ENOENT ? Status::Ok() : WriteFailure(errno, path);
    }
    if (S_ISLNK(entry.st_mode) && ::stat(path.c_str(), &entry) != 0) {
        // A dangling link, or a loop: the rename would replace the link itself.
        const int err = errno;
        return err == ENOENT || err == ELOOP || err == ENOTDIR ? NotRegular()
                                                               : WriteFailure(err, path);
    }
    return S_ISREG(entry.st_mode) || S_ISDIR(entry.st_mode) ? Status::Ok() : NotRegular();
}

struct TempFile {
    std::string path;
    int fd = -1;
};

// A new, exclusively created file beside `path`, so the rename that replaces
// `path` stays within one file system and happens in one step.
Status CreateTempBeside(const std::string& path, mode_t mode, TempFile& temp) {
    std::random_device seed;
    std::mt19937 random(seed());
    for (int attempt = 0; attempt < 16 && temp.fd < 0; ++attempt) {
        temp.path = path + ".tmp" + std::to_string(random() % 1000000);
        temp.fd = ::open(temp.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (temp.fd < 0 && errno != EEXIST) {
            return WriteFailure(errno, path);
        }
    }
    if (temp.fd < 0) {
        return Status::Fail(ErrorCode::FileAlreadyExists,
                            "cannot find a free temporary name beside " + path);
    }
    return Status::Ok();
}

// Write the content into `fd`, give it the permissions of the file it
// replaces (`old`, when there is one), flush it to disk and close it. 0 when
// all went well, -1 when the writer gave up without a system error, else the
// error number.
int FillAndClose(int fd, const std::function<bool(const ByteSink&)>& write,
                 const struct stat* old) {
    int err = 0;
    const ByteSink sink = [&](std::string_view bytes) {
        if (err == 0 && !WriteAll(fd, bytes)) {
            err = errno;
        }
        return err == 0;
    };
    const bool written = write(sink) && err == 0;
    if (written && old != nullptr && ::fchmod(fd, old->st_mode & 07777) != 0) {
        err = errno;
    }
    if (written && err == 0 && ::fsync(fd) != 0) {
        err = errno;
    }
    if (::close(fd) != 0 && err == 0) {
        err = errno;
    }
    return err != 0 ? err : (written ? 0 : -1);
}

// The rename itself reaches the disk with the folder's entry.
void SyncFolderOf(const std::filesystem::path& target) {
    const std::string folder = target.parent_path().empty() ? "." : target.parent_path().string();
    const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
}

} // namespace

Status ReplaceFile(const std::string& path, const std::function<bool(const ByteSink&)>& write,
                   NewFileAccess access) {
    namespace fs = std::filesystem;
    if (Status usable = CheckTarget(path); !usable) {
        return usable;
    }
    // A symbolic link keeps pointing where it did: the file it names is replaced.
    std::error_code ec;
    if (fs::is_symlink(fs::path(path), ec)) {
        const fs::path real = fs::canonical(path, ec);
        return ec ? WriteFailure(ec.value(), path) : ReplaceFile(real.string(), write, access);
    }
    const fs::path target(path);
    if (target.filename().empty()) {
        return Status::Fail(ErrorCode::BadFileName, "no file name in " + path);
    }
    // An operator's chmod on the file being replaced survives the rename.
    struct stat old {};
    const bool replacing = ::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode);
    // A file its owner made read-only is not replaced behind its back: the
    // rename would succeed wherever the folder is writable.
    if (replacing && ::access(path.c_str(), W_OK) != 0) {
        return WriteFailure(errno, path);
    }
    // A file being replaced may hold what others must not read; its copy is
    // private until it gets the old file's permissions below.
    const mode_t mode = access == NewFileAccess::Owner || replacing ? 0600 : 0666;

    TempFile temp;
    if (Status created = CreateTempBeside(path, mode, temp); !created) {
        return created;
    }
    const int err = FillAndClose(temp.fd, write, replacing ? &old : nullptr);
    if (err != 0) {
        ::unlink(temp.path.c_str());
        return err < 0 ? Status::Fail(ErrorCode::DeviceIoError, "the content could not be produced")
                       : WriteFailure(err, path);
    }
    if (std::rename(temp.path.c_str(), path.c_str()) != 0) {
        const int renameError = errno;
        ::unlink(temp.path.c_str());
        return WriteFailure(renameError, path);
    }
    SyncFolderOf(target);
    return Status::Ok();
}

Status ReplaceFileContents(const std::string& path, std::string_view bytes, NewFileAccess access) {
    return ReplaceFile(
        path, [bytes](const ByteSink& sink) { return sink(bytes); }, access);
}

} // namespace lumeth
