#include "link/decoders.h"

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "link/codec.h"
#include "link/message_reader.h"
#include "link/session.h"
#include "link/wire.h"
#include "model/alpha_sort.h"

namespace lumeth::decode {

namespace {

// Where a handler's unexpected failures are reported.
struct ErrorSite {
    std::string_view location;
    std::string_view category;
};

constexpr ErrorSite kPasswordSite{"Error Receiving Password", "IP Message Error"};
constexpr ErrorSite kAlphaSite{"Error Processing Alpha Table", "IP Error"};
constexpr ErrorSite kListSite{"Error Receiving Display Lists", "48QX Message Error"};
constexpr ErrorSite kGroupSite{"Error Receiving Group Data", "48QX Message Error"};
constexpr ErrorSite kButtonSite{"Error Receiving Button Data", "48QX Message Error"};

// Activity-log location of the download milestones.
constexpr std::string_view kActivityLocation = "Server Module Download";

void Report(SessionObserver& observer, const ErrorSite& site, ErrorCode code, std::string detail) {
    observer.ReportError(site.location, site.category, Failure{code, std::move(detail)});
}

void ReportShortRead(SessionObserver& observer, const ErrorSite& site, const MessageReader& r,
                     std::string_view what) {
    Report(observer, site, ErrorCode::InvalidProcedureCall,
           std::string(what) + " runs past the end of the message (at byte " +
               std::to_string(r.position()) + ")");
}

// Runs a handler body; anything thrown (allocation failure, a broken
// invariant) is reported under the handler's own texts instead of leaving
// the decode step.
template <typename Body>
void Guarded(SessionObserver& observer, const ErrorSite& site, Body&& body) {
    try {
        body();
    } catch (const std::bad_alloc&) {
        Report(observer, site, ErrorCode::OutOfMemory, "allocation failed");
    } catch (const std::exception& e) {
        Report(observer, site, ErrorCode::InvalidProcedureCall, e.what());
    }
}

struct AlphaKind {
    std::string_view text;
    uint32_t pendingBit;
};

AlphaKind AlphaKindOf(SubType s) {
    switch (s) {
    case SubType::Input:
        return {"Input Alphas", request::kInputAlphas};
    case SubType::Output:
        return {"Output Alphas", request::kOutputAlphas};
    case SubType::Opto:
        return {"Opto Alphas", request::kOptoAlphas};
    case SubType::Relay:
        return {"Relay Alphas", request::kRelayAlphas};
    }
    return {"", 0};
}

AlphaKind ListKindOf(SubType s) {
    switch (s) {
    case SubType::Input:
        return {"Source Display Lists", request::kInputLists};
    case SubType::Output:
        return {"Destination Display Lists", request::kOutputLists};
    case SubType::Opto:
        return {"Opto Display Lists", request::kOptoLists};
    case SubType::Relay:
        return {"Relay Display Lists", request::kRelayLists};
    }
    return {"", 0};
}

std::string ChecksumDetail(std::string_view message) {
    const int got =
        message.size() >= 2 ? static_cast<unsigned char>(message[message.size() - 2]) : -1;
    return "checksum byte " + std::to_string(got) + ", body sums to " +
           std::to_string(wire::Checksum(message, 2));
}

void ReadButtonTemplates(LinkSession& session, SessionObserver& observer, std::string_view message);

} // namespace

bool ChecksumMatches(std::string_view message) {
    if (message.size() < 2) {
        return false;
    }
    return wire::Checksum(message, 2) == static_cast<unsigned char>(message[message.size() - 2]);
}

void Password(LinkSession& session, SessionObserver& observer, std::string_view message) {
    Guarded(observer, kPasswordSite, [&] {
        if (message.size() < 3) {
            Report(observer, kPasswordSite, ErrorCode::InvalidProcedureCall,
                   "password answer without a length byte");
            return;
        }
        const size_t length = static_cast<unsigned char>(message[2]);
        if (message.size() != length + 5 || !ChecksumMatches(message)) {
            session.RequestData(request::kPassword, 0, 0);
            return;
        }
        LinkState& state = session.state();
        state.serverPassword = std::string(message.substr(3, length));
        state.passwordReceived = true;
        state.pendingA &= ~request::kPassword;
        observer.PartReceived(Part::Password);
    });
}

void Identity(LinkSession& session, SessionObserver& /*observer*/, std::string_view message) {
    if (message.size() != 4 && message.size() != 5) {
        return;
    }
    if (!ChecksumMatches(message) || message[1] != 'd') {
        return;
    }
    session.Queue(codec::IdentityAnswer());
    session.RequestEverything();
}

void AlphaTable(LinkSession& session, SessionObserver& observer, std::string_view message) {
    Guarded(observer, kAlphaSite, [&] {
        if (!ChecksumMatches(message)) {
            return; // dropped silently; the pending bit stays set
        }
        MessageReader r(message, 1, observer);
        const int code = r.Byte();
        const size_t width = static_cast<size_t>(r.Byte());
        const int count = r.U14();
        const int start = r.U14();
        if (r.failed()) {
            ReportShortRead(observer, kAlphaSite, r, "alpha table header");
            return;
        }
        const size_t n = static_cast<size_t>(count);
        if (message.size() != n * (width + 2) + 9) {
            return; // wrong length: dropped silently
        }
        const auto subType = SubTypeFromAlphaCode(code);
        if (!subType) {
            return; // unknown code: nothing stored, no bit cleared
        }

        std::vector<std::string> channelNames(n);
        std::vector<int16_t> numbers(n, 0);
        for (size_t i = static_cast<size_t>(start); i < n; ++i) {
            MessageReader record(message, 7 + i * (width + 2), observer);
            channelNames[i] = record.Text(width);
            numbers[i] = static_cast<int16_t>(record.U14());
        }

        lumeth::AlphaTable& table = session.store().alpha(*subType);
        table.channelNames = channelNames;

        std::vector<std::string> names = std::move(channelNames);
        ExchangeSortAlphas(names, numbers);
        std::vector<int16_t> positionOf(n, 0);
        for (size_t k = 0; k < n; ++k) {
            const int channel = numbers[k];
            if (channel < 0 || static_cast<size_t>(channel) >= n) {
                Report(observer, kAlphaSite, ErrorCode::SubscriptOutOfRange,
                       "channel number " + std::to_string(channel) + " in a table of " +
                           std::to_string(n));
                return;
            }
            positionOf[static_cast<size_t>(channel)] = static_cast<int16_t>(k);
        }

        table.names = std::move(names);
        table.numbers = std::move(numbers);
        table.positionOf = std::move(positionOf);
        table.count = static_cast<int16_t>(n);
        const AlphaKind kind = AlphaKindOf(*subType);
        session.state().pendingA &= ~kind.pendingBit;
        observer.LogActivity(kind.text, kActivityLocation);
        observer.PartReceived(AlphasPart(*subType));
    });
}

void DisplayLists(LinkSession& session, SessionObserver& observer, std::string_view message) {
    Guarded(observer, kListSite, [&] {
        const auto subType =
            SubTypeFromListCode(message.size() > 1 ? static_cast<unsigned char>(message[1]) : -1);
        if (!subType) {
            Report(observer, kListSite, ErrorCode::SubscriptOutOfRange,
                   "unknown display list sub type code");
            return;
        }
        const AlphaKind kind = ListKindOf(*subType);
        if (!ChecksumMatches(message)) {
            observer.ReportError("48QX Check Sum Error", kind.text,
                                 Failure{ErrorCode::None, ChecksumDetail(message)});
            session.RequestData(0, 0, kind.pendingBit);
            return;
        }

        MessageReader r(message, 2, observer);
        const size_t n = static_cast<size_t>(r.U14());
        r.U14(); // not used
        const size_t width = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(observer, kListSite, r, "display list header");
            return;
        }
        size_t expected = 9 + 2 * n;
        std::vector<DisplayList> lists(ArraySizeFor(static_cast<int>(n)));
        for (size_t i = 0; i < n; ++i) {
            const int k = r.U14();
            if (!r.Need(2 * static_cast<size_t>(k))) {
                ReportShortRead(observer, kListSite, r, "display list " + std::to_string(i));
                return;
            }
            DisplayList& list = lists[i];
            list.channelCount = static_cast<int16_t>(k);
            list.channels.assign(ArraySizeFor(k), 0);
            for (int c = 0; c < k; ++c) {
                list.channels[static_cast<size_t>(c)] = static_cast<int16_t>(r.U14());
            }
            list.name = r.Name(width);
            expected += 2 * static_cast<size_t>(k) + width;
        }
        if (r.failed()) {
            ReportShortRead(observer, kListSite, r, "display list");
            return;
        }
        if (message.size() != expected) {
            observer.WriteErrorLog("Message Length Error", kind.text);
            return;
        }
        observer.LogActivity(kind.text, kActivityLocation);
        session.store().lists(*subType) = std::move(lists);
        session.store().listCount(*subType) = static_cast<int16_t>(n);
        session.state().pendingC &= ~kind.pendingBit;
        observer.PartReceived(ListsPart(*subType));
    });
}

void UserGroups(LinkSession& session, SessionObserver& observer, std::string_view message) {
    Guarded(observer, kGroupSite, [&] {
        if (!ChecksumMatches(message)) {
            observer.ReportError("48QX Check Sum Error", "",
                                 Failure{ErrorCode::None, ChecksumDetail(message)});
            session.RequestData(0, 0, request::kUserGroups);
            return;
        }
        MessageReader r(message, 2, observer);
        const int g = r.U14();
        r.U14(); // not used
        const size_t width = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(observer, kGroupSite, r, "group header");
            return;
        }

        // The store is written as the groups are read: a message that turns
        // out too long or too short leaves the groups read so far in place.
        PanelStore& store = session.store();
        store.groups.userGroupCount = static_cast<int16_t>(g);
        if (g > 0) {
            store.groups.Resize(g);
        }
        size_t expected = 9 + static_cast<size_t>(g) * (width + 2);
        for (int i = 0; i < g; ++i) {
            const auto at = static_cast<size_t>(i);
            store.groups.userGroupNames[at] = r.Name(width);
            store.groups.userGroupIndex[at] = static_cast<int16_t>(i);
            store.groups.userGroupNumber[at] = static_cast<int16_t>(i);
            const int l = r.U14();
            if (r.failed() || !r.Need(4 * static_cast<size_t>(l))) {
                ReportShortRead(observer, kGroupSite, r, "group " + std::to_string(i));
                return;
            }
            UserGroup& group = store.groups.userGroups[at];
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
        }
        if (message.size() != expected) {
            observer.WriteErrorLog("Message Length Error", "");
            return;
        }
        observer.LogActivity("Group Data", kActivityLocation);
        session.state().pendingC &= ~request::kUserGroups;
        observer.PartReceived(Part::UserGroups);
    });
}

void ButtonTemplates(LinkSession& session, SessionObserver& observer, std::string_view message) {
    ReadButtonTemplates(session, observer, message);
    // A message that failed after the names were resized leaves the old
    // records; they follow the names' length so the parallel arrays stay
    // the same size.
    PanelStore& store = session.store();
    if (store.templates.buttonTemplates.size() != store.templates.templateNames.size()) {
        store.templates.buttonTemplates.resize(store.templates.templateNames.size());
    }
}

namespace {

void ReadButtonTemplates(LinkSession& session, SessionObserver& observer,
                         std::string_view message) {
    Guarded(observer, kButtonSite, [&] {
        if (!ChecksumMatches(message)) {
            observer.WriteErrorLog("48QX Check Sum Error", "Button Data");
            return; // deliberately no re-request
        }
        if (message.size() < 3 || message[2] != 0x52) {
            return;
        }
        MessageReader r(message, 3, observer);
        const int x = r.U14();
        const int m = r.U14();
        const int f = r.U14();
        const size_t labelWidth = static_cast<size_t>(r.Byte());
        const size_t nameWidth = static_cast<size_t>(r.Byte());
        if (r.failed()) {
            ReportShortRead(observer, kButtonSite, r, "button data header");
            return;
        }

        PanelStore& store = session.store();
        store.templates.templateCount = static_cast<int16_t>(m);
        std::vector<ButtonTemplate> fresh(ArraySizeFor(x));
        if (x > 0) {
            const auto size = static_cast<size_t>(x);
            store.templates.templateNames.resize(size);
            store.templates.templateIndex.resize(size, 0);
            store.templates.templatePosition.resize(size, 0);
        }
        size_t expected = 13 + static_cast<size_t>(m) * (nameWidth + 4);
        for (int t = f; t < f + m; ++t) {
            std::string name = r.Name(nameWidth);
            if (t >= x) {
                Report(observer, kButtonSite, ErrorCode::SubscriptOutOfRange,
                       "template position " + std::to_string(t) + " in a table of " +
                           std::to_string(x));
                return;
            }
            const auto at = static_cast<size_t>(t);
            store.templates.templateNames[at] = std::move(name);
            store.templates.templateIndex[at] = static_cast<int16_t>(t);
            store.templates.templatePosition[at] = static_cast<int16_t>(t);
            ButtonTemplate& tpl = fresh[at];
            tpl.number = static_cast<int16_t>(r.U14());
            const int b = r.U14();
            // Each button carries at least its four 14-bit fields.
            if (r.failed() || !r.Need(8 * static_cast<size_t>(b))) {
                ReportShortRead(observer, kButtonSite, r, "template " + std::to_string(t));
                return;
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
            if (r.failed()) {
                ReportShortRead(observer, kButtonSite, r, "template " + std::to_string(t));
                return;
            }
            expected += static_cast<size_t>(b) * (8 + labelWidth);
        }
        if (message.size() != expected) {
            observer.WriteErrorLog("48QX Message Length Error", "Button Info");
            return;
        }
        store.templates.buttonTemplates = std::move(fresh);
        session.state().pendingC &= ~request::kTemplates;
        observer.LogActivity("Button Templates", kActivityLocation);
        observer.PartReceived(Part::Templates);
    });
}

} // namespace

} // namespace lumeth::decode
