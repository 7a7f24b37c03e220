// Panel data file: golden files are assembled here field by field from the
// file layout (little-endian 16-bit integers, blank-padded texts), never from
// the encoder under test. The builder also records where each field starts
// and what it is, so truncation can be checked at every byte.
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/check_report.h"
#include "files/file_io.h"
#include "files/json_schema.h"
#include "files/panel_data_file.h"
#include "model/panel_store.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/store_builders.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

class Golden {
public:
    Golden& I16(int v, std::string what = "") {
        Mark(2, std::move(what));
        const auto u = static_cast<uint16_t>(static_cast<int16_t>(v));
        m_bytes.push_back(static_cast<char>(u & 0xFF));
        m_bytes.push_back(static_cast<char>(u >> 8));
        return *this;
    }
    Golden& I16s(std::initializer_list<int> values) {
        for (int v : values) {
            I16(v);
        }
        return *this;
    }
    // `text` must already have its field width.
    Golden& Text(const std::string& text, std::string what = "") {
        Mark(text.size(), std::move(what));
        m_bytes += text;
        return *this;
    }
    const std::string& bytes() const { return m_bytes; }

    // The field that holds byte `at`: its start and description.
    std::pair<size_t, std::string> FieldAt(size_t at) const {
        for (const auto& f : m_fields) {
            if (at >= f.start && at < f.start + f.width) {
                return {f.start, f.what};
            }
        }
        return {0, ""};
    }

private:
    struct Field {
        size_t start;
        size_t width;
        std::string what;
    };
    void Mark(size_t width, std::string what) {
        m_fields.push_back({m_bytes.size(), width, std::move(what)});
    }
    std::string m_bytes;
    std::vector<Field> m_fields;
};

std::string Pad(const std::string& s, size_t width) {
    return s + std::string(width - s.size(), ' ');
}

// A version-3 file with every kind of record, including a zero-count list, a
// mixed user group and buttons using both channel fields.
Golden Version3File() {
    Golden g;
    g.I16(140, "marker").I16(16383, "version escape or header text length");
    g.I16(3, "version").I16(0, "header text length");
    // Input: two lists.
    g.I16(2, "Input display list count");
    g.Text(Pad("Mics", 16), "Input display list 0 name");
    g.I16(3, "Input display list 0 channel count");
    g.I16(0, "Input display list 0 channel 0").I16(5, "Input display list 0 channel 1");
    g.I16(47, "Input display list 0 channel 2");
    g.Text(Pad("Empty", 16), "Input display list 1 name");
    g.I16(0, "Input display list 1 channel count");
    // Output: one list.
    g.I16(1, "Output display list count");
    g.Text(Pad("Studio Outs", 16), "Output display list 0 name");
    g.I16(1, "Output display list 0 channel count").I16(31, "Output display list 0 channel 0");
    // Opto: none. Relay: one list with a full 16-character name.
    g.I16(0, "Opto display list count");
    g.I16(1, "Relay display list count");
    g.Text("Lights and Locks", "Relay display list 0 name");
    g.I16(1, "Relay display list 0 channel count").I16(2, "Relay display list 0 channel 0");
    // User groups: two.
    g.I16(2, "user group count");
    g.Text(Pad("Studio A", 16), "user group 0 name");
    g.I16(2, "user group 0 list count");
    g.I16(0, "user group 0 entry 0 list position").I16(11, "user group 0 entry 0 list type");
    g.I16(0, "user group 0 entry 1 list position").I16(41, "user group 0 entry 1 list type");
    g.Text(Pad("Newsroom", 16), "user group 1 name");
    g.I16(1, "user group 1 list count");
    g.I16(0, "user group 1 entry 0 list position").I16(21, "user group 1 entry 0 list type");
    // Templates: two.
    g.I16(2, "template count");
    g.Text(Pad("Desk", 16), "template 0 name");
    g.I16(7, "template 0 number");
    g.I16(2, "template 0 button count");
    g.I16(40, "template 0 button 0 type").I16(1, "template 0 button 0 caption option");
    g.I16(4, "template 0 button 0 channel").I16(16383, "template 0 button 0 channel 2");
    g.Text("CD ONE  ", "template 0 button 0 label");
    g.I16(1010, "template 0 button 1 type").I16(0, "template 0 button 1 caption option");
    g.I16(3, "template 0 button 1 channel").I16(9, "template 0 button 1 channel 2");
    g.Text(Pad("", 8), "template 0 button 1 label");
    g.Text(Pad("Spare", 16), "template 1 name");
    g.I16(-2, "template 1 number");
    g.I16(0, "template 1 button count");
    return g;
}

// The bytes of Version3File's template section, its count included.
size_t Version3TemplatesSize() {
    return 2 + (16 + 2 + 2 + 2 * (8 + 8)) + (16 + 2 + 2);
}

// What a store holds once ResetToDefaults has run.
test::StoreParts Defaults() {
    PanelStore store;
    store.ResetToDefaults();
    return test::PartsOf(store);
}

TEST(PanelDataFile, Version3GoldenLoadsAndEncodesByteExactly) {
    const Golden g = Version3File();
    PanelStore store;
    const LoadResult r = LoadPanelData(g.bytes(), store);
    ASSERT_EQ(r.outcome, LoadOutcome::Loaded) << r.status.failure().detail;
    EXPECT_EQ(r.version, 3);

    EXPECT_EQ(store.listCount(SubType::Input), 2);
    EXPECT_EQ(store.lists(SubType::Input)[0].name, Pad("Mics", 16)); // blanks kept
    EXPECT_EQ(store.lists(SubType::Input)[0].channels, (std::vector<int16_t>{0, 5, 47}));
    EXPECT_EQ(store.lists(SubType::Input)[1].channels.size(), 1u);
    EXPECT_EQ(store.listCount(SubType::Opto), 0);
    EXPECT_EQ(store.lists(SubType::Relay)[0].name, "Lights and Locks");
    ASSERT_EQ(store.groups.userGroupCount, 2);
    EXPECT_EQ(store.groups.userGroups[0].listTypes, (std::vector<int16_t>{11, 41}));
    EXPECT_EQ(store.groups.userGroupIndex, (std::vector<int16_t>{0, 1}));
    EXPECT_EQ(store.groups.userGroupNumber, (std::vector<int16_t>{0, 1}));
    ASSERT_EQ(store.templates.templateCount, 2);
    EXPECT_EQ(store.templates.buttonTemplates[1].number, -2);
    const PanelButton& b0 = store.templates.buttonTemplates[0].buttons[0];
    EXPECT_EQ(b0.label, "CD ONE  ");
    EXPECT_EQ(b0.captionOption, 1);
    EXPECT_EQ(store.templates.buttonTemplates[0].buttons[1].channel2, 9);
    // Loading sets the group pair but leaves the template pair as the reset left it.
    EXPECT_EQ(store.templates.templateIndex.size(), 1u);

    EXPECT_EQ(EncodePanelData(store), g.bytes());
}

// Versions 0-2 share the layout without Opto and Relay sections; version 0
// has no escape and no version field, versions below 2 have no template
// numbers and caption options. Header text is skipped whatever it holds.
std::string OldFile(int version) {
    Golden g;
    g.I16(140);
    if (version > 0) {
        g.I16(16383).I16(version);
    }
    g.I16(5).Text("notes");
    g.I16(1).Text(Pad("Mics", 16)).I16(1).I16(3);
    g.I16(1).Text(Pad("Outs", 16)).I16(2).I16(0).I16(1);
    g.I16(1).Text(Pad("Group", 16)).I16(1).I16(0).I16(21);
    g.I16(1).Text(Pad("Desk", 16));
    if (version > 1) {
        g.I16(12);
    }
    g.I16(1).I16(150);
    if (version > 1) {
        g.I16(1);
    }
    g.I16(6).I16(16383).Text("TALK    ");
    return g.bytes();
}

TEST(PanelDataFile, OlderVersionsFollowTheirLayout) {
    for (int version : {0, 1, 2}) {
        SCOPED_TRACE("version " + std::to_string(version));
        PanelStore store;
        const LoadResult r = LoadPanelData(OldFile(version), store);
        ASSERT_EQ(r.outcome, LoadOutcome::Loaded) << r.status.failure().detail;
        EXPECT_EQ(r.version, version);
        EXPECT_EQ(store.lists(SubType::Output)[0].channels, (std::vector<int16_t>{0, 1}));
        EXPECT_EQ(store.groups.userGroups[0].listTypes[0], 21);
        // Opto and Relay keep their default single list.
        EXPECT_EQ(store.listCount(SubType::Opto), 1);
        EXPECT_EQ(store.lists(SubType::Relay)[0].name, "First Relay List");
        const PanelButton& b = store.templates.buttonTemplates[0].buttons[0];
        EXPECT_EQ(b.channel, 6);
        EXPECT_EQ(b.label, "TALK    ");
        EXPECT_EQ(store.templates.buttonTemplates[0].number, version > 1 ? 12 : 0);
        EXPECT_EQ(b.captionOption, version > 1 ? 1 : 0);
    }
}

TEST(PanelDataFile, NamesAndLabelsAreCutOrPaddedToTheirWidth) {
    PanelStore store;
    store.ResetToDefaults();
    store.lists(SubType::Input)[0].name = "ABCDEFGHIJKLMNOPQRST"; // 20 characters
    store.lists(SubType::Output)[0].name = "Abc";
    store.templates.templateNames[0] = "";
    store.templates.buttonTemplates[0].buttonCount = 2;
    store.templates.buttonTemplates[0].buttons = {PanelButton::Cleared(), PanelButton::Cleared()};
    store.templates.buttonTemplates[0].buttons[0].label = "0123456789";
    store.templates.buttonTemplates[0].buttons[1].label = "ab";

    const std::string bytes = EncodePanelData(store);
    // Header (8 bytes), Input count (2), then the name and the channel count.
    EXPECT_EQ(bytes.substr(10, 18), std::string("ABCDEFGHIJKLMNOP\0\0", 18));

    PanelStore back;
    ASSERT_EQ(LoadPanelData(bytes, back).outcome, LoadOutcome::Loaded);
    EXPECT_EQ(back.lists(SubType::Input)[0].name, "ABCDEFGHIJKLMNOP");
    EXPECT_EQ(back.lists(SubType::Output)[0].name, "Abc" + std::string(13, ' '));
    EXPECT_EQ(back.templates.templateNames[0], std::string(16, ' '));
    EXPECT_EQ(back.templates.buttonTemplates[0].buttons[0].label, "01234567");
    EXPECT_EQ(back.templates.buttonTemplates[0].buttons[1].label, "ab      ");
}

TEST(PanelDataFile, ZeroCountsWriteNoRecordsAndLoadAsOneSpareEntry) {
    PanelStore store;
    store.ResetToDefaults();
    for (SubType s : kAllSubTypes) {
        store.listCount(s) = 0;
    }
    store.groups.userGroupCount = 0;
    store.templates.templateCount = 0;
    const std::string expected = Golden().I16s({140, 16383, 3, 0, 0, 0, 0, 0, 0, 0}).bytes();
    ASSERT_EQ(EncodePanelData(store), expected);

    PanelStore back;
    ASSERT_EQ(LoadPanelData(expected, back).outcome, LoadOutcome::Loaded);
    EXPECT_EQ(back.listCount(SubType::Relay), 0);
    EXPECT_EQ(back.lists(SubType::Relay).size(), 1u);
    EXPECT_EQ(back.groups.userGroupCount, 0);
    EXPECT_EQ(back.groups.userGroupIndex.size(), 1u);
    EXPECT_EQ(back.templates.templateCount, 0);
    EXPECT_EQ(back.templates.buttonTemplates.size(), 1u);
}

TEST(PanelDataFile, WrongMarkerLeavesTheDefaults) {
    PanelStore store;
    LoadPanelData(Version3File().bytes(), store); // something other than the defaults
    // 140 with its bytes swapped reads as 0x8C00.
    const std::string swapped = std::string("\x00\x8C", 2) + Version3File().bytes().substr(2);
    const LoadResult r = LoadPanelData(swapped, store);
    EXPECT_EQ(r.outcome, LoadOutcome::NotPanelData);
    EXPECT_NE(r.status.failure().detail.find(std::to_string(int16_t(0x8C00))), std::string::npos);
    EXPECT_NE(r.status.failure().detail.find("140"), std::string::npos);
    EXPECT_EQ(test::PartsOf(store), Defaults());
    EXPECT_EQ(LoadPanelData("", store).outcome, LoadOutcome::NotPanelData);
    EXPECT_EQ(LoadPanelData(std::string(1, '\x8C'), store).outcome, LoadOutcome::NotPanelData);
}

TEST(PanelDataFile, TruncationAtEveryByteNamesTheField) {
    const Golden g = Version3File();
    for (size_t cut = 2; cut < g.bytes().size(); ++cut) {
        SCOPED_TRACE("cut at " + std::to_string(cut));
        PanelStore store;
        const LoadResult r = LoadPanelData(std::string_view(g.bytes()).substr(0, cut), store);
        ASSERT_EQ(r.outcome, LoadOutcome::Failed);
        const auto [start, what] = g.FieldAt(cut);
        EXPECT_EQ(r.status.failure().detail,
                  "truncated at byte " + std::to_string(start) + " reading " + what);
        EXPECT_EQ(r.status.failure().code, ErrorCode::InputPastEndOfFile);
    }
}

TEST(PanelDataFile, FailedLoadKeepsWhatWasReadOnTopOfTheDefaults) {
    const Golden g = Version3File();
    const size_t cut = g.bytes().find("Newsroom") + 3; // inside the name of user group 1
    PanelStore store;
    ASSERT_EQ(LoadPanelData(std::string_view(g.bytes()).substr(0, cut), store).outcome,
              LoadOutcome::Failed);
    EXPECT_EQ(store.listCount(SubType::Input), 2);
    EXPECT_EQ(store.groups.userGroupCount, 2);
    EXPECT_EQ(store.groups.userGroups[0].listCount, 2);
    EXPECT_EQ(store.groups.userGroupIndex.size(), 2u);
    EXPECT_EQ(store.templates.templateNames, std::vector<std::string>{"None"}); // never reached
}

// A negative count is kept as read: one spare entry, no records, and loading
// goes on with the next section.
TEST(PanelDataFile, NegativeCountsAreKeptAndLoadingGoesOn) {
    const Golden g = Golden()
                         .I16s({140, 16383, 3, 0, -1}) // Input: -1 lists
                         .I16(1)
                         .Text(Pad("Outs", 16))
                         .I16(-32768) // Output list 0: no channels
                         .I16s({0, 0, -2})
                         .I16(1) // templates
                         .Text(Pad("T", 16))
                         .I16s({7, -5});
    PanelStore store;
    const LoadResult r = LoadPanelData(g.bytes(), store);
    ASSERT_EQ(r.outcome, LoadOutcome::Loaded) << r.status.failure().detail;
    EXPECT_EQ(store.listCount(SubType::Input), -1);
    EXPECT_EQ(store.lists(SubType::Input).size(), 1u);
    EXPECT_EQ(store.lists(SubType::Output)[0].name, Pad("Outs", 16));
    EXPECT_EQ(store.lists(SubType::Output)[0].channelCount, -32768);
    EXPECT_EQ(store.lists(SubType::Output)[0].channels.size(), 1u);
    EXPECT_EQ(store.groups.userGroupCount, -2);
    EXPECT_EQ(store.groups.userGroups.size(), 1u);
    EXPECT_EQ(store.templates.templateNames[0], Pad("T", 16));
    EXPECT_EQ(store.templates.buttonTemplates[0].number, 7);
    EXPECT_EQ(store.templates.buttonTemplates[0].buttonCount, -5);
    // Each negative count is damage, named by its section or record.
    std::vector<std::string> damage;
    for (const CheckFinding& finding : r.damage) {
        EXPECT_TRUE(finding.blocksSending);
        damage.push_back(CheckFindingLine(finding, store));
    }
    const std::vector<std::string> expected{
        "error: Input display lists: display list count -1 is negative: the file is damaged "
        "[display_lists.input]",
        "error: Output Lst.000 \"Outs\": channel count -32768 is negative: the file is damaged "
        "[display_lists.output[0]]",
        "error: user groups: user group count -2 is negative: the file is damaged [user_groups]",
        "error: template 01 \"T\": button count -5 is negative: the file is damaged "
        "[templates[0]]",
    };
    EXPECT_EQ(damage, expected);
    // Saved again, a negative count is written as 0.
    PanelStore again;
    ASSERT_EQ(LoadPanelData(EncodePanelData(store), again).outcome, LoadOutcome::Loaded);
    EXPECT_EQ(again.listCount(SubType::Input), 0);
    EXPECT_EQ(again.groups.userGroupCount, 0);

    // The header text length is no count: a negative one cannot be skipped.
    EXPECT_EQ(LoadPanelData(Golden().I16s({140, -3}).bytes(), store).outcome, LoadOutcome::Failed);
    EXPECT_EQ(LoadPanelData(Golden().I16s({140, 16383, 3, -1}).bytes(), store).outcome,
              LoadOutcome::Failed);
}

// One flipped sign bit in the template count leaves the templates' bytes
// after what the count says the file holds: both are damage, and the load
// still stores the count as read.
TEST(PanelDataFile, FlippedSignAndTrailingBytesAreReportedAsDamage) {
    const std::string file = Version3File().bytes();
    const size_t templateCount = file.size() - Version3TemplatesSize();
    std::string flipped = file;
    flipped[templateCount + 1] = static_cast<char>(flipped[templateCount + 1] | 0x80);
    const struct {
        const char* what;
        std::string bytes;
        int16_t templates;
        std::vector<std::string> damage;
    } cases[] = {
        {"intact", file, 2, {}},
        {"flipped sign",
         flipped,
         -32766,
         {"error: button templates: template count -32766 is negative: the file is damaged "
          "[templates]",
          "error: button templates: " + std::to_string(Version3TemplatesSize() - 2) +
              " bytes follow the last template: the file is damaged [templates]"}},
        {"trailing bytes",
         file + "xyz",
         2,
         {"error: button templates: 3 bytes follow the last template: the file is damaged "
          "[templates]"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        PanelStore store;
        const LoadResult r = LoadPanelData(c.bytes, store);
        EXPECT_EQ(r.outcome, LoadOutcome::Loaded);
        EXPECT_EQ(store.templates.templateCount, c.templates);
        std::vector<std::string> damage;
        for (const CheckFinding& finding : r.damage)
            damage.push_back(CheckFindingLine(finding, store));
        EXPECT_EQ(damage, c.damage);
    }
}

// ---- files on disk ----------------------------------------------------------

TEST(PanelDataFileOnDisk, FailedWriteKeepsTheOldFileAndLeavesNoTemporary) {
    test::TempFolder dir;
    const std::string old = Version3File().bytes();
    dir.Write("panel.dat", old);

    PanelStore big;
    big.ResetToDefaults();
    big.lists(SubType::Input)[0].channelCount = 4000;
    big.lists(SubType::Input)[0].channels.assign(4000, 1);

    ::chmod(dir.file("panel.dat").c_str(), 0640);
    Status status;
    {
        const test::FileSizeLimit limit(1024);
        status = SavePanelDataFile(dir.file("panel.dat"), big);
    }
    EXPECT_EQ(status.failure().detail, "File too large");
    EXPECT_EQ(dir.Read("panel.dat"), old);
    EXPECT_EQ(dir.EntryCount(), 1u);

    // A replaced file keeps its permissions; a new one holding the password
    // is its owner's alone, whatever the umask.
    // Saved through a symbolic link, the file it names is replaced.
    std::filesystem::create_symlink("panel.dat", dir.file("link.dat"));
    ASSERT_TRUE(SavePanelDataFile(dir.file("link.dat"), big).ok());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("link.dat")));
    EXPECT_EQ(dir.Read("panel.dat"), EncodePanelData(big));
    ASSERT_TRUE(ReplaceFileContents(dir.file("secret.json"), "{}", NewFileAccess::Owner).ok());
    const ::mode_t umask = ::umask(0);
    ASSERT_TRUE(ReplaceFileContents(dir.file("shared.json"), "{}").ok());
    ::umask(umask);
    for (const auto& [name, mode] : {std::pair{"panel.dat", 0640}, std::pair{"secret.json", 0600},
                                     std::pair{"shared.json", 0666}}) {
        struct stat st {};
        ASSERT_EQ(::stat(dir.file(name).c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, static_cast<::mode_t>(mode)) << name;
    }
}

TEST(PanelDataFileOnDisk, MissingFileLeavesTheStoreUntouchedAFolderResetsIt) {
    test::TempFolder dir;
    PanelStore store;
    store.ResetToDefaults();
    store.groups.userGroupNames[0] = "Mine";
    EXPECT_EQ(LoadPanelDataFile(dir.file("absent.dat"), store).outcome, LoadOutcome::NoFile);
    EXPECT_EQ(store.groups.userGroupNames[0], "Mine");

    EXPECT_EQ(LoadPanelDataFile(dir.path(), store).outcome, LoadOutcome::Failed);
    EXPECT_EQ(test::PartsOf(store), Defaults());
}

} // namespace
} // namespace lumeth
