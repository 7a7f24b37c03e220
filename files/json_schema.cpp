#include "files/json_schema.h"

#include <array>
#include <cstdint>

#include "model/limits.h"
#include "model/panel_store.h"

namespace lumeth {

namespace {

using S = JsonSlot;
using V = JsonValue;
using F = StoreField;

constexpr int kMaxEntries = INT16_MAX;

// The keys of a sub type's section, in sub type order.
constexpr const char* kSubTypeKeys[kSubTypeCount] = {"input", "output", "opto", "relay"};

// A sub type's section of display lists or channel names.
constexpr JsonNode Section(S slot, S parent, SubType s, Part part) {
    return {slot,      parent, kSubTypeKeys[Index(s)],
            V::Array,  false,  part,
            F::Record, 0,      slot == S::Alphas ? kNoChannel : kMaxEntries};
}

constexpr int kMin = INT16_MIN;
constexpr int kMax = INT16_MAX;
constexpr int kName = static_cast<int>(kNameWidth);
constexpr int kLabel = static_cast<int>(kLabelWidth);

// Each object's keys in the order they are written; required keys first.
// clang-format off
constexpr JsonNode kNodes[] = {
    {S::Document,       S::Document,      nullptr,          V::Object,  false, {}},
    {S::Format,         S::Document,      "format",         V::Text,    true,  {}},
    {S::Version,        S::Document,      "version",        V::Integer, true,  {}, F::Record, kJsonFormatVersion, kJsonFormatVersion},
    {S::ListSections,   S::Document,      "display_lists",  V::Object,  false, {}},
    {S::Groups,         S::Document,      "user_groups",    V::Array,   false, Part::UserGroups, F::Record, 0, kMaxEntries},
    {S::Templates,      S::Document,      "templates",      V::Array,   false, Part::Templates, F::Record, 0, kMaxEntries},
    {S::AlphaSections,  S::Document,      "alphas",         V::Object,  false, {}},
    {S::Password,       S::Document,      "password",       V::Text,    false, Part::Password},

    Section(S::Lists, S::ListSections, SubType::Input, Part::InputLists),
    Section(S::Lists, S::ListSections, SubType::Output, Part::OutputLists),
    Section(S::Lists, S::ListSections, SubType::Opto, Part::OptoLists),
    Section(S::Lists, S::ListSections, SubType::Relay, Part::RelayLists),
    {S::List,           S::Lists,         nullptr,          V::Object,  false, {}},
    {S::ListName,       S::List,          "name",           V::Text,    true,  {}, F::Name, 0, kName},
    {S::Channels,       S::List,          "channels",       V::Array,   true,  {}, F::Record, 0, kMaxEntries},
    {S::Channel,        S::Channels,      nullptr,          V::Integer, false, {}, F::Channel, 0, kNoChannel},

    {S::Group,          S::Groups,        nullptr,          V::Object,  false, {}},
    {S::GroupName,      S::Group,         "name",           V::Text,    true,  {}, F::Name, 0, kName},
    {S::Entries,        S::Group,         "lists",          V::Array,   true,  {}, F::Record, 0, kMaxEntries},
    {S::Entry,          S::Entries,       nullptr,          V::Object,  false, {}, F::GroupEntry},
    {S::EntryType,      S::Entry,         "type",           V::Integer, true,  {}, F::EntryType, kMin, kMax},
    {S::EntryIndex,     S::Entry,         "index",          V::Integer, true,  {}, F::EntryIndex, kMin, kMax},

    {S::Template,       S::Templates,     nullptr,          V::Object,  false, {}},
    {S::TemplateName,   S::Template,      "name",           V::Text,    true,  {}, F::Name, 0, kName},
    {S::TemplateNumber, S::Template,      "number",         V::Integer, true,  {}, F::TemplateNumber, kMin, kMax},
    {S::Buttons,        S::Template,      "buttons",        V::Array,   true,  {}, F::Record, 0, kMaxEntries},
    {S::Button,         S::Buttons,       nullptr,          V::Object,  false, {}, F::Button},
    {S::ButtonType,     S::Button,        "type",           V::Integer, true,  {}, F::ButtonType, kMin, kMax},
    {S::CaptionOption,  S::Button,        "caption_option", V::Integer, true,  {}, F::CaptionOption, kMin, kMax},
    {S::Label,          S::Button,        "label",          V::Text,    true,  {}, F::Label, 0, kLabel},
    {S::ButtonChannel,  S::Button,        "channel",        V::Integer, true,  {}, F::ButtonChannel, 0, kNoChannel},
    {S::ButtonChannel2, S::Button,        "channel2",       V::Integer, true,  {}, F::ButtonChannel2, 0, kNoChannel},

    Section(S::Alphas, S::AlphaSections, SubType::Input, Part::InputAlphas),
    Section(S::Alphas, S::AlphaSections, SubType::Output, Part::OutputAlphas),
    Section(S::Alphas, S::AlphaSections, SubType::Opto, Part::OptoAlphas),
    Section(S::Alphas, S::AlphaSections, SubType::Relay, Part::RelayAlphas),
    {S::AlphaName,      S::Alphas,        nullptr,          V::Text,    false, {}},
};
// clang-format on

// The table looked up by slot and by part, built once.
struct SchemaIndex {
    std::array<const JsonNode*, kJsonSlotCount> node{};
    std::array<std::vector<const JsonNode*>, kJsonSlotCount> members;
    std::array<std::optional<JsonSlot>, kJsonSlotCount> element;
    std::array<const JsonNode*, kPartCount> section{};

    SchemaIndex() {
        for (const JsonNode& n : kNodes) {
            const auto slot = static_cast<size_t>(n.slot);
            if (node[slot] == nullptr)
                node[slot] = &n;
            if (n.part)
                section[static_cast<size_t>(*n.part)] = &n;
            if (n.slot == S::Document)
                continue;
            const auto parent = static_cast<size_t>(n.parent);
            if (n.key == nullptr)
                element[parent] = n.slot;
            else
                members[parent].push_back(&n);
        }
    }
};

const SchemaIndex& Lookup() {
    static const SchemaIndex index;
    return index;
}

// The keys from the document down to `node`, dot-separated (sections only:
// no array lies on their way).
std::string SectionPath(const JsonNode& node) {
    if (node.slot == S::Document)
        return {};
    const std::string above = SectionPath(JsonNodeOf(node.parent));
    return above.empty() ? node.key : above + "." + node.key;
}

// The nodes below the record element `record` down to the one holding
// `field`, outermost first; empty when the record has no such field.
std::vector<const JsonNode*> FieldChain(JsonSlot record, StoreField field) {
    for (const JsonNode& n : kNodes) {
        if (n.field != field || n.slot == record)
            continue;
        std::vector<const JsonNode*> chain;
        for (const JsonNode* at = &n; at->slot != S::Document; at = &JsonNodeOf(at->parent)) {
            if (at->slot == record)
                return {chain.rbegin(), chain.rend()};
            chain.push_back(at);
        }
    }
    return {};
}

} // namespace

std::span<const JsonNode> JsonSchema() {
    return kNodes;
}

const JsonNode& JsonNodeOf(JsonSlot slot) {
    return *Lookup().node[static_cast<size_t>(slot)];
}

const std::vector<const JsonNode*>& JsonMembers(JsonSlot object) {
    return Lookup().members[static_cast<size_t>(object)];
}

std::optional<JsonSlot> JsonElement(JsonSlot array) {
    return Lookup().element[static_cast<size_t>(array)];
}

const JsonNode& JsonSection(Part part) {
    return *Lookup().section[static_cast<size_t>(part)];
}

std::string JsonIndex(size_t index) {
    std::string text(1, '[');
    text += std::to_string(index);
    text += ']';
    return text;
}

std::string JsonPath(const StoreLocation& at) {
    const JsonNode& section = JsonSection(at.part);
    std::string path = SectionPath(section);
    if (at.record < 0)
        return path;
    path += JsonIndex(static_cast<size_t>(at.record));
    const std::optional<JsonSlot> record = JsonElement(section.slot);
    if (at.field == StoreField::Record || !record)
        return path;
    for (const JsonNode* node : FieldChain(*record, at.field))
        path += node->key != nullptr ? std::string(".") + node->key
                                     : JsonIndex(static_cast<size_t>(at.entry));
    return path;
}

Status RequireSections(PartSet present, const std::string& why) {
    const PartSet missing = kUploadParts - present;
    if (missing.empty())
        return Status::Ok();
    std::string names;
    ForEachPart(missing, [&](Part p) {
        names += (names.empty() ? "" : ", ") + SectionPath(JsonSection(p));
    });
    return Status::Fail(ErrorCode::InvalidFileFormat, "missing " + names + " (" + why + ")");
}

} // namespace lumeth
