#include <QGuiApplication>

#include <charconv>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "ui/label_sheet_pdf.h"

namespace lumeth::cli {

namespace {

// A number of LIST, 1-based; nullopt for anything but plain digits that fit.
std::optional<int> TemplateNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < 0) {
        return std::nullopt;
    }
    return value;
}

// LIST ("1,3-5") as the 1-based numbers it names, in the order given. On a
// malformed entry returns nullopt with `problem` saying what is wrong.
std::optional<std::vector<int>> ParseTemplateList(std::string_view list, std::string& problem) {
    std::vector<int> numbers;
    size_t start = 0;
    while (start <= list.size()) {
        const size_t comma = std::min(list.find(',', start), list.size());
        const std::string_view entry = list.substr(start, comma - start);
        const size_t dash = entry.find('-');
        const std::optional<int> first = TemplateNumber(entry.substr(0, dash));
        const std::optional<int> last =
            dash == std::string_view::npos ? first : TemplateNumber(entry.substr(dash + 1));
        if (!first || !last) {
            problem = "--templates: \"" + std::string(entry) +
                      "\" is not a template number or a range such as 3-5";
            return std::nullopt;
        }
        if (*first == 0 || *last == 0) {
            problem = "--templates: template numbers start at 1";
            return std::nullopt;
        }
        if (*last < *first) {
            problem = "--templates: the range " + std::string(entry) + " runs backwards";
            return std::nullopt;
        }
        for (int n = *first; n <= *last; ++n) {
            numbers.push_back(n);
        }
        start = comma + 1;
    }
    return numbers;
}

std::string TemplatesHeld(int count) {
    if (count == 0)
        return "it holds no button templates";
    return "it holds " + std::to_string(count) + (count == 1 ? " template" : " templates");
}

// Qt's own notes on its set-up (no runtime folder and the like) are not this
// command's result; only what stops Qt goes to stderr.
void QuietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::cerr << "lumeth-cli: " << message.toStdString() << "\n";
    }
}

// Drawing text needs a QGuiApplication; without a display it draws on the
// "offscreen" platform, so the command runs the same on a server.
std::unique_ptr<QGuiApplication> DrawingApplication() {
    qInstallMessageHandler(QuietQtMessages);
    static int argc = 1;
    static char name[] = "lumeth-cli";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    return std::make_unique<QGuiApplication>(argc, argv);
}

// The 0-based positions of the templates `numbers` names (1-based; all of
// them without numbers), or the exit code of the line printed about it.
std::variant<std::vector<int>, int>
SelectTemplates(const std::string& in, const PanelStore& store,
                const std::optional<std::vector<int>>& numbers) {
    const int count = ValidCount(store.templates.templateCount);
    std::vector<int> positions = AllTemplatePositions(store);
    if (numbers) {
        positions.clear();
        for (int n : *numbers) {
            if (n > count) {
                return Error(ExitCode::BadInput, in + ": there is no template " +
                                                     std::to_string(n) + " (" +
                                                     TemplatesHeld(count) + ")");
            }
            positions.push_back(n - 1);
        }
    }
    if (positions.empty()) {
        return Error(ExitCode::BadInput, in + ": nothing to print (" + TemplatesHeld(count) + ")");
    }
    return positions;
}

} // namespace

// labels FILE -o OUT [--templates LIST]: the label sheet of FILE's button
// templates (all, or those LIST names, in its order), the PDF the template
// editor's File menu exports. OUT is replaced atomically.
int RunLabels(const std::vector<std::string>& args) {
    FileToOutput parsed;
    if (const Status ok = ParseFileToOutput("labels", args, {"--templates"}, parsed); !ok) {
        return UsageError(ok.failure().detail);
    }
    // LIST is checked before FILE is read: a usage error whatever FILE holds.
    std::optional<std::vector<int>> numbers;
    if (const auto list = parsed.options.find("--templates"); list != parsed.options.end()) {
        std::string problem;
        numbers = ParseTemplateList(list->second, problem);
        if (!numbers) {
            return UsageError(problem);
        }
    }
    const Configuration config = ReadConfiguration(parsed.in);
    if (!config.status) {
        return InputError(parsed.in, config.status);
    }
    const auto selected = SelectTemplates(parsed.in, config.store, numbers);
    if (const int* failed = std::get_if<int>(&selected)) {
        return *failed;
    }
    const std::unique_ptr<QGuiApplication> application = DrawingApplication();
    const Status written =
        WriteLabelSheet(parsed.out, config.store, std::get<std::vector<int>>(selected));
    return written ? ToInt(ExitCode::Ok) : WriteError(parsed.out, written);
}

} // namespace lumeth::cli
