#include "tools/cli/cli_common.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>

#include "tools/cli/progress_line.h"

namespace lumeth::cli {

int ToInt(ExitCode code) {
    return static_cast<int>(code);
}

void PrintUsage(std::ostream& out) {
    out << "usage: lumeth-cli <command> [arguments]\n"
           "       lumeth-cli --help | --version\n\ncommands:\n";
    for (const Command& c : Commands()) {
        const std::string synopsis = std::string(c.name) + " " + c.arguments;
        // A synopsis too long for the column puts its summary on the next line.
        if (synopsis.size() < 24) {
            out << "  " << synopsis << std::string(24 - synopsis.size(), ' ') << c.summary << "\n";
        } else {
            out << "  " << synopsis << "\n" << std::string(26, ' ') << c.summary << "\n";
        }
    }
    out << CommandOptionsHelp();
    out << "\nFILE and IN may be a panel data file (.dat) or a JSON document (.json); the\n"
           "content tells which. The extension of OUT (.dat or .json) chooses its form;\n"
           "OUT - writes the JSON document to standard output.\n"
           "\nexit codes: 0 success, 1 usage error, 2 bad input, 3 server module unreachable\n"
           "or link lost, 4 wrong password, 5 timed out waiting for the server module,\n"
           "6 apply: the server module holds a configuration that differs from FILE,\n"
           "7 cannot write an output file or standard output (apply: or its backup),\n"
           "8 apply --base: the server module changed a part since BASE that FILE changes\n";
}

int UsageError(const std::string& message) {
    Progress().Line("lumeth-cli: " + message + "\n");
    PrintUsage(std::cerr);
    return ToInt(ExitCode::Usage);
}

int Error(ExitCode code, const std::string& line) {
    Progress().Line("lumeth-cli: " + line);
    return ToInt(code);
}

int InputError(const std::string& source, const Status& status) {
    return Error(ExitCode::BadInput, source + ": " + status.failure().detail);
}

namespace {

constexpr const char* kStandardOutputName = "standard output";

// All of `bytes` to the standard output descriptor; errno tells why not.
bool WriteAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// `config` in `form` on stdout. Written past stdio's buffer, so that a full
// disk or a closed pipe is told here with its reason, once.
Status WriteStandardOutput(const Configuration& config, ConfigurationForm form) {
    std::cout.flush();
    std::fflush(stdout);
    errno = 0;
    // The encoder hands over small pieces; the descriptor gets large ones.
    constexpr size_t kChunk = 1 << 16;
    std::string pending;
    const bool encoded = EncodeConfiguration(config, form, [&](std::string_view bytes) {
        pending.append(bytes);
        if (pending.size() < kChunk) {
            return true;
        }
        return WriteAll(std::exchange(pending, {}));
    });
    if (encoded && WriteAll(pending)) {
        return Status::Ok();
    }
    const int error = errno;
    return Status::Fail(ErrorCode::DeviceIoError,
                        error != 0 ? std::strerror(error) : "the write failed");
}

} // namespace

std::optional<ConfigurationForm> OutputForm(const std::string& out) {
    if (out == kStandardOutput) {
        return ConfigurationForm::Json;
    }
    return FormForPath(out);
}

int UnknownOutputForm(const std::string& out) {
    return UsageError("cannot tell the form of " + out +
                      " (use .dat or .json, or - for the JSON document on standard output)");
}

void PrintResult(const std::string& line, bool toStandardError) {
    if (toStandardError) {
        Progress().Line(line);
        return;
    }
    Progress().Clear();
    std::cout << line << "\n";
}

int WriteConfigurationFile(const Configuration& config, ConfigurationForm form,
                           const std::string& path, const std::string& source) {
    if (const Status encodable = CheckEncodable(config, form); !encodable) {
        return InputError(source, encodable);
    }
    if (path == kStandardOutput) {
        const Status status = WriteStandardOutput(config, form);
        return status ? ToInt(ExitCode::Ok) : WriteError(kStandardOutputName, status);
    }
    const bool secret = form == ConfigurationForm::Json && config.password.has_value();
    const Status status = ReplaceFile(
        path, [&](const ByteSink& sink) { return EncodeConfiguration(config, form, sink); },
        secret ? NewFileAccess::Owner : NewFileAccess::Shared);
    if (!status) {
        return WriteError(path, status);
    }
    return ToInt(ExitCode::Ok);
}

int WriteError(const std::string& path, const Status& status) {
    return Error(ExitCode::WriteFailed, "cannot write " + path + ": " + status.failure().detail);
}

Status ParseFileToOutput(const std::string& command, const std::vector<std::string>& args,
                         const std::vector<std::string>& valued, FileToOutput& parsed) {
    const auto usage = [](const std::string& message) {
        return Status::Fail(ErrorCode::InvalidProcedureCall, message);
    };
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool isValued = std::find(valued.begin(), valued.end(), arg) != valued.end();
        if (arg == "-o" || isValued) {
            const bool repeated = arg == "-o" ? !parsed.out.empty() : parsed.options.count(arg) > 0;
            if (i + 1 >= args.size() || repeated) {
                return usage(command + " takes one " + arg + (arg == "-o" ? " OUT" : " value"));
            }
            (arg == "-o" ? parsed.out : parsed.options[arg]) = args[++i];
        } else if (!arg.empty() && arg[0] == '-') {
            return usage("unknown option " + arg);
        } else if (parsed.in.empty()) {
            parsed.in = arg;
        } else {
            return usage(command + " takes one FILE");
        }
    }
    if (parsed.in.empty() || parsed.out.empty()) {
        return usage(command + " needs FILE and -o OUT");
    }
    return Status::Ok();
}

int DisplayListTotal(const PanelStore& store) {
    int total = 0;
    for (SubType subType : kAllSubTypes) {
        total += store.listCount(subType);
    }
    return total;
}

} // namespace lumeth::cli
