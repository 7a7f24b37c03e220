// The configuration's CSV reader on arbitrary bytes: the input is split at
// NUL bytes into display_lists.csv, user_groups.csv and templates.csv.
// Besides crashes it checks that a refused import leaves the store as it was,
// that a problem names a line within the text, and that whatever is accepted
// exports to files that read back to the same export.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "files/csv_configuration.h"

namespace {

void Check(bool ok) {
    if (!ok) {
        std::abort();
    }
}

lumeth::CsvTexts Split(std::string_view bytes) {
    lumeth::CsvTexts texts;
    for (size_t i = 0; i < texts.size(); ++i) {
        const size_t end =
            i + 1 < texts.size() ? std::min(bytes.find('\0'), bytes.size()) : bytes.size();
        texts[i] = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return texts;
}

lumeth::CsvTexts Export(const lumeth::PanelStore& store) {
    lumeth::CsvTexts texts;
    Check(lumeth::ExportCsv(store, texts).ok());
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    // Small limits, so that the fuzzer reaches them.
    const lumeth::CsvLimits limits{1u << 16, 64, 16};
    const lumeth::CsvTexts texts = Split(bytes);

    lumeth::PanelStore store;
    store.ResetToDefaults();
    const lumeth::CsvTexts before = Export(store);
    const auto problem = lumeth::ImportCsv(texts, store, limits);
    if (problem) {
        const std::string& text = texts[size_t(problem->file)];
        Check(problem->problem.line >= 0 && !problem->problem.reason.empty());
        Check(static_cast<size_t>(problem->problem.line) <=
              static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
        Check(Export(store) == before);
        return 0;
    }
    const lumeth::CsvTexts exported = Export(store);
    lumeth::PanelStore again;
    Check(!lumeth::ImportCsv(exported, again));
    Check(Export(again) == exported);
    return 0;
}
