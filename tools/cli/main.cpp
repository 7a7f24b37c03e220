// lumeth-cli: scripted access to panel configurations. main() only finds the
// command in the table and hands it the remaining arguments.
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "lumeth/version.h"
#include "tools/cli/cli_common.h"

namespace {

int Run(int argc, char** argv) {
    using namespace lumeth::cli;
    if (argc < 2) {
        return UsageError("no command given");
    }
    const std::string name = argv[1];
    if (name == "-h" || name == "--help" || name == "help") {
        PrintUsage(std::cout);
        return ToInt(ExitCode::Ok);
    }
    if (name == "--version") {
        std::cout << "lumeth-cli " << lumeth::kProductVersion << "\n";
        return ToInt(ExitCode::Ok);
    }
    const std::vector<std::string> args(argv + 2, argv + argc);
    for (const Command& command : Commands()) {
        if (name == command.name) {
            return command.run(args);
        }
    }
    return UsageError("unknown command \"" + name + "\"");
}

} // namespace

int main(int argc, char** argv) {
    // The error log's dates and times in the system's short format.
    std::setlocale(LC_ALL, "");
    // A file size limit (ulimit -f) makes a write fail with EFBIG, reported
    // like a full disk, instead of killing the command with its temporary
    // file left behind.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        const int code = Run(argc, argv);
        // What a command printed is its result: output lost to a full disk
        // or a closed pipe is a failed write, not a success.
        errno = 0;
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0 || !std::cout) {
            const std::string reason = errno != 0 ? std::string(": ") + std::strerror(errno) : "";
            return lumeth::cli::Error(lumeth::cli::ExitCode::WriteFailed,
                                      "cannot write standard output" + reason);
        }
        return code;
    } catch (const std::bad_alloc&) {
        // An input too large for memory: one line, like any other bad input.
        return lumeth::cli::Error(lumeth::cli::ExitCode::BadInput,
                                  "not enough memory for this input");
    }
}
