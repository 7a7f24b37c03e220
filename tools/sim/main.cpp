// lumeth-sim: a server module emulator for trying Lumeth Admin without a
// router and for end-to-end tests.
#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "lumeth/version.h"
#include "tools/sim/demo_config.h"
#include "tools/sim/sim_options.h"
#include "tools/sim/sim_server.h"
#include "tools/sim/state_file.h"

using namespace lumeth;
using namespace lumeth::sim;

namespace {

constexpr int kExitUsage = 1;
constexpr int kExitBadState = 2;
constexpr int kExitCannotListen = 3;

// "demo configuration" for the radio-facility demo, "large demo" for the
// generated sets.
std::string DemoTitle(const std::string& name) {
    return name == "demo" ? std::string("demo configuration") : name + " demo";
}

void Error(const std::string& line) {
    std::cerr << "lumeth-sim: " << line << std::endl;
}

int Run(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    std::string error;
    const auto parsed = ParseSimOptions(args, error);
    if (!parsed) {
        Error(error + " (--help for usage)");
        return kExitUsage;
    }
    const SimOptions& options = *parsed;
    if (options.help) {
        std::cout << SimUsage();
        return 0;
    }
    if (options.version) {
        std::cout << "lumeth-sim " << kProductVersion << "\n";
        return 0;
    }

    QCoreApplication app(argc, argv);

    SimState state;
    state.setAlphaWidth(options.alphaWidth);
    std::string passwordSource;
    if (options.stateFile) {
        const std::string& path = *options.stateFile;
        std::error_code ec;
        if (std::filesystem::exists(path, ec)) {
            const Status loaded = LoadStateFile(path, state);
            if (!loaded) {
                Error("state file " + path + ": " + loaded.failure().detail);
                return kExitBadState;
            }
            passwordSource = "password from the state file " + path;
        } else {
            DemoResult demo = MakeDemo(options.demo);
            if (!demo.status) {
                Error(demo.status.failure().detail);
                return kExitUsage;
            }
            state.Reset(std::move(demo.store), demo.password);
            const std::string written = SaveStateFile(path, state);
            if (!written.empty()) {
                Error("state file " + path + ": " + written);
                return kExitBadState;
            }
            passwordSource = "new state file " + path + " from the " + DemoTitle(options.demo) +
                             ", password: " + demo.password;
        }
        state.setChangeListener([path](const SimState& s) { return SaveStateFile(path, s); });
    } else {
        DemoResult demo = MakeDemo(options.demo);
        if (!demo.status) {
            Error(demo.status.failure().detail);
            return kExitUsage;
        }
        state.Reset(std::move(demo.store), demo.password);
        passwordSource = "built-in " + DemoTitle(options.demo) + ", password: " + demo.password;
    }

    SimServerOptions serverOptions;
    serverOptions.faults = options.faults;
    serverOptions.pollIntervalMs = options.pollIntervalMs;
    serverOptions.trace = options.trace;
    serverOptions.log = [](const std::string& line) { Error(line); };
    SimServer server(state, serverOptions);

    bool inUse = false;
    QString listenError;
    if (!server.Listen(QString::fromStdString(options.host), static_cast<quint16>(options.port),
                       listenError, inUse)) {
        if (inUse) {
            Error("port " + std::to_string(options.port) + " on " + options.host +
                  " is already in use (another lumeth-sim or server module?)");
        } else {
            Error("cannot listen on " + options.host + ":" + std::to_string(options.port) + ": " +
                  listenError.toStdString());
        }
        return kExitCannotListen;
    }

    std::cout << "lumeth-sim: listening on " << options.host << ":" << server.port() << ", "
              << passwordSource << std::endl;
    if (options.faults.Any()) {
        Error("fault injection on, seed " + std::to_string(options.faults.seed));
    }
    return app.exec();
}

} // namespace

int main(int argc, char** argv) {
    // A file size limit makes a state save fail (and be logged) instead of
    // killing the emulator.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        // A state file too large for memory: one line, as for any bad state file.
        Error("not enough memory for the state file");
        return kExitBadState;
    }
}
