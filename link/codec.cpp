#include "link/codec.h"

#include <algorithm>

#include "link/protocol.h"
#include "link/wire.h"
#include "model/limits.h"
#include "model/same_as_sent.h"

namespace lumeth::codec {

namespace {

// One byte field of a message (a width, a length, a code).
void AppendByte(std::string& out, int value) {
    out.push_back(static_cast<char>(value & 0xFF));
}

// How many entries of a parallel set of arrays may be sent (a count that ran
// ahead of its arrays must not make a builder read past them).
template <typename... Arrays> size_t Usable(int count, const Arrays&... arrays) {
    return SentCount(count, arrays...);
}

// A stored 14-bit value: appended masked, and the first one outside the field
// is recorded in `status`. `describe` names the field, built only then.
template <typename Describe>
void AppendValue(std::string& out, int value, Status& status, Describe&& describe) {
    if ((value < 0 || value > kMax14Bit) && status.ok()) {
        status = Status::Fail(ErrorCode::Overflow,
                              describe() + " " + std::to_string(value) + " does not fit 14 bits");
    }
    wire::Append14(out, value);
}

// Width bytes are body bytes: the top bit must stay clear.
constexpr size_t kMaxWidth = 127;

} // namespace

std::string IdentityQuery() {
    std::string m;
    m.push_back(Char(Command::Identity));
    m.push_back('d');
    wire::Finish(m);
    return m;
}

std::string IdentityAnswer() {
    // 0x11, then (145 - 0x11) / 128 = 1, as the server module expects it.
    std::string m;
    m.push_back(Char(Command::Identity));
    m.push_back(static_cast<char>(0x11));
    m.push_back(static_cast<char>((145 - 0x11) / 128));
    wire::Finish(m);
    return m;
}

std::string DataRequest(uint32_t maskA, uint32_t maskB, uint32_t maskC) {
    std::string m;
    m.reserve(17);
    m.push_back(Char(Command::DataRequest));
    wire::Append28(m, maskA);
    wire::Append28(m, maskB);
    wire::Append14(m, static_cast<int>(maskC & kMax14Bit));
    m.append(4, '\0');
    wire::Finish(m);
    return m;
}

std::string PasswordMessage(std::string_view password) {
    std::string m;
    m.reserve(password.size() + 5);
    m.push_back(Char(Command::Password));
    m.push_back(static_cast<char>(0x05));
    // The length counts every character, even a zero byte that is not sent.
    AppendByte(m, static_cast<int>(password.size()));
    for (char c : password) {
        if (c != '\0') {
            m.push_back(c);
        }
    }
    wire::Finish(m);
    return m;
}

bool PasswordFitsMessage(std::string_view password) {
    return password.size() <= kMaxWidth &&
           std::all_of(password.begin(), password.end(), [](char c) {
               const auto b = static_cast<unsigned char>(c);
               return b != 0 && !HasTopBit(b);
           });
}

std::string AlphaTableMessage(SubType subType, const std::vector<std::string>& channelNames,
                              int width) {
    const size_t n = std::min(channelNames.size(), static_cast<size_t>(kMax14Bit));
    size_t w = 0;
    if (width > 0) {
        w = static_cast<size_t>(width);
    } else {
        for (size_t i = 0; i < n; ++i) {
            w = std::max(w, channelNames[i].size());
        }
    }
    w = std::min(w, kMaxWidth);

    std::string m;
    m.reserve(9 + n * (w + 2));
    m.push_back(Char(Command::AlphaTable));
    AppendByte(m, AlphaTypeCode(subType));
    AppendByte(m, static_cast<int>(w));
    wire::Append14(m, static_cast<int>(n));
    wire::Append14(m, 0); // start index
    for (size_t i = 0; i < n; ++i) {
        m += FixedWidth(channelNames[i], w);
        wire::Append14(m, static_cast<int>(i));
    }
    wire::Finish(m);
    return m;
}

namespace {

std::string BuildDisplayLists(const PanelStore& store, SubType subType, Status& status) {
    const DisplayListTable& table = store.listTable(subType);
    const size_t n = Usable(table.displayListCount, table.displayLists);

    std::string m;
    m.push_back(Char(Command::DisplayLists));
    AppendByte(m, ListTypeCode(subType));
    wire::Append14(m, static_cast<int>(n));
    wire::Append14(m, 0);
    AppendByte(m, static_cast<int>(kNameWidth));
    for (size_t i = 0; i < n; ++i) {
        const DisplayList& list = table.displayLists[i];
        const size_t k = Usable(list.channelCount, list.channels);
        wire::Append14(m, static_cast<int>(k));
        for (size_t c = 0; c < k; ++c) {
            AppendValue(m, list.channels[c], status,
                        [&] { return "display list " + std::to_string(i) + " channel"; });
        }
        m += FixedWidth(list.name, kNameWidth);
    }
    wire::Finish(m);
    return m;
}

std::string BuildGroups(const UserGroupTable& groups, Status& status) {
    const size_t g = Usable(groups.userGroupCount, groups.userGroupNames, groups.userGroups);

    std::string m;
    m.push_back(Char(Command::UserGroups));
    AppendByte(m, 0);
    wire::Append14(m, static_cast<int>(g));
    wire::Append14(m, 0);
    AppendByte(m, static_cast<int>(kNameWidth));
    for (size_t i = 0; i < g; ++i) {
        const UserGroup& group = groups.userGroups[i];
        const size_t l = Usable(group.listCount, group.listIndexes, group.listTypes);
        m += FixedWidth(groups.userGroupNames[i], kNameWidth);
        wire::Append14(m, static_cast<int>(l));
        for (size_t e = 0; e < l; ++e) {
            const auto entry = [&](const char* field) {
                return "user group " + std::to_string(i) + " entry " + std::to_string(e) + field;
            };
            AppendValue(m, group.listIndexes[e], status, [&] { return entry(" list position"); });
            AppendValue(m, group.listTypes[e], status, [&] { return entry(" list type"); });
        }
    }
    wire::Finish(m);
    return m;
}

void AppendTemplate(std::string& m, const ButtonTemplate& tpl, size_t i, Status& status) {
    const size_t b = Usable(tpl.buttonCount, tpl.buttons);
    const auto where = [&](const std::string& field) {
        return "template " + std::to_string(i) + field;
    };
    AppendValue(m, tpl.number, status, [&] { return where(" number"); });
    wire::Append14(m, static_cast<int>(b));
    for (size_t k = 0; k < b; ++k) {
        const PanelButton& button = tpl.buttons[k];
        const auto field = [&](const char* name) {
            return where(" button " + std::to_string(k) + name);
        };
        AppendValue(m, button.type, status, [&] { return field(" type"); });
        AppendValue(m, button.captionOption, status, [&] { return field(" caption option"); });
        AppendValue(m, button.channel, status, [&] { return field(" channel"); });
        AppendValue(m, button.channel2, status, [&] { return field(" channel 2"); });
        m += FixedWidth(button.label, kLabelWidth);
    }
}

std::string BuildTemplates(const TemplateTable& templates, Status& status) {
    const size_t t =
        Usable(templates.templateCount, templates.templateNames, templates.buttonTemplates);

    std::string m;
    m.push_back(Char(Command::ButtonData));
    AppendByte(m, 0x7F);
    m.push_back(kButtonDataMarker);
    wire::Append14(m, static_cast<int>(t)); // X: size of the template table
    wire::Append14(m, static_cast<int>(t)); // M: templates carried
    wire::Append14(m, 0);                   // F: first position carried
    AppendByte(m, static_cast<int>(kLabelWidth));
    AppendByte(m, static_cast<int>(kNameWidth));
    for (size_t i = 0; i < t; ++i) {
        m += FixedWidth(templates.templateNames[i], kNameWidth);
        AppendTemplate(m, templates.buttonTemplates[i], i, status);
    }
    wire::Finish(m);
    return m;
}

} // namespace

std::string DisplayListMessage(const PanelStore& store, SubType subType) {
    return UploadMessage(store, ListsPart(subType)).message;
}

std::string GroupMessage(const PanelStore& store) {
    return UploadMessage(store, Part::UserGroups).message;
}

std::string ButtonMessage(const PanelStore& store) {
    return UploadMessage(store, Part::Templates).message;
}

std::string FixedWidth(std::string_view text, size_t width) {
    std::string out(text.substr(0, std::min(text.size(), width)));
    out.resize(width, ' ');
    return out;
}

std::optional<RequestMasks> ParseDataRequest(std::string_view message) {
    if (message.size() != kDataRequestSize || message[0] != Char(Command::DataRequest) ||
        wire::Checksum(message, 2) != static_cast<uint8_t>(message[kDataRequestSize - 2])) {
        return std::nullopt;
    }
    return RequestMasks{wire::Read28(message.substr(1)), wire::Read28(message.substr(5)),
                        static_cast<uint32_t>(wire::Read14(message.substr(9)))};
}

Upload UploadMessage(const PanelStore& store, Part part) {
    Upload u{part, {}, {}, {}};
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::DisplayLists:
        u.message = BuildDisplayLists(store, *info.subType, u.status);
        u.failureLocation = "Error Sending Panel Display Lists";
        break;
    case PartKind::UserGroups:
        u.message = BuildGroups(store.groups, u.status);
        u.failureLocation = "Error Sending Panel Group Data";
        break;
    case PartKind::Templates:
        u.message = BuildTemplates(store.templates, u.status);
        u.failureLocation = "Error Sending Panel Button Data";
        break;
    case PartKind::Password:
    case PartKind::Alphas:
        break; // not uploaded by Apply
    }
    return u;
}

std::vector<Upload> UploadMessages(const PanelStore& store, PartSet parts) {
    std::vector<Upload> uploads;
    ForEachPart(parts & kUploadParts,
                [&](Part part) { uploads.push_back(UploadMessage(store, part)); });
    return uploads;
}

} // namespace lumeth::codec
