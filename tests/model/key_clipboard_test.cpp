#include "model/key_clipboard.h"

#include <gtest/gtest.h>

#include "model/button_templates.h"

namespace lumeth {
namespace {

// Template 0: 32 keys that all differ (function, channels, label, flags);
// template 1: 16 keys, so writing into it grows it first. Relay list 0 holds
// channels 5, 2, 9, Relay list 1 none, Input list 0 the one channel 7.
PanelStore MakeStore() {
    PanelStore store;
    store.ResetToDefaults();
    AddButtonTemplate(store);
    AddButtonTemplate(store);
    store.templates.templateCount = 2;
    for (int t = 0; t < 2; ++t) {
        ButtonTemplate& tpl = store.templates.buttonTemplates[size_t(t)];
        tpl.buttonCount = static_cast<int16_t>(t == 0 ? kTemplateButtons : 16);
        tpl.buttons.resize(size_t(tpl.buttonCount));
        for (int b = 0; b < tpl.buttonCount; ++b) {
            PanelButton& key = tpl.buttons[size_t(b)];
            key.type = b % 2 ? int16_t(1010) : int16_t(800);
            key.channel = static_cast<int16_t>(100 * t + b);
            key.channel2 = static_cast<int16_t>(50 + b);
            key.captionOption = static_cast<int16_t>(b % 3 == 0);
            key.label = std::to_string(t) + "." + std::to_string(b);
        }
    }
    auto setList = [&store](SubType s, int position, std::vector<int16_t> channels) {
        store.listCount(s) = std::max<int16_t>(store.listCount(s), int16_t(position + 1));
        store.listTable(s).Resize(store.listCount(s));
        DisplayList& list = store.lists(s)[size_t(position)];
        list.channelCount = static_cast<int16_t>(channels.size());
        list.channels = channels.empty() ? std::vector<int16_t>{0} : channels;
    };
    setList(SubType::Relay, 0, {5, 2, 9});
    setList(SubType::Relay, 1, {});
    setList(SubType::Input, 0, {7});
    return store;
}

const std::vector<PanelButton>& Keys(const PanelStore& store, int t) {
    return store.templates.buttonTemplates[size_t(t)].buttons;
}

TEST(KeyClipboard, CopyTakesExistingKeysInKeyOrderOnce) {
    const PanelStore store = MakeStore();
    const KeyClipboard copied = CopyKeys(store, 0, {5, 2, 5, 40, -1});
    ASSERT_EQ(copied.keys.size(), 2u);
    EXPECT_EQ(copied.keys[0], Keys(store, 0)[2]);
    EXPECT_EQ(copied.keys[1], Keys(store, 0)[5]);
    // Template 1 has no key 20 yet; there is no template 2.
    EXPECT_EQ(CopyKeys(store, 1, {3, 20}).keys.size(), 1u);
    EXPECT_TRUE(CopyKeys(store, 2, {0}).empty());
}

TEST(KeyClipboard, PasteFillsOnwardAndStopsAtTheLastKey) {
    struct Case {
        const char* name;
        int from;
        std::vector<int> keys;
        int to;
        int first;
        int written;
        int cutOff;
    };
    const Case cases[] = {
        {"across templates", 0, {3, 1}, 1, 4, 2, 0},
        {"into the grown half", 0, {0, 1, 2}, 1, 20, 3, 0},
        {"from the middle", 0, {10, 11, 12}, 0, 20, 3, 0},
        {"onto itself, shifted", 0, {0, 1, 2, 3}, 0, 2, 4, 0},
        {"past the end", 0, {0, 1, 2, 3, 4}, 0, 30, 2, 3},
        {"all keys from the last", 0, {}, 0, 31, 1, 31},
        {"empty clipboard", 0, {40}, 0, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PanelStore store = MakeStore();
        std::vector<int> keys = c.keys;
        if (keys.empty())
            for (int b = 0; b < kTemplateButtons; ++b)
                keys.push_back(b);
        const KeyClipboard clipboard = CopyKeys(store, c.from, keys);
        PanelStore before = store;
        ASSERT_TRUE(FillButtonTemplate(before, c.to));

        const KeysWritten result = PasteKeys(store, c.to, c.first, clipboard);
        ASSERT_TRUE(result.status) << result.status.failure().detail;
        EXPECT_EQ(result.written, c.written);
        EXPECT_EQ(result.cutOff, c.cutOff);
        ASSERT_EQ(Keys(store, c.to).size(), size_t(kTemplateButtons));
        EXPECT_EQ(store.templates.buttonTemplates[size_t(c.to)].buttonCount, kTemplateButtons);
        for (int b = 0; b < kTemplateButtons; ++b) {
            const bool pasted = b >= c.first && b < c.first + c.written;
            const PanelButton& expected =
                pasted ? clipboard.keys[size_t(b - c.first)] : Keys(before, c.to)[size_t(b)];
            EXPECT_EQ(Keys(store, c.to)[size_t(b)], expected) << "key " << b;
        }
        EXPECT_EQ(Keys(store, 1 - c.to), Keys(before, 1 - c.to));
    }
}

TEST(KeyClipboard, RefusedWritesChangeNothing) {
    const PanelStore original = MakeStore();
    const KeyClipboard clipboard = CopyKeys(original, 0, {0, 1});
    const std::pair<const char*, std::function<Status(PanelStore&)>> refusals[] = {
        {"paste before the first key",
         [&](PanelStore& s) { return PasteKeys(s, 1, -1, clipboard).status; }},
        {"paste past the last key",
         [&](PanelStore& s) { return PasteKeys(s, 1, 32, clipboard).status; }},
        {"paste into no template",
         [&](PanelStore& s) { return PasteKeys(s, 2, 0, clipboard).status; }},
        {"delete in no template", [](PanelStore& s) { return DeleteKeys(s, -1, {0}); }},
        {"fill from no list",
         [](PanelStore& s) {
             return FillKeysFromList(s, 1, {SubType::Relay, 2, 1000, 0}).status;
         }},
        {"fill with a function of another table",
         [](PanelStore& s) {
             return FillKeysFromList(s, 1, {SubType::Relay, 0, 40, 0}).status;
         }},
        {"fill with Inactive",
         [](PanelStore& s) {
             return FillKeysFromList(s, 1, {SubType::Relay, 0, 16383, 0}).status;
         }},
        {"fill from past the last key",
         [](PanelStore& s) {
             return FillKeysFromList(s, 1, {SubType::Relay, 0, 1000, 32}).status;
         }},
    };
    for (const auto& [name, refusal] : refusals) {
        SCOPED_TRACE(name);
        PanelStore store = original;
        EXPECT_FALSE(refusal(store));
        EXPECT_EQ(store.templates, original.templates);
    }
}

TEST(KeyClipboard, DeleteGivesKeysTheBlankOfANewTemplate) {
    PanelStore store = MakeStore();
    const PanelStore before = store;
    ASSERT_TRUE(DeleteKeys(store, 0, {31, 0, 99}));
    PanelButton blank = PanelButton::Cleared();
    blank.type = 40;
    for (int b = 0; b < kTemplateButtons; ++b) {
        blank.label = "Button " + std::to_string(b);
        EXPECT_EQ(Keys(store, 0)[size_t(b)], b == 0 || b == 31 ? blank : Keys(before, 0)[size_t(b)])
            << "key " << b;
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

TEST(KeyClipboard, FillFunctionsAreThoseOfTheListsTable) {
    EXPECT_EQ(FunctionsForChannels(SubType::Input), (std::vector<int16_t>{40, 0}));
    EXPECT_EQ(FunctionsForChannels(SubType::Relay), (std::vector<int16_t>{1000, 1002, 1010, 1012}));
}

} // namespace
} // namespace lumeth
