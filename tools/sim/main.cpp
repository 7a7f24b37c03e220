// lumeth-sim: a server module emulator for trying Lumeth Admin without a
// router and for end-to-end tests.
#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
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

// The demo `name` into `state`; its title and password for the start line,
// or nothing after reporting why it cannot be made.
std::optional<std::string> ServeDemo(const std::string& name, SimState& state) {
    DemoResult demo = MakeDemo(name);
    if (!demo.status) {
        Error(demo.status.failure().detail);
        return std::nullopt;
    }
    state.Reset(std::move(demo.store), demo.password);
    return DemoTitle(name) + ", password: " + demo.password;
}

// The state as --state and --demo ask: `passwordSource` says where the
// password comes from; an exit code when it cannot be set up.
std::optional<int> PrepareState(const SimOptions& options, SimState& state,
                                std::string& passwordSource) {
    state.setAlphaWidth(options.alphaWidth);
    if (!options.stateFile) {
        const auto demo = ServeDemo(options.demo, state);
        if (!demo) {
            return kExitUsage;
        }
        passwordSource = "built-in " + *demo;
        return std::nullopt;
    }
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
        const auto demo = ServeDemo(options.demo, state);
        if (!demo) {
            return kExitUsage;
        }
        const std::string written = SaveStateFile(path, state);
        if (!written.empty()) {
            Error("state file " + path + ": " + written);
            return kExitBadState;
        }
        passwordSource = "new state file " + path + " from the " + *demo;
    }
    state.setChangeListener([path](const SimState& s) { return SaveStateFile(path, s); });
    return std::nullopt;
}

SimServerOptions ServerOptions(const SimOptions& options) {
    SimServerOptions server;
    server.faults = options.faults;
    server.pollIntervalMs = options.pollIntervalMs;
    server.trace = options.trace;
    server.maxClients = options.maxClients;
    if (options.maxQueuedTotal > 0) {
        server.maxQueuedTotal = static_cast<size_t>(options.maxQueuedTotal);
    }
    server.log = [](const std::string& line) { Error(line); };
    return server;
}

// Listen as --listen asks; false after reporting why it cannot.
bool StartListening(SimServer& server, const SimOptions& options) {
    bool inUse = false;
    QString listenError;
    if (server.Listen(QString::fromStdString(options.host), static_cast<quint16>(options.port),
                      listenError, inUse)) {
        return true;
    }
    if (inUse) {
        Error("port " + std::to_string(options.port) + " on " + options.host +
              " is already in use (another lumeth-sim or server module?)");
    } else {
        Error("cannot listen on " + options.host + ":" + std::to_string(options.port) + ": " +
              listenError.toStdString());
    }
    return false;
}

int Serve(int argc, char** argv, const SimOptions& options) {
    QCoreApplication app(argc, argv);
    SimState state;
    std::string passwordSource;
    if (const auto failed = PrepareState(options, state, passwordSource)) {
        return *failed;
    }
    SimServer server(state, ServerOptions(options));
    if (!StartListening(server, options)) {
        return kExitCannotListen;
    }
    std::cout << "lumeth-sim: listening on " << options.host << ":" << server.port() << ", "
              << passwordSource << std::endl;
    if (options.faults.Any()) {
        Error("fault injection on, seed " + std::to_string(options.faults.seed));
    }
    return app.exec();
}

int Run(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    const ParsedSimOptions parsed = ParseSimOptions(args);
    if (!parsed.status) {
        Error(parsed.status.failure().detail + " (--help for usage)");
        return kExitUsage;
    }
    if (parsed.options.help) {
        std::cout << SimUsage();
        return 0;
    }
    if (parsed.options.version) {
        std::cout << "lumeth-sim " << kProductVersion << "\n";
        return 0;
    }
    return Serve(argc, argv, parsed.options);
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
