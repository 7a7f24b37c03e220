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

// The options that take a whole number: range and where it goes.
struct NumberOption {
    const char* name;
    long min;
    long max;
    void (*set)(SimOptions&, long);
};

constexpr long kMaxMs = 3600000L;

const NumberOption kNumberOptions[] = {
    {"--poll-interval", 0, kMaxMs, [](SimOptions& o, long n) { o.pollIntervalMs = int(n); }},
    {"--alpha-width", 0, 127, [](SimOptions& o, long n) { o.alphaWidth = int(n); }},
    {"--seed", 0, 2147483647L, [](SimOptions& o, long n) { o.faults.seed = uint64_t(n); }},
    {"--fault-drop", 0, kMaxMs, [](SimOptions& o, long n) { o.faults.dropAfter = int(n); }},
    {"--fault-slow", 0, kMaxMs, [](SimOptions& o, long n) { o.faults.slowMs = int(n); }},
    {"--max-clients", 1, 1000000L, [](SimOptions& o, long n) { o.maxClients = int(n); }},
    {"--max-queued-total", 1024, 1L << 40, [](SimOptions& o, long n) { o.maxQueuedTotal = n; }},
};

const NumberOption* FindNumberOption(const std::string& arg) {
    for (const NumberOption& option : kNumberOptions) {
        if (arg == option.name) {
            return &option;
        }
    }
    return nullptr;
}

bool IsProbabilityOption(const std::string& arg) {
    return arg == "--fault-garbage" || arg == "--fault-checksum" || arg == "--fault-cut";
}

bool TakesValue(const std::string& arg) {
    return arg == "--listen" || arg == "--state" || arg == "--demo" || FindNumberOption(arg) ||
           IsProbabilityOption(arg);
}

// An option without a value; false when `arg` is none.
bool ParseFlag(const std::string& arg, SimOptions& options) {
    if (arg == "--help" || arg == "-h") {
        options.help = true;
    } else if (arg == "--version") {
        options.version = true;
    } else if (arg == "--trace") {
        options.trace = true;
    } else if (arg == "--fault-split") {
        options.faults.split = true;
    } else {
        return false;
    }
    return true;
}

Status BadArgument(std::string line) {
    return Status::Fail(ErrorCode::InvalidProcedureCall, std::move(line));
}

Status ParseListen(const std::string& v, SimOptions& options) {
    const auto colon = v.rfind(':');
    long port = 0;
    if (colon == std::string::npos || colon == 0 ||
        !ParseInt(v.substr(colon + 1), 0, 65535, port)) {
        return BadArgument("--listen wants HOST:PORT with a port from 0 to 65535, not \"" + v +
                           "\"");
    }
    options.host = v.substr(0, colon);
    if (options.host.size() > 2 && options.host.front() == '[' && options.host.back() == ']') {
        options.host = options.host.substr(1, options.host.size() - 2);
    }
    options.port = static_cast<int>(port);
    return Status::Ok();
}

// `arg` (one TakesValue accepts) with its value `v`; fails when `v` does not
// suit it.
Status ParseValue(const std::string& arg, const std::string& v, SimOptions& options) {
    if (arg == "--listen") {
        return ParseListen(v, options);
    }
    if (arg == "--state") {
        options.stateFile = v;
    } else if (arg == "--demo") {
        if (v != "demo" && v != "large" && v != "max") {
            return BadArgument("--demo wants demo, large or max, not \"" + v + "\"");
        }
        options.demo = v;
    } else if (const NumberOption* number = FindNumberOption(arg)) {
        long n = 0;
        if (!ParseInt(v, number->min, number->max, n)) {
            return BadArgument(arg + " wants a whole number from " + std::to_string(number->min) +
                               " to " + std::to_string(number->max) + ", not \"" + v + "\"");
        }
        number->set(options, n);
    } else {
        double p = 0;
        if (!ParseProbability(v, p)) {
            return BadArgument(arg + " wants a probability from 0 to 1, not \"" + v + "\"");
        }
        (arg == "--fault-garbage"    ? options.faults.garbage
         : arg == "--fault-checksum" ? options.faults.checksum
                                     : options.faults.cut) = p;
    }
    return Status::Ok();
}

} // namespace

const char* SimUsage() {
    return "usage: lumeth-sim [--listen HOST:PORT] [--state FILE] [--demo demo|large|max]\n"
           "                  [--poll-interval MS] [--alpha-width N] [--trace]\n"
           "                  [--seed N] [--fault-split] [--fault-garbage P] [--fault-checksum P]\n"
           "                  [--fault-cut P] [--fault-drop N] [--fault-slow MS]\n"
           "                  [--max-clients N] [--max-queued-total BYTES]\n"
           "       lumeth-sim --help | --version\n"
           "A server module emulator for Lumeth Admin. Defaults: --listen 127.0.0.1:1250,\n"
           "the built-in demo, a poll every 5000 ms (0: never). --state FILE keeps the\n"
           "configuration in a JSON document (created from the demo when missing) and\n"
           "writes every accepted change back to it. Port 0 picks a free port.\n"
           "At most --max-clients clients at once (default and ceiling: what the\n"
           "descriptor limit leaves room for; the longest idle is closed for a new one);\n"
           "at most --max-queued-total bytes (default 64 MiB) waiting for all clients.\n"
           "Exit codes: 1 bad arguments, 2 bad state file, 3 cannot listen.\n";
}

ParsedSimOptions ParseSimOptions(const std::vector<std::string>& args) {
    ParsedSimOptions parsed;
    SimOptions& options = parsed.options;
    for (size_t i = 0; i < args.size() && parsed.status; ++i) {
        const std::string& arg = args[i];
        if (ParseFlag(arg, options)) {
            continue;
        }
        if (!TakesValue(arg)) {
            parsed.status = BadArgument("unknown argument \"" + arg + "\"");
        } else if (i + 1 >= args.size()) {
            parsed.status = BadArgument(arg + " needs a value");
        } else {
            parsed.status = ParseValue(arg, args[++i], options);
        }
    }
    return parsed;
}

} // namespace lumeth::sim
