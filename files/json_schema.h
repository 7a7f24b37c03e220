#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "model/failure.h"
#include "model/parts.h"
#include "model/store_check.h"
#include "model/store_location.h"

namespace lumeth {

// The JSON document ("lumeth-panel-data", version 1) in one table: every
// value it may hold, where it sits, what it must be and which part of the
// store it holds. The writer takes its keys from here, the reader checks
// each value against its node, and store locations become JSON paths by it.
inline constexpr const char* kJsonFormatName = "lumeth-panel-data";
inline constexpr int kJsonFormatVersion = 1;

// A place in the document.
enum class JsonSlot : unsigned char {
    Document,
    Format,
    Version,
    ListSections, // "display_lists": {"input": [...], ...}
    Lists,        // one sub type's display lists
    List,
    ListName,
    Channels,
    Channel,
    Groups,
    Group,
    GroupName,
    Entries,
    Entry,
    EntryType,
    EntryIndex,
    Templates,
    Template,
    TemplateName,
    TemplateNumber,
    Buttons,
    Button,
    ButtonType,
    CaptionOption,
    Label,
    ButtonChannel,
    ButtonChannel2,
    AlphaSections,
    Alphas,
    AlphaName,
    Password,
};
inline constexpr size_t kJsonSlotCount = static_cast<size_t>(JsonSlot::Password) + 1;

enum class JsonValue : unsigned char { Object, Array, Text, Integer };

struct JsonNode {
    JsonSlot slot;
    JsonSlot parent;
    const char* key; // nullptr: each element of the parent array
    JsonValue value;
    bool required; // a key its object must have
    // A section: the store part it holds (the four sub types share a slot).
    std::optional<Part> part;
    // A value of a record: which one.
    StoreField field = StoreField::Record;
    // Integer: the range. Text: max is the length in characters (0: any).
    // Array: max is the most elements.
    int min = 0;
    int max = 0;
};

// Every node, each object's keys in the order the writer writes them.
std::span<const JsonNode> JsonSchema();
// The node of `slot` (for a sub type's section: the Input one).
const JsonNode& JsonNodeOf(JsonSlot slot);
// The keys an object slot may hold, in order; empty for other slots.
const std::vector<const JsonNode*>& JsonMembers(JsonSlot object);
// The slot of an array slot's elements.
std::optional<JsonSlot> JsonElement(JsonSlot array);
// The section node that holds `part`.
const JsonNode& JsonSection(Part part);

// "[2]": the element of an array at that index in a path.
std::string JsonIndex(size_t index);
// "display_lists.input[2].channels[5]", "user_groups[0]", "alphas.relay".
std::string JsonPath(const StoreLocation& at);
// Fails naming the upload sections not in `present`: for sending a document,
// where a missing section would empty that part on the server module.
// `why` ends the message.
Status RequireSections(PartSet present, const std::string& why);

} // namespace lumeth
