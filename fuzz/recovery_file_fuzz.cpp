// Recovery file reader on arbitrary payloads: the input is wrapped in a
// header with a matching length and checksum (its first two bytes are the
// parts), so the reader's tables are what gets fuzzed. Besides crashes it
// checks that whatever is accepted keeps the store's array shape and encodes
// back to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "files/recovery_file.h"

namespace {

void Check(bool ok) {
    if (!ok)
        std::abort();
}

void Put(std::string& out, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>(value >> (8 * i)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const std::string_view payload(reinterpret_cast<const char*>(data) + 2, size - 2);
    uint32_t hash = 2166136261u;
    for (const char c : payload)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    std::string bytes = "LMXRECV1";
    bytes.push_back(static_cast<char>(data[0]));
    bytes.push_back(static_cast<char>(data[1]));
    Put(bytes, static_cast<uint32_t>(payload.size()), 4);
    Put(bytes, hash, 4);
    bytes.append(payload);

    lumeth::RecoveredEdits read;
    if (!lumeth::DecodeRecoveryFile(bytes, read).ok())
        return 0;
    Check(lumeth::EncodeRecoveryFile(read) == bytes);
    lumeth::PanelStore store;
    lumeth::RestoreParts(read.edits, read.parts, store);
    for (lumeth::SubType t : lumeth::kAllSubTypes)
        Check(store.lists(t).size() >= lumeth::ArraySizeFor(store.listCount(t)));
    Check(store.groups.userGroupNames.size() >= lumeth::ArraySizeFor(store.groups.userGroupCount));
    Check(store.templates.buttonTemplates.size() >=
          lumeth::ArraySizeFor(store.templates.templateCount));
    return 0;
}
