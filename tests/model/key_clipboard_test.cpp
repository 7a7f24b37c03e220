#include "model/key_clipboard.h"

#include <gtest/gtest.h>

#include <functional>

#include "model/button_templates.h"
#include "tests/support/store_builders.h"

namespace lumeth {
namespace {

// Template 0: 32 keys that all differ; template 1: 16 keys, so writing into
// it grows it first. Relay list 0 holds channels 5, 2, 9, Relay list 1 none,
// Input list 0 the one channel 7.
PanelStore MakeStore() {
    PanelStore store;
    store.ResetToDefaults();
    store.templates.templateCount = 0;
    for (int t = 0; t < 2; ++t) {
        std::vector<PanelButton>& keys =
            store.templates.buttonTemplates[size_t(AddButtonTemplate(store))].buttons;
        for (int16_t b = 0; b < kTemplateButtons; ++b) {
            const auto n = static_cast<int16_t>(100 * t + b);
            keys[size_t(b)] = {b % 2 ? int16_t(1010) : int16_t(800), int16_t(b % 3 == 0),
                               std::to_string(n), n, int16_t(n + 50)};
        }
    }
    store.templates.buttonTemplates[1].buttonCount = 16;
    store.templates.buttonTemplates[1].buttons.resize(16);
    store.listCount(SubType::Relay) = 2;
    store.lists(SubType::Relay) = {test::List("Lights", {5, 2, 9}), test::List("None", {})};
    store.lists(SubType::Input)[0] = test::List("Mics", {7});
    return store;
}

const std::vector<PanelButton>& Keys(const PanelStore& store, int t) {
    return store.templates.buttonTemplates[size_t(t)].buttons;
}

TEST(KeyClipboard, PasteWritesCopiedKeysOnwardUpToTheLastKey) {
    struct Case {
        const char* name;
        int from;
        std::vector<int> keys; // empty: all 32
        int to;
        int first;
        size_t copied;
        int written;
        int cutOff;
    };
    const Case cases[] = {
        {"across templates, copied out of order and twice", 0, {3, 1, 3}, 1, 4, 2, 2, 0},
        {"into the grown half", 0, {0, 1, 2}, 1, 20, 3, 3, 0},
        {"keys a short template lacks are not copied", 1, {3, 20}, 0, 0, 1, 1, 0},
        {"onto itself, shifted", 0, {0, 1, 2, 3}, 0, 2, 4, 4, 0},
        {"past the end", 0, {0, 1, 2, 3, 4}, 0, 30, 5, 2, 3},
        {"all keys from the last", 0, {}, 0, 31, 32, 1, 31},
        {"empty clipboard", 0, {40, -1}, 0, 0, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PanelStore store = MakeStore();
        std::vector<int> keys = c.keys;
        for (int b = 0; c.keys.empty() && b < kTemplateButtons; ++b)
            keys.push_back(b);
        const KeyClipboard clipboard = CopyKeys(store, c.from, keys);
        ASSERT_EQ(clipboard.keys.size(), c.copied);
        PanelStore before = store;
        ASSERT_TRUE(FillButtonTemplate(before, c.to));

        const KeysWritten result = PasteKeys(store, c.to, c.first, clipboard);
        ASSERT_TRUE(result.status) << result.status.failure().detail;
        EXPECT_EQ(result.written, c.written);
        EXPECT_EQ(result.cutOff, c.cutOff);
        EXPECT_EQ(store.templates.buttonTemplates[size_t(c.to)].buttonCount, kTemplateButtons);
        ASSERT_EQ(Keys(store, c.to).size(), size_t(kTemplateButtons));
        for (int b = 0; b < kTemplateButtons; ++b) {
            const bool pasted = b >= c.first && b < c.first + c.written;
            EXPECT_EQ(Keys(store, c.to)[size_t(b)],
                      pasted ? clipboard.keys[size_t(b - c.first)] : Keys(before, c.to)[size_t(b)])
                << "key " << b;
        }
    }
}

TEST(KeyClipboard, FillGivesConsecutiveKeysTheListsChannels) {
    struct Case {
        const char* name;
        KeyFill fill;
        int written;
        int cutOff;
    };
    const Case cases[] = {
        {"a list of three", {SubType::Relay, 0, 1010, 5}, 3, 0},
        {"past the end", {SubType::Relay, 0, 1002, 30}, 2, 1},
        {"a list of one", {SubType::Input, 0, 0, 31}, 1, 0},
        {"a list of none", {SubType::Relay, 1, 1000, 0}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PanelStore store = MakeStore();
        const PanelStore before = store;
        const KeysWritten result = FillKeysFromList(store, 0, c.fill);
        ASSERT_TRUE(result.status) << result.status.failure().detail;
        EXPECT_EQ(result.written, c.written);
        EXPECT_EQ(result.cutOff, c.cutOff);
        const DisplayList& list = before.lists(c.fill.subType)[size_t(c.fill.list)];
        for (int b = 0; b < kTemplateButtons; ++b) {
            PanelButton expected = Keys(before, 0)[size_t(b)];
            const int i = b - c.fill.firstKey;
            if (i >= 0 && i < c.written) {
                expected.type = c.fill.function;
                expected.channel = list.channels[size_t(i)];
                expected.captionOption = 0;
            }
            EXPECT_EQ(Keys(store, 0)[size_t(b)], expected) << "key " << b;
        }
    }
}

TEST(KeyClipboard, DeleteGivesKeysTheBlankOfANewTemplate) {
    PanelStore store = MakeStore();
    const PanelStore before = store;
    ASSERT_TRUE(DeleteKeys(store, 0, {31, 0, 99}));
    for (int b = 0; b < kTemplateButtons; ++b) {
        PanelButton blank{40, 0, "Button " + std::to_string(b), kNoChannel, kNoChannel};
        EXPECT_EQ(Keys(store, 0)[size_t(b)],
                  b == 0 || b == 31 ? blank : Keys(before, 0)[size_t(b)]);
    }
}

TEST(KeyClipboard, RefusedWritesChangeNothing) {
    const PanelStore original = MakeStore();
    const KeyClipboard clipboard = CopyKeys(original, 0, {0, 1});
    const std::function<Status(PanelStore&)> refusals[] = {
        [&](PanelStore& s) { return PasteKeys(s, 1, -1, clipboard).status; },
        [&](PanelStore& s) { return PasteKeys(s, 1, 32, clipboard).status; },
        [&](PanelStore& s) { return PasteKeys(s, 2, 0, clipboard).status; },
        [](PanelStore& s) { return DeleteKeys(s, -1, {0}); },
        [](PanelStore& s) {
            return FillKeysFromList(s, 1, {SubType::Relay, 2, 1000, 0}).status;
        },
        [](PanelStore& s) {
            return FillKeysFromList(s, 1, {SubType::Relay, 0, 40, 0}).status;
        },
        [](PanelStore& s) {
            return FillKeysFromList(s, 1, {SubType::Relay, 0, 16383, 0}).status;
        },
        [](PanelStore& s) {
            return FillKeysFromList(s, 1, {SubType::Relay, 0, 1000, 32}).status;
        },
    };
    for (size_t i = 0; i < std::size(refusals); ++i) {
        SCOPED_TRACE(i);
        PanelStore store = original;
        EXPECT_FALSE(refusals[i](store));
        EXPECT_EQ(store.templates, original.templates);
    }
}

} // namespace
} // namespace lumeth
