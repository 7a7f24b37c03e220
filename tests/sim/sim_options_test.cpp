#include <gtest/gtest.h>

#include "tools/sim/sim_options.h"

using lumeth::sim::ParseSimOptions;

TEST(SimOptions, DefaultsListenOnLoopbackOnly) {
    std::string error;
    const auto o = ParseSimOptions({}, error);
    ASSERT_TRUE(o);
    EXPECT_EQ(o->host, "127.0.0.1");
    EXPECT_EQ(o->port, 1250);
    EXPECT_EQ(o->pollIntervalMs, 5000);
    EXPECT_EQ(o->demo, "demo");
    EXPECT_FALSE(o->stateFile);
    EXPECT_FALSE(o->faults.Any());
}

TEST(SimOptions, ParsesEverySwitch) {
    std::string error;
    const auto o = ParseSimOptions({"--listen",
                                    "[::1]:0",
                                    "--state",
                                    "s.json",
                                    "--demo",
                                    "max",
                                    "--poll-interval",
                                    "0",
                                    "--trace",
                                    "--seed",
                                    "9",
                                    "--fault-split",
                                    "--fault-garbage",
                                    "0.25",
                                    "--fault-checksum",
                                    "1",
                                    "--fault-cut",
                                    "0.5",
                                    "--fault-drop",
                                    "4",
                                    "--fault-slow",
                                    "2",
                                    "--alpha-width",
                                    "12"},
                                   error);
    ASSERT_TRUE(o) << error;
    EXPECT_EQ(o->host, "::1");
    EXPECT_EQ(o->port, 0);
    EXPECT_EQ(*o->stateFile, "s.json");
    EXPECT_EQ(o->demo, "max");
    EXPECT_EQ(o->pollIntervalMs, 0);
    EXPECT_TRUE(o->trace);
    EXPECT_EQ(o->faults.seed, 9u);
    EXPECT_TRUE(o->faults.split);
    EXPECT_DOUBLE_EQ(o->faults.garbage, 0.25);
    EXPECT_DOUBLE_EQ(o->faults.checksum, 1.0);
    EXPECT_DOUBLE_EQ(o->faults.cut, 0.5);
    EXPECT_EQ(o->faults.dropAfter, 4);
    EXPECT_EQ(o->faults.slowMs, 2);
    EXPECT_EQ(o->alphaWidth, 12);
}

TEST(SimOptions, RejectsBadValuesWithOneLine) {
    const std::vector<std::vector<std::string>> bad = {
        {"--listen", "1250"},       {"--listen", "127.0.0.1:70000"},
        {"--listen", "127.0.0.1:"}, {"--demo", "huge"},
        {"--fault-garbage", "1.5"}, {"--fault-cut", "x"},
        {"--poll-interval", "-1"},  {"--fault-drop"},
        {"--alpha-width", "200"},   {"--bogus"},
    };
    for (const auto& args : bad) {
        std::string error;
        EXPECT_FALSE(ParseSimOptions(args, error)) << args[0];
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(error.find('\n'), std::string::npos);
    }
}
