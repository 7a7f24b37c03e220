#include <gtest/gtest.h>

#include "tools/sim/sim_options.h"

using lumeth::sim::ParseSimOptions;

TEST(SimOptions, DefaultsListenOnLoopbackOnlyAndCapsAreTakenAsGiven) {
    const auto parsed = ParseSimOptions({});
    ASSERT_TRUE(parsed.status);
    const auto* o = &parsed.options;
    EXPECT_EQ(o->host, "127.0.0.1");
    EXPECT_EQ(o->port, 1250);
    EXPECT_EQ(o->pollIntervalMs, 5000);
    EXPECT_EQ(o->demo, "demo");
    EXPECT_FALSE(o->stateFile);
    EXPECT_FALSE(o->faults.Any());

    // Resource caps are taken as given.
    const auto caps = ParseSimOptions({"--max-clients", "8", "--max-queued-total", "4194304"});
    ASSERT_TRUE(caps.status) << caps.status.failure().detail;
    EXPECT_EQ(caps.options.maxClients, 8);
    EXPECT_EQ(caps.options.maxQueuedTotal, 4194304);
}

TEST(SimOptions, RejectsBadValuesWithOneLine) {
    const std::vector<std::vector<std::string>> bad = {
        {"--listen", "1250"},       {"--listen", "127.0.0.1:70000"},
        {"--listen", "127.0.0.1:"}, {"--demo", "huge"},
        {"--fault-garbage", "1.5"}, {"--fault-cut", "x"},
        {"--poll-interval", "-1"},  {"--fault-drop"},
        {"--alpha-width", "200"},   {"--bogus"},
        {"--max-clients", "0"},     {"--max-queued-total", "1023"},
    };
    for (const auto& args : bad) {
        const auto parsed = ParseSimOptions(args);
        EXPECT_FALSE(parsed.status) << args[0];
        const std::string& error = parsed.status.failure().detail;
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(error.find('\n'), std::string::npos);
    }
}
