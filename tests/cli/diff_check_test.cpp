// lumeth-cli diff, check and where: their exit codes and lines, and apply refusing
// a file with errors unless --force.
#include "tests/cli/cli_run.h"

#include <functional>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "model/button_templates.h"
#include "model/cp1252.h"
#include "model/limits.h"
#include "model/list_records.h"

namespace lumeth {
namespace {

using Cli = testing::CliTest;

class DiffCheck : public Cli {
protected:
    void SetUp() override {
        ASSERT_TRUE(ReadJsonDocument(test::ReadFile(kDemo.toStdString()), m_demo).status.ok());
    }
    // The demo changed by `edit`, written as a JSON document `name`.
    QString Edited(const std::string& name, const std::function<void(PanelStore&)>& edit) {
        PanelStore store = m_demo;
        edit(store);
        m_dir.Write(name, WriteJsonDocument(store));
        return Path(name);
    }
    std::string DemoGroup() const {
        std::string name = cp1252::ToUtf8(m_demo.groups.userGroupNames[0]);
        return name.erase(name.find_last_not_of(' ') + 1);
    }
    PanelStore m_demo;
};

TEST_F(DiffCheck, DiffExitsLikeDiff) {
    const QString same = Edited("same.json", [](PanelStore&) {});
    const QString renamed =
        Edited("renamed.json", [](PanelStore& s) { s.groups.userGroupNames[0] = "Renamed"; });
    // A template of one button, and the same grown to 32 as the button editor does.
    const auto shortTemplate = [](PanelStore& s) {
        s.templates.buttonTemplates[0].buttonCount = 1;
        s.templates.buttonTemplates[0].buttons.resize(1);
        s.templates.templateNames[0] = "Host";
    };
    const QString held = Edited("short.json", shortTemplate);
    const QString grown = Edited("grown.json", [&](PanelStore& s) {
        shortTemplate(s);
        ASSERT_TRUE(FillButtonTemplate(s, 0));
    });
    const struct {
        QStringList args;
        int exitCode;
        std::string out;
    } cases[] = {
        {{"diff", kDemo, same}, 0, "No changes.\n"},
        {{"diff", kDemo, renamed}, 1, "Gr.001 \"" + DemoGroup() + "\" renamed to \"Renamed\"\n"},
        {{"diff", held, grown}, 1, "template 01 \"Host\": grown from 1 to 32 buttons\n"},
        {{"diff", kDemo}, 2, ""},
        {{"diff", kDemo, Path("missing.dat")}, 2, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r = Run(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.out, c.out);
    }
}

TEST_F(DiffCheck, CheckExitsWithTheWorstFindingAndApplyRefusesErrors) {
    const QString warned =
        Edited("warned.json", [](PanelStore& s) { s.groups.userGroups[0].listCount = 0; });
    const QString failed = Edited("failed.json", [](PanelStore& s) {
        s.groups.userGroups[0].listTypes[0] = 11;
        s.groups.userGroups[0].listIndexes[0] = 99;
    });
    // Cleared keys 1-16 and Source Select keys 17-32, none with a channel.
    const QString keys = Edited("keys.json", [](PanelStore& s) {
        s.templates.templateNames[0] = "Host";
        ButtonTemplate& host = s.templates.buttonTemplates[0];
        host.buttonCount = kTemplateButtons;
        host.buttons.assign(kTemplateButtons, PanelButton::Cleared());
        for (int k = 16; k < kTemplateButtons; ++k)
            host.buttons[static_cast<size_t>(k)].type = 40; // Source Select
    });
    const std::string inputLists = std::to_string(m_demo.listCount(SubType::Input));
    const struct {
        QString file;
        int exitCode;
        std::string out;
    } cases[] = {
        {kDemo, 0, kDemo.toStdString() + ": no problems found\n"},
        {warned, 1,
         "warning: Gr.001 \"" + DemoGroup() + "\": user group is empty [user_groups[0]]\n" +
             warned.toStdString() + ": 0 errors, 1 warning\n"},
        {failed, 2,
         "error: Gr.001 \"" + DemoGroup() + "\" entry 1: points to Input Lst.099, past the " +
             inputLists + " Input lists [user_groups[0].lists[0]]\n" + failed.toStdString() +
             ": 1 error, 0 warnings\n"},
        {keys, 1,
         "warning: template 01 \"Host\" Btn 1-16: Console Source Select without a channel (16 "
         "keys)\n"
         "warning: template 01 \"Host\" Btn 17-32: Source Select without a channel (16 keys)\n" +
             keys.toStdString() + ": 0 errors, 32 warnings\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        const testing::CliResult r = Run({"check", c.file});
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.out, c.out);
    }

    // --force goes past the check to the (unreachable) server module; the
    // refusal without it: OutputModes.ApplyPrintsOnlyTheCheckLinesThatStopIt.
    const QStringList apply{"apply", failed, "--server", "127.0.0.1:1", "--force"};
    EXPECT_EQ(Run(apply, Environment("studio")).exitCode, 3);
}

// The demo as a panel data file with the sign bit of its template count
// flipped: the count field is the last field of a file without templates.
std::string WithFlippedTemplateCount(const PanelStore& store) {
    PanelStore none = store;
    none.templates.templateCount = 0;
    const size_t high = EncodePanelData(none).size() - 1;
    std::string bytes = EncodePanelData(store);
    bytes[high] = static_cast<char>(bytes[high] | 0x80);
    return bytes;
}

TEST_F(DiffCheck, CheckAndShowTellADamagedPanelDataFile) {
    const int templates = m_demo.templates.templateCount;
    ASSERT_GT(templates, 0);
    m_dir.Write("flipped.dat", WithFlippedTemplateCount(m_demo));
    m_dir.Write("trailing.dat", EncodePanelData(m_demo) + "x");
    const std::string negative = std::to_string(templates - 32768);
    const struct {
        const char* file;
        std::string line;
    } cases[] = {
        {"flipped.dat", "error: button templates: template count " + negative +
                            " is negative: the file is damaged [templates]\n"},
        {"trailing.dat",
         "error: button templates: 1 byte follows the last template: the file is damaged "
         "[templates]\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const testing::CliResult r = Run({"check", Path(c.file)});
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.out.substr(0, c.line.size()), c.line);
    }
    const testing::CliResult shown = Run({"show", Path("flipped.dat")});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(
        shown.out.find("Button templates: damaged (the file holds the count " + negative + ")\n"),
        std::string::npos)
        << shown.out;
}

// lumeth-cli where: uses listed, exit 0 used, 1 unused, 2 bad input.
TEST_F(DiffCheck, WhereListsTheUsesAndExitsByWhetherThereAreAny) {
    // Template 01 key 1 outputs to Output channel 5 and listens to Input channel 5.
    const QString keyed = Edited("keyed.json", [](PanelStore& s) {
        ASSERT_TRUE(AppendRecord(s, ListTypeCode(SubType::Opto), "Spare").has_value());
        PanelButton& key = s.templates.buttonTemplates[0].buttons[0];
        key.type = 810; // Output Select W/Listen
        key.channel = 4;
        key.channel2 = 4;
    });
    const std::string host = "template 01 \"" + m_demo.templates.templateNames[0] + "\" Btn 1";
    const std::string spareKey =
        "Lst." + std::to_string(1000 + m_demo.listCount(SubType::Opto)).substr(1);
    const std::string spare = "Opto " + spareKey + " \"Spare\"";
    const struct {
        QStringList args;
        int exitCode;
        std::string has; // a line of the output
    } cases[] = {
        {{"where", kDemo, "input", "Lst.000"}, 0, "  Gr.001 \"Studio A\"\n"},
        {{"where", keyed, "output", "Ch.0005"}, 0, "  " + host + "\n"},
        {{"where", keyed, "INPUT", "Ch.0005"}, 0, "  " + host + " (second channel)\n"},
        {{"where", keyed, "opto", QString::fromStdString(spareKey)}, 1, spare + " is not used.\n"},
        {{"where", kDemo, "relay", "Lst.999"}, 2, ""},
        {{"where", kDemo, "audio", "Lst.000"}, 2, ""},
        {{"where", kDemo, "input", "Ch.0000"}, 2, ""},
        {{"where", kDemo, "input", "Gr.001"}, 2, ""},
        {{"where", kDemo, "input"}, 2, ""},
        {{"where", Path("missing.json"), "input", "Lst.000"}, 2, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r = Run(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_NE(r.out.find(c.has), std::string::npos) << r.out;
        EXPECT_EQ(r.out.empty(), c.exitCode == 2) << r.err;
    }
}

} // namespace
} // namespace lumeth
