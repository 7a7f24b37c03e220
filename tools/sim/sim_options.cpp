#include "tools/sim/sim_options.h"

#include <charconv>
#include <cstdlib>

namespace lumeth::sim {

namespace {

bool ParseInt(const std::string& text, long min, long max, long& out) {
    const char* end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, out);
    return ec == std::errc() && ptr == end && out >= min && out <= max;
}

bool ParseProbability(const std::string& text, double& out) {
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    out = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && out >= 0.0 && out <= 1.0;
}

} // namespace

const char* SimUsage() {
    return "usage: lumeth-sim [--listen HOST:PORT] [--state FILE] [--demo demo|large|max]\n"
           "                  [--poll-interval MS] [--alpha-width N] [--trace]\n"
           "                  [--seed N] [--fault-split] [--fault-garbage P] [--fault-checksum P]\n"
           "                  [--fault-cut P] [--fault-drop N] [--fault-slow MS]\n"
           "       lumeth-sim --help | --version\n"
           "A server module emulator for Lumeth Admin. Defaults: --listen 127.0.0.1:1250,\n"
           "the built-in demo, a poll every 5000 ms (0: never). --state FILE keeps the\n"
           "configuration in a JSON document (created from the demo when missing) and\n"
           "writes every accepted change back to it. Port 0 picks a free port.\n"
           "Exit codes: 1 bad arguments, 2 bad state file, 3 cannot listen.\n";
}

std::optional<SimOptions> ParseSimOptions(const std::vector<std::string>& args,
                                          std::string& error) {
    SimOptions options;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= args.size()) {
                error = arg + " needs a value";
                return false;
            }
            out = args[++i];
            return true;
        };
        std::string v;
        long n = 0;
        if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else if (arg == "--version") {
            options.version = true;
        } else if (arg == "--trace") {
            options.trace = true;
        } else if (arg == "--fault-split") {
            options.faults.split = true;
        } else if (arg == "--listen") {
            if (!value(v)) {
                return std::nullopt;
            }
            const auto colon = v.rfind(':');
            if (colon == std::string::npos || colon == 0 ||
                !ParseInt(v.substr(colon + 1), 0, 65535, n)) {
                error = "--listen wants HOST:PORT with a port from 0 to 65535, not \"" + v + "\"";
                return std::nullopt;
            }
            options.host = v.substr(0, colon);
            if (options.host.size() > 2 && options.host.front() == '[' &&
                options.host.back() == ']') {
                options.host = options.host.substr(1, options.host.size() - 2);
            }
            options.port = static_cast<int>(n);
        } else if (arg == "--state") {
            if (!value(v)) {
                return std::nullopt;
            }
            options.stateFile = v;
        } else if (arg == "--demo") {
            if (!value(v)) {
                return std::nullopt;
            }
            if (v != "demo" && v != "large" && v != "max") {
                error = "--demo wants demo, large or max, not \"" + v + "\"";
                return std::nullopt;
            }
            options.demo = v;
        } else if (arg == "--poll-interval" || arg == "--alpha-width" || arg == "--seed" ||
                   arg == "--fault-drop" || arg == "--fault-slow") {
            if (!value(v)) {
                return std::nullopt;
            }
            const long max = arg == "--alpha-width" ? 127
                             : arg == "--seed"      ? 2147483647L
                                                    : 3600000L;
            if (!ParseInt(v, 0, max, n)) {
                error = arg + " wants a whole number from 0 to " + std::to_string(max) +
                        ", not \"" + v + "\"";
                return std::nullopt;
            }
            if (arg == "--poll-interval") {
                options.pollIntervalMs = static_cast<int>(n);
            } else if (arg == "--alpha-width") {
                options.alphaWidth = static_cast<int>(n);
            } else if (arg == "--seed") {
                options.faults.seed = static_cast<uint64_t>(n);
            } else if (arg == "--fault-drop") {
                options.faults.dropAfter = static_cast<int>(n);
            } else {
                options.faults.slowMs = static_cast<int>(n);
            }
        } else if (arg == "--fault-garbage" || arg == "--fault-checksum" || arg == "--fault-cut") {
            if (!value(v)) {
                return std::nullopt;
            }
            double p = 0;
            if (!ParseProbability(v, p)) {
                error = arg + " wants a probability from 0 to 1, not \"" + v + "\"";
                return std::nullopt;
            }
            (arg == "--fault-garbage"    ? options.faults.garbage
             : arg == "--fault-checksum" ? options.faults.checksum
                                         : options.faults.cut) = p;
        } else {
            error = "unknown argument \"" + arg + "\"";
            return std::nullopt;
        }
    }
    return options;
}

} // namespace lumeth::sim
