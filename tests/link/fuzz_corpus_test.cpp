// The session fuzz target's seed corpus: one valid message of each kind, as
// the server sends them. The test checks that every committed seed is still
// a message the session accepts; with LUMETH_WRITE_CORPUS=1 in the
// environment it first (re)writes the seeds from the codec.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "link/codec.h"
#include "tests/link/session_harness.h"

namespace lumeth {
namespace {

namespace fs = std::filesystem;

PanelStore SeedStore() {
    PanelStore s;
    s.ResetToDefaults();
    s.lists(SubType::Input)[0].channelCount = 2;
    s.lists(SubType::Input)[0].channels = {1, 2};
    s.userGroups[0].listCount = 1;
    s.userGroups[0].listIndexes = {0};
    s.userGroups[0].listTypes = {11};
    s.buttonTemplates[0].buttonCount = 1;
    s.buttonTemplates[0].buttons = {PanelButton{40, 1, "Mic", 1, kNoChannel}};
    return s;
}

struct Seed {
    std::string name;
    std::string message;
    int expectedChanges; // store changes the message causes
};

std::vector<Seed> Seeds() {
    const PanelStore s = SeedStore();
    // The set-password message has the server's answer layout.
    const std::string password = codec::PasswordMessage("secret");
    return {
        {"identity", codec::IdentityQuery(), 0},
        {"password", password, 1},
        {"alpha", codec::AlphaTableMessage(SubType::Input, {"Mic 1", "mic 1", "", "Line"}), 1},
        {"lists", codec::DisplayListMessage(s, SubType::Input), 1},
        {"groups", codec::GroupMessage(s), 1},
        {"buttons", codec::ButtonMessage(s), 1},
        {"poll", std::string("\xF5\xF1\xF3\xF4", 4), 0},
    };
}

const fs::path kCorpus = fs::path(LUMETH_SOURCE_DIR) / "fuzz" / "corpus" / "session";

std::string ReadFile(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(SessionFuzzCorpus, SeedsAreAcceptedMessages) {
    const char* write = std::getenv("LUMETH_WRITE_CORPUS");
    const auto seeds = Seeds();
    if (write != nullptr && std::string(write) == "1") {
        fs::create_directories(kCorpus);
        std::string all;
        for (const Seed& seed : seeds) {
            std::ofstream(kCorpus / seed.name, std::ios::binary) << '\x07' << seed.message;
            all += seed.message;
        }
        std::ofstream(kCorpus / "download", std::ios::binary) << '\x2A' << all;
    }
    for (const Seed& seed : seeds) {
        SCOPED_TRACE(seed.name);
        const std::string file = ReadFile(kCorpus / seed.name);
        ASSERT_FALSE(file.empty()) << "missing seed; run with LUMETH_WRITE_CORPUS=1";
        testing::Harness h;
        h.Feed(std::string_view(file).substr(1)); // byte 0 seeds the chunking
        EXPECT_TRUE(h.session.BufferEmpty());
        EXPECT_TRUE(h.observer.Quiet());
        EXPECT_EQ(static_cast<int>(h.observer.changes.size()), seed.expectedChanges);
    }
}

} // namespace
} // namespace lumeth
