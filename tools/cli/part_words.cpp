#include "tools/cli/part_words.h"

#include <algorithm>

namespace lumeth::cli {

std::string PartWordList() {
    std::string list;
    for (const PartWord& entry : kPartWords) {
        list += list.empty() ? "" : ", ";
        list += entry.word;
    }
    return list;
}

Status ParsePartWords(std::string_view text, std::string_view option, PartSet& parts) {
    PartSet chosen;
    size_t start = 0;
    for (;;) {
        const size_t comma = std::min(text.find(',', start), text.size());
        const std::string_view word = text.substr(start, comma - start);
        const auto* found =
            std::find_if(kPartWords.begin(), kPartWords.end(),
                         [word](const PartWord& entry) { return entry.word == word; });
        if (found == kPartWords.end()) {
            return Status::Fail(ErrorCode::InvalidProcedureCall,
                                std::string(option) + ": unknown part \"" + std::string(word) +
                                    "\" (use " + PartWordList() + ")");
        }
        chosen.add(found->part);
        if (comma == text.size()) {
            break;
        }
        start = comma + 1;
    }
    parts = chosen;
    return Status::Ok();
}

} // namespace lumeth::cli
