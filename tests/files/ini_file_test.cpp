#include "files/ini_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

struct Lookup {
    const char* section;
    const char* key;
    std::optional<std::string> value;
};

// Each file text with the lookups it must answer (nullopt: missing).
TEST(IniFile, ParseFollowsTheProfileRules) {
    const std::vector<std::pair<std::string, std::vector<Lookup>>> cases = {
        // Names compare case-insensitively; blanks around names and values go.
        {"  [ Configuration ]  \r\n\tServer IP Port   =   1300  \r\nPACKET SIZE=2048\r\n",
         {{"CONFIGURATION", "server ip port", "1300"},
          {"configuration", "Packet Size", "2048"},
          {"CONFIGURATION", "Missing", std::nullopt},
          {"OTHER", "Packet Size", std::nullopt}}},
        // One pair of matching outer quotes is stripped, nothing else.
        {"[S]\ndouble=\"10.0.0.1\"\nsingle='Yes'\nmixed=\"abc'\nlone=\"\nnested=\"\"x\"\"\n"
         "inner=a \"b\" c\nblanks=\"  padded  \"\nempty=\"\"\n",
         {{"S", "double", "10.0.0.1"},
          {"S", "single", "Yes"},
          {"S", "mixed", "\"abc'"},
          {"S", "lone", "\""},
          {"S", "nested", "\"x\""},
          {"S", "inner", "a \"b\" c"},
          {"S", "blanks", "  padded  "},
          {"S", "empty", ""}}},
        // First duplicate key and first duplicate section win; keys of a
        // repeated section are not seen.
        {"[A]\nk=first\nK=second\n[B]\nk=b\n[a]\nk=third\nonly=later\n",
         {{"A", "k", "first"}, {"B", "k", "b"}, {"A", "only", std::nullopt}}},
        // Only a leading semicolon makes a comment.
        {"[S]\n;a=1\n   ; b=2\nc=3 ; not a comment\nd=;value\n",
         {{"S", "a", std::nullopt},
          {"S", ";a", std::nullopt},
          {"S", "b", std::nullopt},
          {"S", "c", "3 ; not a comment"},
          {"S", "d", ";value"}}},
        // Lines before the first section are ignored.
        {"k=outside\nloose line\n[S]\nk=inside\n", {{"S", "k", "inside"}, {"", "k", std::nullopt}}},
        // A key line without '=' reads as missing and hides a later value.
        {"[S]\nflag\nflag=Yes\nother = 1\n", {{"S", "flag", std::nullopt}, {"S", "other", "1"}}},
        // The value may hold '=' and brackets; text after a section header is ignored.
        {"[S]\nexpr = a=b [c]\n[T] trailing text\nx=1\n",
         {{"S", "expr", "a=b [c]"}, {"T", "x", "1"}}},
        // LF, CR LF and lone CR line ends; the last line needs none.
        {"[S]\na=1\nb=2", {{"S", "a", "1"}, {"S", "b", "2"}}},
        {"[S]\r\na=1\r\nb=2", {{"S", "a", "1"}, {"S", "b", "2"}}},
        {"[S]\ra=1\rb=2", {{"S", "a", "1"}, {"S", "b", "2"}}},
    };
    for (const auto& [text, lookups] : cases) {
        SCOPED_TRACE(text);
        const IniFile ini = IniFile::Parse(text);
        for (const Lookup& l : lookups) {
            EXPECT_EQ(ini.Get(l.section, l.key), l.value) << l.section << "/" << l.key;
        }
    }
    EXPECT_EQ(IniFile::Parse("[S]\nflag\n").GetString("S", "flag", "dflt"), "dflt");
}

TEST(IniFile, SerializesWithCrLfAndSetReplacesFirstMatch) {
    IniFile ini;
    ini.Set("CONFIGURATION", "Server IP Address", "10.1.2.3");
    ini.Set("CONFIGURATION", "Packet Size", "4096");
    ini.Set("configuration", "packet size", "8192"); // same key, other case
    ini.Set("OTHER", "k", "v");
    EXPECT_EQ(ini.Serialize(), "[CONFIGURATION]\r\n"
                               "Server IP Address=10.1.2.3\r\n"
                               "Packet Size=8192\r\n"
                               "\r\n"
                               "[OTHER]\r\n"
                               "k=v\r\n");
    EXPECT_EQ(IniFile().Serialize(), "");
}

} // namespace
} // namespace lumeth
