#pragma once

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

} // namespace lumeth
