#include "tools/sim/state_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <unistd.h>

#include "files/json_document.h"

namespace lumeth::sim {

Status LoadStateFile(const std::string& path, SimState& state) {
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
    const std::string text = WriteJsonDocument(state.store(), options);

    const std::string temp = path + ".tmp";
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        return "cannot create " + temp + ": " + std::strerror(errno);
    }
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            const std::string error = "cannot write " + temp + ": " + std::strerror(errno);
            ::close(fd);
            ::unlink(temp.c_str());
            return error;
        }
        done += static_cast<size_t>(n);
    }
    const bool synced = ::fsync(fd) == 0;
    const bool closed = ::close(fd) == 0;
    if (!synced || !closed) {
        const std::string error = "cannot flush " + temp + ": " + std::strerror(errno);
        ::unlink(temp.c_str());
        return error;
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
        const std::string error = "cannot replace " + path + ": " + std::strerror(errno);
        ::unlink(temp.c_str());
        return error;
    }
    return {};
}

} // namespace lumeth::sim
