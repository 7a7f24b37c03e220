// The JSON document: its exact shape, strict reading with errors that name
// the JSON path, Windows-1252 mapping of names and the round trip with the
// panel data file.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "files/json_document.h"
#include "files/json_schema.h"
#include "files/panel_data_file.h"
#include "model/panel_store.h"

namespace lumeth {
namespace {

using nlohmann::json;

PanelStore SmallStore() {
    PanelStore s;
    s.ResetToDefaults();
    s.lists(SubType::Input)[0] = DisplayList{2, "Mics            ", {0, 4}};
    s.listCount(SubType::Output) = 0;
    s.lists(SubType::Relay)[0] = DisplayList{1, "Lights", {16383}};
    s.groups.userGroupNames[0] = "Studio A";
    s.groups.userGroups[0] = UserGroup{2, {0, 0}, {11, 41}};
    s.templates.templateNames[0] = "Desk";
    s.templates.buttonTemplates[0].number = 3;
    s.templates.buttonTemplates[0].buttonCount = 1;
    s.templates.buttonTemplates[0].buttons[0] = PanelButton{1010, 1, "ON AIR", 2, 7};
    return s;
}

// The document SmallStore() must give, written out by hand: one entry per
// line, numbers and group entries inline, a final newline.
const char* const kSmallDocument = R"({
  "format": "lumeth-panel-data",
  "version": 1,
  "display_lists": {
    "input": [
      {"name": "Mics            ", "channels": [0,4]}
    ],
    "output": [],
    "opto": [
      {"name": "First Opto List", "channels": []}
    ],
    "relay": [
      {"name": "Lights", "channels": [16383]}
    ]
  },
  "user_groups": [
    {"name": "Studio A", "lists": [{"type":11,"index":0},{"type":41,"index":0}]}
  ],
  "templates": [
    {"name": "Desk", "number": 3, "buttons": [
      {"type": 1010, "caption_option": 1, "label": "ON AIR", "channel": 2, "channel2": 7}
    ]}
  ]
}
)";

// A document with the format and version lines and `rest` after them.
std::string Doc(const std::string& rest) {
    return R"({"format": "lumeth-panel-data", "version": 1)" + (rest.empty() ? "" : ", " + rest) +
           "}";
}

TEST(JsonDocument, WritesOneEntryPerLine) {
    EXPECT_EQ(WriteJsonDocument(SmallStore()), kSmallDocument);
}

TEST(JsonDocument, AlphasAndPasswordAreOptionalParts) {
    PanelStore s = SmallStore();
    s.alpha(SubType::Input).channelNames = {"MIC 2", "MIC 1"};
    JsonDocumentOptions options;
    options.includeAlphas = true;
    options.password = "studio";
    const std::string text = WriteJsonDocument(s, options);
    EXPECT_NE(
        text.find("  ],\n  \"alphas\": {\n    \"input\": [\n      \"MIC 2\",\n      \"MIC 1\"\n"
                  "    ],\n    \"output\": [],"),
        std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with("\n    \"relay\": []\n  },\n  \"password\": \"studio\"\n}\n"))
        << text;
    const json doc = json::parse(text);
    EXPECT_EQ(doc["alphas"]["input"], json::array({"MIC 2", "MIC 1"}));
    EXPECT_EQ(doc["alphas"]["relay"], json::array());
    EXPECT_EQ(doc["password"], "studio");

    PanelStore back;
    const JsonReadResult r = ReadJsonDocument(doc.dump(), back);
    ASSERT_TRUE(r.status.ok()) << r.status.failure().detail;
    EXPECT_TRUE(r.hasAlphas);
    EXPECT_EQ(r.password, "studio");
    EXPECT_EQ(back.alpha(SubType::Input).names, (std::vector<std::string>{"MIC 1", "MIC 2"}));
}

// Missing sections read as empty; sending such a document is refused by
// name, an empty array is not missing.
TEST(JsonDocument, MissingSectionsMeanEmptyAndPairsArePositions) {
    PanelStore s;
    const JsonReadResult r = ReadJsonDocument(Doc(R"("display_lists": {"input": [], "relay": []},
        "user_groups": [{"name": "A", "lists": []},
        {"name": "B", "lists": []}], "templates": [{"name": "T", "number": 0, "buttons": []},
        {"name": "U", "number": 0, "buttons": []}])"),
                                              s);
    ASSERT_TRUE(r.status.ok());
    EXPECT_EQ(r.RequireAllSections().failure().detail,
              "missing display_lists.output, display_lists.opto (every section is sent; write [] "
              "to send an empty one)");
    PanelStore other;
    EXPECT_EQ(ReadJsonDocument(Doc(""), other).RequireAllSections().failure().detail,
              "missing display_lists.input, display_lists.output, display_lists.opto, "
              "display_lists.relay, user_groups, templates (every section is sent; write [] to "
              "send an empty one)");
    EXPECT_TRUE(ReadJsonDocument(kSmallDocument, other).RequireAllSections().ok());
    // A repeated key replaces what came before.
    ASSERT_TRUE(ReadJsonDocument(Doc(R"("display_lists": {"input": [{"name": "a",
        "channels": [1, 2], "channels": [3]}]})"),
                                 other)
                    .status.ok());
    EXPECT_EQ(other.lists(SubType::Input)[0].channels, std::vector<int16_t>{3});
    for (SubType t : kAllSubTypes) {
        EXPECT_EQ(s.listCount(t), 0);
        EXPECT_EQ(s.lists(t).size(), 1u);
    }
    EXPECT_EQ(s.groups.userGroupIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.groups.userGroupNumber, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.templates.templateIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.templates.templatePosition, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(s.templates.buttonTemplates[1].buttons.size(), 1u);
}

// Characters are counted after mapping to Windows-1252: 16 two-byte
// characters fit; characters outside the table become '?'.
TEST(JsonDocument, NamesMapThroughWindows1252) {
    std::string sixteen;
    for (int i = 0; i < 16; ++i) {
        sixteen += "\u00E9";
    }
    json in = json::parse(kSmallDocument);
    in["user_groups"][0]["name"] = sixteen;
    in["templates"][0]["name"] = "\u65E5\u00FF";
    PanelStore back;
    ASSERT_TRUE(ReadJsonDocument(in.dump(), back).status.ok());
    EXPECT_EQ(back.groups.userGroupNames[0], std::string(16, '\xE9'));
    EXPECT_EQ(back.templates.templateNames[0], "?\xFF");
}

// Reading must fail with exactly this message and leave the store untouched.
TEST(JsonDocument, StrictReadingNamesThePath) {
    const std::string list = R"("display_lists": {"input": [{"name": "a", "channels": )";
    const std::string button = R"("templates": [{"name": "t", "number": 0, "buttons": [{"type": 40,
        "caption_option": 0, "channel": 0, "channel2": 0, )";
    std::string zeros;
    for (int i = 0; i < 32767; ++i) {
        zeros += "0,";
    }
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"({"format": "lumeth-panel-data"})", "version: missing"},
        {R"({"version": 1})", "format: missing"},
        {R"({"format": "other", "version": 1})", "format: expected \"lumeth-panel-data\""},
        {R"({"format": "lumeth-panel-data", "version": 2})",
         "version: unsupported version (expected 1)"},
        {Doc(R"("extra": 0)"), "extra: unknown key"},
        {R"([1])", "(document): expected an object, found array"},
        {Doc(R"("display_lists": {"mixer": []})"), "display_lists.mixer: unknown key"},
        {Doc(R"("display_lists": [])"), "display_lists: expected an object, found array"},
        {Doc(R"("display_lists": {"input": [{"name": "a", "channels": []},
            {"name": "b", "channels": []}, {"name": "12345678901234567", "channels": []}]})"),
         "display_lists.input[2].name: longer than 16 characters"},
        {Doc(R"("display_lists": {"opto": [{"name": "a", "channels": [0, 16384]}]})"),
         "display_lists.opto[0].channels[1]: out of range 0..16383"},
        {Doc(list + "[-1]}]}"), "display_lists.input[0].channels[0]: out of range 0..16383"},
        {Doc(list + "[1.5]}]}"),
         "display_lists.input[0].channels[0]: expected an integer, found a fractional number"},
        {Doc(R"("display_lists": {"input": [{"name": 7, "channels": []}]})"),
         "display_lists.input[0].name: expected a string, found an integer"},
        {Doc(R"("display_lists": {"input": [{"name": "a"}]})"),
         "display_lists.input[0].channels: missing"},
        {Doc(R"("user_groups": [{"name": "g", "lists": [{"type": 11, "index": 40000}]}])"),
         "user_groups[0].lists[0].index: out of range -32768..32767"},
        {Doc(R"("user_groups": [{"name": "g", "lists": [{"type": true, "index": 0}]}])"),
         "user_groups[0].lists[0].type: expected an integer, found boolean"},
        {Doc(button + R"("label": "123456789"}]}])"),
         "templates[0].buttons[0].label: longer than 8 characters"},
        {Doc(button + R"("label": "", "colour": 1}]}])"),
         "templates[0].buttons[0].colour: unknown key"},
        {Doc(R"("templates": [{"name": "t", "number": 18446744073709551615, "buttons": []}])"),
         "templates[0].number: out of range -32768..32767"},
        {Doc(R"("alphas": {"input": ["A", 3]})"),
         "alphas.input[1]: expected a string, found an integer"},
        {Doc(R"("password": 1234)"), "password: expected a string, found an integer"},
        // Hostile shapes stop at the first value the schema does not allow.
        {Doc(list + std::string(100000, '[')),
         "display_lists.input[0].channels[0]: expected an integer, found array"},
        {Doc(list + "[" + zeros + "0]}]}"),
         "display_lists.input[0].channels: more than 32767 entries"},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        PanelStore store = SmallStore();
        store.alpha(SubType::Input).channelNames = {"X"};
        const std::string before = EncodePanelData(store);
        const JsonReadResult r = ReadJsonDocument(text, store);
        EXPECT_FALSE(r.status.ok());
        EXPECT_EQ(r.status.failure().detail, message);
        EXPECT_EQ(EncodePanelData(store), before);
        EXPECT_EQ(store.alpha(SubType::Input).channelNames, std::vector<std::string>{"X"});
        EXPECT_FALSE(r.hasAlphas);
    }
}

// A string longer than any value holds (127 characters, six bytes each at
// most) or a number longer than any integer is refused where it starts, before
// the parser has kept more of it; up to the limit the usual checks apply.
TEST(JsonDocument, OverlongStringsAndNumbersAreRefusedWhereTheyStart) {
    std::string e127; // 127 characters written in 762 bytes
    for (int i = 0; i < 127; ++i) {
        e127 += "\\u00e9";
    }
    std::string backslashes; // 381 escaped backslashes: 762 bytes
    for (int i = 0; i < 381; ++i) {
        backslashes += "\\\\";
    }
    std::string quotes; // escaped quotes do not end the string
    for (int i = 0; i < 400; ++i) {
        quotes += "\\\"";
    }
    const std::string button = R"("templates": [{"name": "t", "number": 0, "buttons": [{"type": 40,
        "caption_option": 0, "channel": 0, "channel2": 0, "label": )";
    const std::string list = R"("display_lists": {"input": [{"name": "a", "channels": [)";
    const std::string endless(1 << 20, 'x');
    struct Case {
        std::string text;
        std::string token;   // where the refused token starts ("" when accepted)
        std::string message; // after "at byte N", or the accepted value
    };
    const std::string string762 = " longer than any value holds (more than 762 bytes)";
    const Case cases[] = {
        {Doc(R"("alphas": {"input": [")" + e127 + R"("]})"), "", std::string(127, '\xE9')},
        {Doc(R"("password": ")" + backslashes + R"(")"), "", std::string(381, '\\')},
        {Doc(R"("alphas": {"input": ["ok", ")" + e127 + R"(a"]})"), "\"\\u00e9",
         "alphas.input[1]: a string at byte N" + string762},
        {Doc(R"("password": ")" + quotes + R"(")"), "\"\\\"",
         "password: a string at byte N" + string762},
        {Doc(button + "\"" + endless), "\"x",
         "templates[0].buttons[0].label: a string at byte N" + string762},
        {Doc(list + "0, " + std::string(65, '1') + "]}]}"), "1111",
         "display_lists.input[0].channels[1]: a number at byte N longer than any value holds "
         "(more than 64 characters)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 200));
        PanelStore store = SmallStore();
        const JsonReadResult r = ReadJsonDocument(c.text, store);
        if (c.token.empty()) {
            ASSERT_TRUE(r.status.ok()) << r.status.failure().detail;
            EXPECT_EQ(r.hasAlphas ? store.alpha(SubType::Input).channelNames.at(0)
                                  : r.password.value_or(""),
                      c.message);
            continue;
        }
        ASSERT_FALSE(r.status.ok());
        std::string message = c.message;
        message.replace(message.find(" N "), 3, " " + std::to_string(c.text.find(c.token)) + " ");
        EXPECT_EQ(r.status.failure().detail, message);
    }
}

TEST(JsonDocument, SyntaxErrorsSayWhere) {
    PanelStore store;
    const JsonReadResult r =
        ReadJsonDocument("{\n  \"format\": \"lumeth-panel-data\",\n  oops\n}", store);
    ASSERT_FALSE(r.status.ok());
    const std::string& detail = r.status.failure().detail;
    EXPECT_EQ(detail.rfind("invalid JSON: ", 0), 0u) << detail;
    EXPECT_NE(detail.find("line 3"), std::string::npos) << detail;
    EXPECT_FALSE(ReadJsonDocument("", store).status.ok());
    EXPECT_FALSE(ReadJsonDocument("{\"format\": \"\xFF\"}", store).status.ok()); // bad UTF-8
}

// A version-3 panel data file survives the trip through the JSON document
// byte for byte, including blank-padded names, quotes, backslashes, control
// bytes, bytes above 0x7F, negative codes and "no channel".
TEST(JsonDocument, PanelDataFileRoundTripIsByteIdentical) {
    PanelStore s;
    s.ResetToDefaults();
    s.lists(SubType::Opto)[0] = DisplayList{3, "T\"\\\x01\n \x81\x9D\xFF      ", {0, 16383, 9}};
    s.groups.userGroups[0] = UserGroup{1, {-1}, {99}};
    s.templates.buttonTemplates[0].number = -7;
    s.templates.buttonTemplates[0].buttonCount = 2;
    s.templates.buttonTemplates[0].buttons = {PanelButton{-5, 2, "\x80uro    ", 16383, 0},
                                              PanelButton::Cleared()};
    const std::string file = EncodePanelData(s);

    PanelStore loaded;
    ASSERT_EQ(LoadPanelData(file, loaded).outcome, LoadOutcome::Loaded);
    PanelStore viaJson;
    viaJson.alpha(SubType::Opto).channelNames = {"kept"};
    const JsonReadResult r = ReadJsonDocument(WriteJsonDocument(loaded), viaJson);
    ASSERT_TRUE(r.status.ok()) << r.status.failure().detail;
    EXPECT_EQ(EncodePanelData(viaJson), file);
    EXPECT_TRUE(CheckJsonDocumentValues(loaded).ok());
    EXPECT_FALSE(r.hasAlphas);
    EXPECT_FALSE(r.password.has_value());
    // Without an alphas section the tables stay as they were.
    EXPECT_EQ(viaJson.alpha(SubType::Opto).channelNames, std::vector<std::string>{"kept"});
}

// Store locations (of check findings and value errors) as the document's
// paths, for every part and field the document holds. The reader names bad
// values by the same paths (StrictReadingNamesThePath).
TEST(JsonDocument, StoreLocationsBecomeDocumentPaths) {
    using F = StoreField;
    const std::pair<StoreLocation, std::string> cases[] = {
        {{Part::OptoLists}, "display_lists.opto"},
        {{Part::InputLists, 2}, "display_lists.input[2]"},
        {{Part::RelayLists, 0, F::Name}, "display_lists.relay[0].name"},
        {{Part::InputLists, 2, F::Channel, 5}, "display_lists.input[2].channels[5]"},
        {{Part::UserGroups, 0, F::Name}, "user_groups[0].name"},
        {{Part::UserGroups, 0, F::GroupEntry, 1}, "user_groups[0].lists[1]"},
        {{Part::UserGroups, 3, F::EntryType, 1}, "user_groups[3].lists[1].type"},
        {{Part::UserGroups, 3, F::EntryIndex, 0}, "user_groups[3].lists[0].index"},
        {{Part::Templates, 1, F::TemplateNumber}, "templates[1].number"},
        {{Part::Templates, 0, F::Button, 12}, "templates[0].buttons[12]"},
        {{Part::Templates, 0, F::ButtonType, 3}, "templates[0].buttons[3].type"},
        {{Part::Templates, 0, F::CaptionOption, 3}, "templates[0].buttons[3].caption_option"},
        {{Part::Templates, 0, F::Label, 3}, "templates[0].buttons[3].label"},
        {{Part::Templates, 4, F::ButtonChannel2, 31}, "templates[4].buttons[31].channel2"},
        {{Part::OutputAlphas, 7}, "alphas.output[7]"},
        {{Part::Password}, "password"},
    };
    for (const auto& [at, path] : cases) {
        EXPECT_EQ(JsonPath(at), path);
    }
}

} // namespace
} // namespace lumeth
