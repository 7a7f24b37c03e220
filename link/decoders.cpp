#include "link/decoders.h"

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "link/message_reader.h"
#include "link/protocol.h"
#include "link/wire.h"
#include "model/alpha_sort.h"
#include "model/limits.h"

namespace lumeth::decode {

namespace {

// Where a decoder's unexpected failures are reported.
struct ErrorSite {
    std::string_view location;
    std::string_view category;
};

constexpr ErrorSite kPasswordSite{"Error Receiving Password", "IP Message Error"};
constexpr ErrorSite kAlphaSite{"Error Processing Alpha Table", "IP Error"};
constexpr ErrorSite kListSite{"Error Receiving Display Lists", "48QX Message Error"};
constexpr ErrorSite kGroupSite{"Error Receiving Group Data", "48QX Message Error"};
constexpr ErrorSite kButtonSite{"Error Receiving Button Data", "48QX Message Error"};

void Report(Decoded& d, const ErrorSite& site, ErrorCode code, std::string detail) {
    d.problems.push_back(ErrorReport{std::string(site.location), std::string(site.category),
                                     Failure{code, std::move(detail)}});
}

void ReportShortRead(Decoded& d, const ErrorSite& site, const MessageReader& r,
                     std::string_view what) {
    Report(d, site, ErrorCode::InvalidProcedureCall,
           std::string(what) + " runs past the end of the message (at byte " +
               std::to_string(r.position()) + ")");
}

void Log(Decoded& d, std::string_view message, std::string_view location) {
    d.problems.push_back(LogLine{std::string(message), std::string(location)});
}

// Runs a decoder body; anything thrown (allocation failure, a broken
// invariant) is reported under the decoder's own texts.
template <typename Body> Decoded Guarded(const ErrorSite& site, Body&& body) {
    Decoded d;
    try {
        body(d);
    } catch (const std::bad_alloc&) {
        Report(d, site, ErrorCode::OutOfMemory, "allocation failed");
    } catch (const std::exception& e) {
        Report(d, site, ErrorCode::InvalidProcedureCall, e.what());
    }
    return d;
}

std::string ChecksumDetail(std::string_view message) {
    const int got =
        message.size() >= 2 ? static_cast<unsigned char>(message[message.size() - 2]) : -1;
    return "checksum byte " + std::to_string(got) + ", body sums to " +
           std::to_string(wire::Checksum(message, 2));
}

// A checksum failure that asks for the part again.
void ChecksumFailed(Decoded& d, Part part, std::string_view category, std::string_view message) {
    d.problems.push_back(ErrorReport{"48QX Check Sum Error", std::string(category),
                                     Failure{ErrorCode::None, ChecksumDetail(message)}});
    d.again = part;
}

// Sorts the names of a freshly read table and indexes them by channel. A
// channel number outside the table leaves `table` unsorted and fails.
bool SortAndIndex(lumeth::AlphaTable& table, Decoded& d) {
    const size_t n = table.channelNames.size();
    table.names = table.channelNames;
    ExchangeSortAlphas(table.names, table.numbers);
    table.positionOf.assign(n, 0);
    for (size_t k = 0; k < n; ++k) {
        const int channel = table.numbers[k];
        if (channel < 0 || static_cast<size_t>(channel) >= n) {
            Report(d, kAlphaSite, ErrorCode::SubscriptOutOfRange,
                   "channel number " + std::to_string(channel) + " in a table of " +
                       std::to_string(n));
            return false;
        }
        table.positionOf[static_cast<size_t>(channel)] = static_cast<int16_t>(k);
    }
    table.count = static_cast<int16_t>(n);
    return true;
}

// The records of one group, after its name; false on a short read.
bool ReadGroupLists(MessageReader& r, UserGroup& group, size_t& expected) {
    const int l = r.U14();
    if (r.failed() || !r.Need(4 * static_cast<size_t>(l))) {
        return false;
    }
    group.listCount = static_cast<int16_t>(l);
    if (l > 0) {
        group.listIndexes.assign(static_cast<size_t>(l), 0);
        group.listTypes.assign(static_cast<size_t>(l), 0);
        for (size_t e = 0; e < static_cast<size_t>(l); ++e) {
            group.listIndexes[e] = static_cast<int16_t>(r.U14());
            group.listTypes[e] = static_cast<int16_t>(r.U14());
        }
    }
    expected += 4 * static_cast<size_t>(l);
    return true;
}

// Number, button count and buttons of one template, after its name; false on
// a short read.
bool ReadTemplate(MessageReader& r, ButtonTemplate& tpl, size_t labelWidth, size_t& expected) {
    tpl.number = static_cast<int16_t>(r.U14());
    const int b = r.U14();
    // Each button carries at least its four 14-bit fields.
    if (r.failed() || !r.Need(8 * static_cast<size_t>(b))) {
        return false;
    }
    tpl.buttonCount = static_cast<int16_t>(b);
    tpl.buttons.assign(ArraySizeFor(b), PanelButton{});
    for (size_t k = 0; k < static_cast<size_t>(b); ++k) {
        PanelButton& button = tpl.buttons[k];
        button.type = static_cast<int16_t>(r.U14());
        button.captionOption = static_cast<int16_t>(r.U14());
        button.channel = static_cast<int16_t>(r.U14());
        button.channel2 = static_cast<int16_t>(r.U14());
        button.label = r.Name(labelWidth);
    }
    expected += static_cast<size_t>(b) * (8 + labelWidth);
    return !r.failed();
}

struct TemplateHeader {
    int size;  // X: the size of the template table
    int count; // M: templates carried
    int first; // F: position of the first one
    size_t labelWidth;
    size_t nameWidth;
};

// The templates of a message whose header was read, written into `table` as
// they are read (the records into `records`), adding their lengths to
// `expected`; false on a failure, reported.
bool ReadTemplates(MessageReader& r, const TemplateHeader& h, TemplateTable& table,
                   std::vector<ButtonTemplate>& records, size_t& expected, Decoded& d) {
    for (int t = h.first; t < h.first + h.count; ++t) {
        std::string name = r.Name(h.nameWidth);
        if (t >= h.size) {
            Report(d, kButtonSite, ErrorCode::SubscriptOutOfRange,
                   "template position " + std::to_string(t) + " in a table of " +
                       std::to_string(h.size));
            return false;
        }
        const auto at = static_cast<size_t>(t);
        table.templateNames[at] = std::move(name);
        table.templateIndex[at] = static_cast<int16_t>(t);
        table.templatePosition[at] = static_cast<int16_t>(t);
        if (!ReadTemplate(r, records[at], h.labelWidth, expected)) {
            ReportShortRead(d, kButtonSite, r, "template " + std::to_string(t));
            return false;
        }
    }
    return true;
}

} // namespace

bool ChecksumMatches(std::string_view message) {
    if (message.size() < 2) {
        return false;
    }
    return wire::Checksum(message, 2) == static_cast<unsigned char>(message[message.size() - 2]);
}

Decoded Frame(std::string_view frame, const PanelStore& current) {
    if (frame.empty()) {
        return {};
    }
    switch (static_cast<Command>(static_cast<uint8_t>(frame[0]))) {
    case Command::Password:
        return Password(frame);
    case Command::Identity:
        return Identity(frame);
    case Command::UserGroups:
        return UserGroups(frame, current.groups);
    case Command::DisplayLists:
        return DisplayLists(frame);
    case Command::AlphaTable:
        return AlphaTable(frame, current);
    case Command::ButtonData:
        return ButtonTemplates(frame, current.templates);
    default:
        return {}; // a server's data request (any length) or an unknown command
    }
}

Decoded Password(std::string_view message) {
    return Guarded(kPasswordSite, [&](Decoded& d) {
        d.part = Part::Password;
        if (message.size() < 3) {
            Report(d, kPasswordSite, ErrorCode::InvalidProcedureCall,
                   "password answer without a length byte");
            return;
        }
        const size_t length = static_cast<unsigned char>(message[2]);
        if (message.size() != length + 5 || !ChecksumMatches(message)) {
            d.again = Part::Password;
            return;
        }
        d.value = std::string(message.substr(3, length));
        d.complete = true;
    });
}

Decoded Identity(std::string_view message) {
    Decoded d;
    d.identityQuery = (message.size() == 4 || message.size() == 5) && ChecksumMatches(message) &&
                      message[1] == 'd';
    return d;
}

Decoded AlphaTable(std::string_view message, const PanelStore& current) {
    return Guarded(kAlphaSite, [&](Decoded& d) {
        if (!ChecksumMatches(message)) {
            return; // dropped silently; the pending bit stays set
        }
        MessageReader r(message, 1, d.problems);
        const int code = r.Byte();
        const size_t width = static_cast<size_t>(r.Byte());
        const int count = r.U14();
        const int start = r.U14();
        if (r.failed()) {
            ReportShortRead(d, kAlphaSite, r, "alpha table header");
            return;
        }
        const size_t n = static_cast<size_t>(count);
        const auto subType = SubTypeFromAlphaCode(code);
        if (message.size() != n * (width + 2) + 9 || !subType) {
            return; // wrong length or unknown code: dropped silently
        }
        d.part = AlphasPart(*subType);
        lumeth::AlphaTable table;
        table.channelNames.resize(n);
        table.numbers.assign(n, 0);
        for (size_t i = static_cast<size_t>(start); i < n; ++i) {
            MessageReader record(message, 7 + i * (width + 2), d.problems);
            table.channelNames[i] = record.Text(width);
            table.numbers[i] = static_cast<int16_t>(record.U14());
        }
        if (!SortAndIndex(table, d)) {
            // Only the names in channel order were taken.
            lumeth::AlphaTable partial = current.alpha(*subType);
            partial.channelNames = std::move(table.channelNames);
            d.value = std::move(partial);
            return;
        }
        d.value = std::move(table);
        d.complete = true;
    });
}

Decoded DisplayLists(std::string_view message) {
    return Guarded(kListSite, [&](Decoded& d) {
        const auto subType =
            SubTypeFromListCode(message.size() > 1 ? static_cast<unsigned char>(message[1]) : -1);
        if (!subType) {
            Report(d, kListSite, ErrorCode::SubscriptOutOfRange,
                   "unknown display list sub type code");
            return;
        }
        d.part = ListsPart(*subType);
        const std::string_view text = Info(d.part).logText;
        if (!ChecksumMatches(message)) {
            ChecksumFailed(d, d.part, text, message);
            return;
        }

        MessageReader r(message, 2, d.problems);
        const int n = r.U14();
        r.U14(); // not used
        const size_t width = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(d, kListSite, r, "display list header");
            return;
        }
        DisplayListTable table;
        table.displayListCount = static_cast<int16_t>(n);
        table.Resize(n);
        size_t expected = 9 + 2 * static_cast<size_t>(n);
        for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
            const int k = r.U14();
            if (!r.Need(2 * static_cast<size_t>(k))) {
                ReportShortRead(d, kListSite, r, "display list " + std::to_string(i));
                return;
            }
            DisplayList& list = table.displayLists[i];
            list.channelCount = static_cast<int16_t>(k);
            list.channels.assign(ArraySizeFor(k), 0);
            for (int c = 0; c < k; ++c) {
                list.channels[static_cast<size_t>(c)] = static_cast<int16_t>(r.U14());
            }
            list.name = r.Name(width);
            expected += 2 * static_cast<size_t>(k) + width;
        }
        if (r.failed()) {
            ReportShortRead(d, kListSite, r, "display list");
            return;
        }
        if (message.size() != expected) {
            Log(d, "Message Length Error", text);
            return;
        }
        d.value = std::move(table);
        d.complete = true;
    });
}

Decoded UserGroups(std::string_view message, const UserGroupTable& current) {
    return Guarded(kGroupSite, [&](Decoded& d) {
        d.part = Part::UserGroups;
        if (!ChecksumMatches(message)) {
            // The title is only filled in on success, so it is blank here.
            ChecksumFailed(d, d.part, "", message);
            return;
        }
        MessageReader r(message, 2, d.problems);
        const int g = r.U14();
        r.U14(); // not used
        const size_t width = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(d, kGroupSite, r, "group header");
            return;
        }

        // The groups are taken as they are read: a message that turns out
        // too long or too short leaves the groups read so far in place.
        UserGroupTable table = current;
        table.userGroupCount = static_cast<int16_t>(g);
        if (g > 0) {
            table.Resize(g);
        }
        size_t expected = 9 + static_cast<size_t>(g) * (width + 2);
        for (int i = 0; i < g; ++i) {
            const auto at = static_cast<size_t>(i);
            table.userGroupNames[at] = r.Name(width);
            table.userGroupIndex[at] = static_cast<int16_t>(i);
            table.userGroupNumber[at] = static_cast<int16_t>(i);
            if (!ReadGroupLists(r, table.userGroups[at], expected)) {
                ReportShortRead(d, kGroupSite, r, "group " + std::to_string(i));
                d.value = std::move(table);
                return;
            }
        }
        if (message.size() != expected) {
            Log(d, "Message Length Error", "");
        } else {
            d.complete = true;
        }
        d.value = std::move(table);
    });
}

Decoded ButtonTemplates(std::string_view message, const TemplateTable& current) {
    return Guarded(kButtonSite, [&](Decoded& d) {
        d.part = Part::Templates;
        if (!ChecksumMatches(message)) {
            Log(d, "48QX Check Sum Error", "Button Data");
            return; // deliberately no re-request
        }
        if (message.size() < 3 || message[2] != kButtonDataMarker) {
            return;
        }
        MessageReader r(message, 3, d.problems);
        TemplateHeader h;
        h.size = r.U14();
        h.count = r.U14();
        h.first = r.U14();
        h.labelWidth = static_cast<size_t>(r.Byte());
        h.nameWidth = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(d, kButtonSite, r, "button data header");
            return;
        }

        // Count and names are taken as they are read; the records replace
        // the old ones only when the whole message is right.
        TemplateTable table = current;
        table.templateCount = static_cast<int16_t>(h.count);
        if (h.size > 0) {
            table.Resize(h.size);
        }
        std::vector<ButtonTemplate> records(ArraySizeFor(h.size));
        size_t expected = 13 + static_cast<size_t>(h.count) * (h.nameWidth + 4);
        if (ReadTemplates(r, h, table, records, expected, d)) {
            if (message.size() != expected) {
                Log(d, "48QX Message Length Error", "Button Info");
            } else {
                records.resize(table.templateNames.size());
                table.buttonTemplates = std::move(records);
                d.complete = true;
            }
        }
        d.value = std::move(table);
    });
}

} // namespace lumeth::decode
