// lumeth-cli labels: the template editor's label sheet from the command line,
// its text read back with pdftotext (poppler-utils).
#include "tests/cli/cli_run.h"

#include <QStandardPaths>

#include "files/json_document.h"
#include "model/limits.h"

namespace lumeth {
namespace {

class Labels : public testing::CliTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(ReadJsonDocument(test::ReadFile(kDemo.toStdString()), m_store).status);
        ASSERT_GE(m_store.templates.templateCount, 2);
        // The widest texts a key shows: an 8-character custom label and a
        // 16-character channel name.
        PanelButton& button = m_store.templates.buttonTemplates[0].buttons[2];
        button.captionOption = 1;
        button.label = "MON+OFFA";
        m_store.alpha(SubType::Input).channelNames[size_t(button.channel)] = "STUDIO A MIC 123";
        m_dir.Write("panel.json",
                    WriteJsonDocument(m_store, {.includeAlphas = true, .password = std::nullopt}));
    }

    static qsizetype Pages(const std::string& pdf) {
        return QByteArray::fromStdString(pdf).count("/Type /Page\n");
    }

    // The text of the PDF `name`, or nullopt when pdftotext is not installed.
    std::optional<std::string> PdfText(const std::string& name) const {
        const QString tool = QStandardPaths::findExecutable("pdftotext");
        if (tool.isEmpty())
            return std::nullopt;
        QProcess process;
        process.start(tool, {Path(name), "-"});
        EXPECT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitCode(), 0);
        return process.readAllStandardOutput().toStdString();
    }

    std::string TemplateName(int t) const {
        return TrimTrailingBlanks(m_store.templates.templateNames[size_t(t)]);
    }

    PanelStore m_store;
};

TEST_F(Labels, PrintsEveryTemplateOrTheChosenOnesWithTheirTextsWhole) {
    ASSERT_EQ(Run({"labels", Path("panel.json"), "-o", Path("all.pdf")}).exitCode, 0);
    EXPECT_EQ(Pages(m_dir.Read("all.pdf")), m_store.templates.templateCount);
    const testing::CliResult chosen =
        Run({"labels", Path("panel.json"), "-o", Path("two.pdf"), "--templates", "2"});
    ASSERT_EQ(chosen.exitCode, 0);
    EXPECT_EQ(chosen.err, "");
    EXPECT_EQ(Pages(m_dir.Read("two.pdf")), 1);
    ASSERT_EQ(Run({"labels", Path("panel.json"), "-o", Path("some.pdf"), "--templates", "2,1-2"})
                  .exitCode,
              0);
    EXPECT_EQ(Pages(m_dir.Read("some.pdf")), 3);

    const std::optional<std::string> all = PdfText("all.pdf");
    const std::optional<std::string> two = PdfText("two.pdf");
    if (!all || !two)
        GTEST_SKIP() << "pdftotext (poppler-utils) is not installed: the sheets' text is not read";
    EXPECT_NE(all->find("MON+OFFA"), std::string::npos) << *all;
    EXPECT_NE(all->find("STUDIO A MIC 123"), std::string::npos) << *all;
    EXPECT_NE(two->find("Template 02"), std::string::npos) << *two;
    EXPECT_NE(two->find(TemplateName(1)), std::string::npos) << *two;
    EXPECT_EQ(two->find(TemplateName(0)), std::string::npos) << *two;
    EXPECT_EQ(two->find("Template 01"), std::string::npos) << *two;
}

TEST_F(Labels, RefusesABadListATemplateTooFarAndAnUnwritableOutput) {
    const std::string file = Path("panel.json").toStdString();
    const std::string held = std::to_string(m_store.templates.templateCount);
    const std::string past = std::to_string(m_store.templates.templateCount + 1);
    const struct {
        QStringList args;
        int exitCode;
        std::string firstLine;
    } cases[] = {
        {{"--templates", ""},
         1,
         "--templates: \"\" is not a template number or a range such as 3-5"},
        {{"--templates", "1,,2"},
         1,
         "--templates: \"\" is not a template number or a range such as 3-5"},
        {{"--templates", "x"},
         1,
         "--templates: \"x\" is not a template number or a range such as 3-5"},
        {{"--templates", "2-"},
         1,
         "--templates: \"2-\" is not a template number or a range such as 3-5"},
        {{"--templates", "99999999999"},
         1,
         "--templates: \"99999999999\" is not a template number or a range such as 3-5"},
        {{"--templates", "0-2"}, 1, "--templates: template numbers start at 1"},
        {{"--templates", "3-1"}, 1, "--templates: the range 3-1 runs backwards"},
        {{"--templates", "1", "--templates", "2"}, 1, "labels takes one --templates value"},
        {{"--templates", "1," + QString::fromStdString(past)},
         2,
         file + ": there is no template " + past + " (it holds " + held + " templates)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const testing::CliResult r =
            Run(QStringList{"labels", Path("panel.json"), "-o", Path("out.pdf")} + c.args);
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(r.err.substr(0, r.err.find('\n')), "lumeth-cli: " + c.firstLine);
        EXPECT_FALSE(m_dir.Exists("out.pdf"));
    }
    EXPECT_EQ(Run({"labels", Path("missing.json"), "-o", Path("out.pdf")}).exitCode, 2);
    m_dir.Write("empty.json", WriteJsonDocument(PanelStore{}));
    const testing::CliResult empty = Run({"labels", Path("empty.json"), "-o", Path("out.pdf")});
    EXPECT_EQ(empty.exitCode, 2);
    EXPECT_EQ(empty.err, "lumeth-cli: " + Path("empty.json").toStdString() +
                             ": nothing to print (it holds no button templates)\n");
    const testing::CliResult unwritable =
        Run({"labels", Path("panel.json"), "-o", Path("none/out.pdf")});
    EXPECT_EQ(unwritable.exitCode, 7);
    EXPECT_EQ(unwritable.err.rfind(
                  "lumeth-cli: cannot write " + Path("none/out.pdf").toStdString() + ": ", 0),
              0u)
        << unwritable.err;
}

} // namespace
} // namespace lumeth
