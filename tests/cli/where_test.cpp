// lumeth-cli where, and check after deletes and moves of whole records.
#include "tests/cli/cli_run.h"

#include <functional>

#include "files/file_io.h"
#include "files/json_document.h"
#include "model/list_records.h"
#include "model/record_moves.h"

namespace lumeth {
namespace {

const QString kDemo = QStringLiteral(LUMETH_SOURCE_DIR "/demo/demo-panel.json");

class Where : public testing::CliTest {
protected:
    void SetUp() override {
        std::string text;
        ASSERT_TRUE(ReadFileBytes(kDemo.toStdString(), text).ok());
        ASSERT_TRUE(ReadJsonDocument(text, m_demo).status.ok());
    }
    QString Edited(const std::string& name, const std::function<void(PanelStore&)>& edit) {
        PanelStore store = m_demo;
        edit(store);
        m_dir.Write(name, WriteJsonDocument(store));
        return Path(name);
    }
    PanelStore m_demo;
};

TEST_F(Where, ListsTheUsesAndExitsByWhetherThereAreAny) {
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

// Whatever is deleted or moved, check finds no group entry left pointing
// past its lists.
TEST_F(Where, CheckFindsNothingDanglingAfterDeletesAndMoves) {
    const int lastInput = m_demo.listCount(SubType::Input) - 1;
    const std::function<RecordEdit(PanelStore&)> edits[] = {
        [](PanelStore& s) { return DeleteDisplayList(s, SubType::Input, 0); },
        [](PanelStore& s) { return DeleteDisplayList(s, SubType::Relay, 0); },
        [=](PanelStore& s) { return MoveDisplayList(s, SubType::Input, 0, lastInput); },
        [](PanelStore& s) { return DeleteUserGroup(s, 0); },
        [](PanelStore& s) { return MoveUserGroup(s, 0, 1); },
        [](PanelStore& s) { return DeleteTemplate(s, 0); },
    };
    int n = 0;
    for (const auto& edit : edits) {
        const QString file = Edited("edited" + std::to_string(n++) + ".json", [&](PanelStore& s) {
            ASSERT_TRUE(edit(s));
        });
        const testing::CliResult r = Run({"check", file});
        EXPECT_LT(r.exitCode, 2) << r.out;
        EXPECT_EQ(r.out.find("error:"), std::string::npos) << r.out;
    }
}

} // namespace
} // namespace lumeth
