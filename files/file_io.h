#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "model/failure.h"

// Whole-file reads and writes that report failures as catalogue codes, for
// the small text files kept in the program's folder.
namespace lumeth {

// The catalogue failure for a failed file operation, naming `path`. `missing`
// is the code for ENOENT/ENOTDIR (a missing file when reading, a missing
// folder when writing); errors without a closer code give `fallback`.
Failure FailureFromErrno(int err, ErrorCode fallback, const std::string& path, ErrorCode missing);

// Read the whole file.
Status ReadFileBytes(const std::string& path, std::string& bytes);
// Open with `mode` ("wb" or "ab"), write `bytes`, close; nothing stays open.
Status WriteFileBytes(const std::string& path, const char* mode, std::string_view bytes);

// Where a writer puts its output, piece by piece; false when the write failed.
using ByteSink = std::function<bool(std::string_view)>;

// Who may read a file that is created new.
enum class NewFileAccess {
    Shared, // the usual 0666 less the umask
    Owner,  // 0600: the file holds the panel password
};

// Replace the file at `path` with what `write` puts into its sink: written to
// a new temporary file in the same folder, flushed to disk (fsync), given the
// permissions of the file it replaces (or `access` when there is none), then
// renamed over the target in one step. On failure the old file (if any) is
// left as it was, no temporary file remains, and the detail is the system's
// reason ("No space left on device"). Only a regular file is replaced (through
// a symbolic link, the file it names): a FIFO, device or socket, a link to one
// or a dangling link is refused before anything is written, with the detail
// "not a regular file".
Status ReplaceFile(const std::string& path, const std::function<bool(const ByteSink&)>& write,
                   NewFileAccess access = NewFileAccess::Shared);
// Same, with the whole content at hand.
Status ReplaceFileContents(const std::string& path, std::string_view bytes,
                           NewFileAccess access = NewFileAccess::Shared);

} // namespace lumeth
