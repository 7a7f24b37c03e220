#include "tools/sim/state_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "files/file_io.h"
#include "files/json_document.h"

namespace lumeth::sim {

Status LoadStateFile(const std::string& path, SimState& state) {
    // A document too large to read is refused before it takes memory.
    std::error_code ec;
    if (const auto size = std::filesystem::file_size(path, ec); !ec) {
        if (Status fits = CheckJsonDocumentSize(size); !fits) {
            return fits;
        }
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return Status::Fail(ErrorCode::FileNotFound,
                            std::string("cannot open: ") + std::strerror(errno));
    }
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) {
        return Status::Fail(ErrorCode::DeviceIoError, "cannot read");
    }

    PanelStore store;
    store.ResetToDefaults();
    JsonReadResult read = ReadJsonDocument(text.str(), store);
    if (!read.status) {
        return read.status;
    }
    if (!read.password) {
        return Status::Fail(ErrorCode::InvalidFileFormat, "no \"password\" in the document");
    }
    // The emulator serves alpha tables in channel order only.
    for (SubType s : kAllSubTypes) {
        SetChannelNames(store.alpha(s), std::move(store.alpha(s).channelNames));
    }
    state.Reset(std::move(store), std::move(*read.password));
    return Status::Ok();
}

std::string SaveStateFile(const std::string& path, const SimState& state) {
    JsonDocumentOptions options;
    options.includeAlphas = true;
    options.password = state.password();
    // The file holds the panel password: a new one is readable by its owner
    // only, an existing one keeps the permissions it was given.
    const Status saved = ReplaceFile(
        path, [&](const ByteSink& sink) { return WriteJsonDocument(state.store(), options, sink); },
        NewFileAccess::Owner);
    return saved ? std::string() : "cannot write " + path + ": " + saved.failure().detail;
}

} // namespace lumeth::sim
