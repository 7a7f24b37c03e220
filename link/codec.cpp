#include "link/codec.h"

#include <algorithm>

#include "link/wire.h"

namespace lumeth::codec {

namespace {

// One byte field of a message (a width, a length, a code).
void AppendByte(std::string& out, int value) {
    out.push_back(static_cast<char>(value & 0xFF));
}

// How many entries of a parallel set of arrays may be read: the count field,
// but never more than the shortest array holds (a count that ran ahead of its
// arrays must not make a builder read past them).
size_t Usable(int count, size_t arraySize) {
    if (count <= 0) {
        return 0;
    }
    return std::min(static_cast<size_t>(count), arraySize);
}

// A stored 14-bit value: appended masked, and the first one outside 0..16383
// is recorded in `status`. `describe` names the field, built only then.
template <typename Describe>
void AppendValue(std::string& out, int value, Status* status, Describe&& describe) {
    if ((value < 0 || value > 16383) && status != nullptr && status->ok()) {
        *status = Status::Fail(ErrorCode::Overflow,
                               describe() + " " + std::to_string(value) + " does not fit 14 bits");
    }
    wire::Append14(out, value);
}

void ResetStatus(Status* status) {
    if (status != nullptr) {
        *status = Status::Ok();
    }
}

constexpr size_t kListNameWidth = 16;
constexpr size_t kGroupNameWidth = 16;
constexpr size_t kTemplateNameWidth = 16;
// A 14-bit count field cannot say more than this.
constexpr size_t kMax14 = 16383;
// Width bytes are body bytes: the top bit must stay clear.
constexpr size_t kMaxWidth = 127;

} // namespace

std::string IdentityQuery() {
    std::string m;
    m.push_back(static_cast<char>(0x81));
    m.push_back('d');
    wire::Finish(m);
    return m;
}

std::string IdentityAnswer() {
    // 0x11, then (145 - 0x11) / 128 = 1, as the server module expects it.
    std::string m;
    m.push_back(static_cast<char>(0x81));
    m.push_back(static_cast<char>(0x11));
    m.push_back(static_cast<char>((145 - 0x11) / 128));
    wire::Finish(m);
    return m;
}

std::string DataRequest(uint32_t maskA, uint32_t maskB, uint32_t maskC) {
    std::string m;
    m.reserve(17);
    m.push_back(static_cast<char>(0xF2));
    wire::Append28(m, maskA);
    wire::Append28(m, maskB);
    wire::Append14(m, static_cast<int>(maskC & 0x3FFF));
    m.append(4, '\0');
    wire::Finish(m);
    return m;
}

std::string PasswordMessage(std::string_view password) {
    std::string m;
    m.reserve(password.size() + 5);
    m.push_back(static_cast<char>(0x80));
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
    return password.size() <= 127 && std::all_of(password.begin(), password.end(), [](char c) {
               const auto b = static_cast<unsigned char>(c);
               return b != 0 && b < 0x80;
           });
}

std::string AlphaTableMessage(SubType subType, const std::vector<std::string>& channelNames,
                              int width) {
    const size_t n = std::min(channelNames.size(), kMax14);
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
    m.push_back(static_cast<char>(0xFC));
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

std::string DisplayListMessage(const PanelStore& store, SubType subType, Status* status) {
    ResetStatus(status);
    const auto& lists = store.lists(subType);
    const size_t n = std::min(Usable(store.listCount(subType), lists.size()), kMax14);

    std::string m;
    m.push_back(static_cast<char>(0xDF));
    AppendByte(m, ListTypeCode(subType));
    wire::Append14(m, static_cast<int>(n));
    wire::Append14(m, 0);
    AppendByte(m, static_cast<int>(kListNameWidth));
    for (size_t i = 0; i < n; ++i) {
        const DisplayList& list = lists[i];
        const size_t k = std::min(Usable(list.channelCount, list.channels.size()), kMax14);
        wire::Append14(m, static_cast<int>(k));
        for (size_t c = 0; c < k; ++c) {
            AppendValue(m, list.channels[c], status,
                        [&] { return "display list " + std::to_string(i) + " channel"; });
        }
        m += FixedWidth(list.name, kListNameWidth);
    }
    wire::Finish(m);
    return m;
}

std::string GroupMessage(const PanelStore& store, Status* status) {
    ResetStatus(status);
    const size_t g = std::min({Usable(store.groups.userGroupCount, store.groups.userGroupNames.size()),
                               store.groups.userGroups.size(), kMax14});

    std::string m;
    m.push_back(static_cast<char>(0xCC));
    AppendByte(m, 0);
    wire::Append14(m, static_cast<int>(g));
    wire::Append14(m, 0);
    AppendByte(m, static_cast<int>(kGroupNameWidth));
    for (size_t i = 0; i < g; ++i) {
        const UserGroup& group = store.groups.userGroups[i];
        const size_t l = std::min(
            {Usable(group.listCount, group.listIndexes.size()), group.listTypes.size(), kMax14});
        m += FixedWidth(store.groups.userGroupNames[i], kGroupNameWidth);
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

std::string ButtonMessage(const PanelStore& store, Status* status) {
    ResetStatus(status);
    const size_t t = std::min({Usable(store.templates.templateCount, store.templates.templateNames.size()),
                               store.templates.buttonTemplates.size(), kMax14});

    std::string m;
    m.push_back(static_cast<char>(0xFD));
    AppendByte(m, 0x7F);
    AppendByte(m, 0x52);
    wire::Append14(m, static_cast<int>(t)); // X: size of the template table
    wire::Append14(m, static_cast<int>(t)); // M: templates carried
    wire::Append14(m, 0);                   // F: first position carried
    AppendByte(m, static_cast<int>(kLabelWidth));
    AppendByte(m, static_cast<int>(kTemplateNameWidth));
    for (size_t i = 0; i < t; ++i) {
        const ButtonTemplate& tpl = store.templates.buttonTemplates[i];
        const size_t b = std::min(Usable(tpl.buttonCount, tpl.buttons.size()), kMax14);
        m += FixedWidth(store.templates.templateNames[i], kTemplateNameWidth);
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
    wire::Finish(m);
    return m;
}

std::string FixedWidth(std::string_view text, size_t width) {
    std::string out(text.substr(0, std::min(text.size(), width)));
    out.resize(width, ' ');
    return out;
}

size_t FindEndOfMessage(std::string_view buffer) {
    const size_t pos = buffer.find(static_cast<char>(0xFF));
    return pos == std::string_view::npos ? 0 : pos + 1;
}

std::vector<Upload> UploadMessages(const PanelStore& store, PartSet parts) {
    std::vector<Upload> uploads;
    ForEachPart(parts & kUploadParts, [&](Part part) {
        Upload& u = uploads.emplace_back(Upload{part, {}, {}, {}});
        const PartInfo& info = Info(part);
        switch (info.kind) {
        case PartKind::DisplayLists:
            u.message = DisplayListMessage(store, *info.subType, &u.status);
            u.failureLocation = "Error Sending Panel Display Lists";
            break;
        case PartKind::UserGroups:
            u.message = GroupMessage(store, &u.status);
            u.failureLocation = "Error Sending Panel Group Data";
            break;
        case PartKind::Templates:
            u.message = ButtonMessage(store, &u.status);
            u.failureLocation = "Error Sending Panel Button Data";
            break;
        case PartKind::Password:
        case PartKind::Alphas:
            break; // not uploaded by Apply
        }
    });
    return uploads;
}

} // namespace lumeth::codec
