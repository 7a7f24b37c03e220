#include "model/store_diff.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "model/button_catalogue.h"
#include "model/button_templates.h"
#include "model/limits.h"
#include "model/number_text.h"
#include "model/record_names.h"
#include "model/same_as_sent.h"
#include "model/view_keys.h"

namespace lumeth {

namespace {

// The records of a part an upload sends.
int Sent(const DisplayListTable& t) {
    return static_cast<int>(SentCount(t.displayListCount, t.displayLists));
}
int Sent(const UserGroupTable& t) {
    return static_cast<int>(SentCount(t.userGroupCount, t.userGroupNames, t.userGroups));
}
int Sent(const TemplateTable& t) {
    return static_cast<int>(SentCount(t.templateCount, t.templateNames, t.buttonTemplates));
}

std::vector<int16_t> Members(const std::vector<int16_t>& values, int16_t count) {
    const size_t n = SentCount(count, values);
    return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(n)};
}

class Differ {
public:
    Differ(const PanelStore& before, const PanelStore& after) : m_before(before), m_after(after) {}

    std::vector<std::string> Run() {
        for (SubType s : kAllSubTypes)
            DisplayLists(s);
        UserGroups();
        Templates();
        return std::move(m_lines);
    }

    // The change lines of upload part `p` alone.
    std::vector<std::string> Part(lumeth::Part p) {
        m_lines.clear();
        if (Info(p).kind == PartKind::DisplayLists)
            DisplayLists(*Info(p).subType);
        else if (p == lumeth::Part::UserGroups)
            UserGroups();
        else if (p == lumeth::Part::Templates)
            Templates();
        return std::move(m_lines);
    }

private:
    // Input Ch.0001 "MIC 1", or Input Ch.0001 alone without a name.
    std::string Channel(SubType s, int channel) const {
        return ChannelRecordName(m_after.alpha(s).count > 0 ? m_after : m_before, s, channel);
    }

    static std::string ListName(const PanelStore& store, SubType s, int position) {
        return ListRecordName(store, s, position);
    }

    void DisplayLists(SubType s) {
        const int before = Sent(m_before.listTable(s));
        const int after = Sent(m_after.listTable(s));
        for (int i = 0; i < std::max(before, after); ++i) {
            if (i >= before) {
                const DisplayList& list = RefAt(m_after.lists(s), i);
                Add(ListName(m_after, s, i) + " added (" +
                    Counted(ValidCount(list.channelCount), "channel") + ")");
                continue;
            }
            if (i >= after) {
                Add(ListName(m_before, s, i) + " removed");
                continue;
            }
            const DisplayList& was = m_before.lists(s)[static_cast<size_t>(i)];
            const DisplayList& now = m_after.lists(s)[static_cast<size_t>(i)];
            if (AsSent(was.name, kNameWidth) != AsSent(now.name, kNameWidth))
                Add(ListName(m_before, s, i) + " renamed to " + QuotedName(now.name, kNameWidth));
            Channels(s, ListName(m_after, s, i), Members(was.channels, was.channelCount),
                     Members(now.channels, now.channelCount));
        }
    }

    // Channels added, removed, and moved: of the channels in both, those
    // outside the longest run kept in the same relative order. The n-th time
    // a channel is listed pairs with its n-th time in the other list, so a
    // channel listed twice counts twice.
    void Channels(SubType s, const std::string& list, const std::vector<int16_t>& was,
                  const std::vector<int16_t>& now) {
        if (was == now)
            return;
        const auto occurrences = [](const std::vector<int16_t>& channels) {
            std::unordered_map<int16_t, int64_t> seen;
            std::vector<int64_t> keys;
            keys.reserve(channels.size());
            for (int16_t channel : channels)
                keys.push_back(seen[channel]++ * 65536 + static_cast<uint16_t>(channel));
            return keys;
        };
        const std::vector<int64_t> wasKeys = occurrences(was);
        const std::vector<int64_t> nowKeys = occurrences(now);
        std::unordered_map<int64_t, int> wasAt;
        for (size_t k = 0; k < wasKeys.size(); ++k)
            wasAt.emplace(wasKeys[k], static_cast<int>(k));
        const std::unordered_set<int64_t> nowSet(nowKeys.begin(), nowKeys.end());
        for (size_t k = 0; k < was.size(); ++k) {
            if (!nowSet.contains(wasKeys[k]))
                Add(list + ": removed " + Channel(s, was[k]));
        }
        std::vector<int16_t> common;
        std::vector<int> order;
        for (size_t k = 0; k < now.size(); ++k) {
            const auto found = wasAt.find(nowKeys[k]);
            if (found == wasAt.end()) {
                Add(list + ": added " + Channel(s, now[k]));
            } else {
                common.push_back(now[k]);
                order.push_back(found->second);
            }
        }
        for (size_t k : Unkept(order))
            Add(list + ": moved " + Channel(s, common[k]));
    }

    // Positions of `order` outside one longest increasing subsequence.
    static std::vector<size_t> Unkept(const std::vector<int>& order) {
        std::vector<int> tails;     // smallest tail value of a run of each length
        std::vector<size_t> tailAt; // position of that tail
        std::vector<ptrdiff_t> parent(order.size(), -1);
        for (size_t k = 0; k < order.size(); ++k) {
            const auto it = std::lower_bound(tails.begin(), tails.end(), order[k]);
            const size_t length = static_cast<size_t>(it - tails.begin());
            if (length > 0)
                parent[k] = static_cast<ptrdiff_t>(tailAt[length - 1]);
            if (it == tails.end()) {
                tails.push_back(order[k]);
                tailAt.push_back(k);
            } else {
                *it = order[k];
                tailAt[length] = k;
            }
        }
        std::vector<bool> kept(order.size(), false);
        for (ptrdiff_t k = tailAt.empty() ? -1 : static_cast<ptrdiff_t>(tailAt.back()); k >= 0;
             k = parent[static_cast<size_t>(k)])
            kept[static_cast<size_t>(k)] = true;
        std::vector<size_t> unkept;
        for (size_t k = 0; k < order.size(); ++k) {
            if (!kept[k])
                unkept.push_back(k);
        }
        return unkept;
    }

    static std::string GroupName(const PanelStore& store, int i) {
        return GroupRecordName(store, i);
    }

    static std::vector<std::pair<int16_t, int16_t>> Entries(const UserGroup& group) {
        const auto types = Members(group.listTypes, group.listCount);
        const auto indexes = Members(group.listIndexes, group.listCount);
        std::vector<std::pair<int16_t, int16_t>> entries;
        for (size_t k = 0; k < std::min(types.size(), indexes.size()); ++k)
            entries.emplace_back(types[k], indexes[k]);
        return entries;
    }

    // A group entry (list type, position), and the same with the number of
    // times it was named before in its group.
    using Entry = std::pair<int16_t, int16_t>;
    using NumberedEntry = std::pair<Entry, int>;
    static std::vector<NumberedEntry> Numbered(const std::vector<Entry>& entries) {
        std::map<Entry, int> seen;
        std::vector<NumberedEntry> numbered;
        for (const Entry& entry : entries)
            numbered.emplace_back(entry, seen[entry]++);
        return numbered;
    }

    static std::string EntryName(const PanelStore& store, std::pair<int16_t, int16_t> entry) {
        const auto subType = SubTypeFromListCode(entry.first);
        if (!subType)
            return "list type " + std::to_string(entry.first) + " position " +
                   std::to_string(entry.second);
        return ListName(store, *subType, entry.second);
    }

    void UserGroups() {
        const int before = Sent(m_before.groups);
        const int after = Sent(m_after.groups);
        for (int i = 0; i < std::max(before, after); ++i) {
            if (i >= before) {
                Add(GroupName(m_after, i) + " added (" +
                    Counted(static_cast<int>(Entries(RefAt(m_after.groups.userGroups, i)).size()),
                            "list") +
                    ")");
                continue;
            }
            if (i >= after) {
                Add(GroupName(m_before, i) + " removed");
                continue;
            }
            if (AsSent(RefAt(m_before.groups.userGroupNames, i), kNameWidth) !=
                AsSent(RefAt(m_after.groups.userGroupNames, i), kNameWidth))
                Add(GroupName(m_before, i) + " renamed to " +
                    QuotedName(RefAt(m_after.groups.userGroupNames, i), kNameWidth));
            // Entries pair as channels do: a list named twice counts twice, and
            // the panel shows a group's lists in its entry order.
            const auto was = Numbered(Entries(RefAt(m_before.groups.userGroups, i)));
            const auto now = Numbered(Entries(RefAt(m_after.groups.userGroups, i)));
            std::map<NumberedEntry, int> wasAt;
            for (size_t k = 0; k < was.size(); ++k)
                wasAt.emplace(was[k], static_cast<int>(k));
            const std::set<NumberedEntry> nowSet(now.begin(), now.end());
            for (const NumberedEntry& entry : was) {
                if (!nowSet.contains(entry))
                    Add(GroupName(m_after, i) + ": removed " + EntryName(m_before, entry.first));
            }
            std::vector<Entry> common;
            std::vector<int> order;
            for (const NumberedEntry& entry : now) {
                const auto found = wasAt.find(entry);
                if (found == wasAt.end()) {
                    Add(GroupName(m_after, i) + ": added " + EntryName(m_after, entry.first));
                } else {
                    common.push_back(entry.first);
                    order.push_back(found->second);
                }
            }
            for (size_t k : Unkept(order))
                Add(GroupName(m_after, i) + ": moved " + EntryName(m_after, common[k]));
        }
    }

    static std::string TemplateName(const PanelStore& store, int i) {
        return TemplateRecordName(store, i);
    }

    std::string ButtonChannel(std::optional<SubType> s, int channel) const {
        if (channel == kNoChannel)
            return "no channel";
        if (!s)
            return "channel " + std::to_string(channel);
        return Channel(*s, channel);
    }

    // Listen, "MIC 1", label "MIC1"
    std::string Button(const PanelButton& b) const {
        const ButtonFunction& function = ButtonFunctionOf(b.type);
        std::string text(function.longName);
        text += ", " + ButtonChannel(function.channelSubType, b.channel);
        if (function.channel2SubType)
            text += ", " + ButtonChannel(function.channel2SubType, b.channel2);
        text += ", label " + QuotedName(b.label, kLabelWidth);
        if (b.usesCustomLabel())
            text += " shown";
        return text;
    }

    void Templates() {
        const int before = Sent(m_before.templates);
        const int after = Sent(m_after.templates);
        for (int i = 0; i < std::max(before, after); ++i) {
            if (i >= before) {
                Add(TemplateName(m_after, i) + " added");
                continue;
            }
            if (i >= after) {
                Add(TemplateName(m_before, i) + " removed");
                continue;
            }
            if (AsSent(RefAt(m_before.templates.templateNames, i), kNameWidth) !=
                AsSent(RefAt(m_after.templates.templateNames, i), kNameWidth))
                Add(TemplateName(m_before, i) + " renamed to " +
                    QuotedName(RefAt(m_after.templates.templateNames, i), kNameWidth));
            const ButtonTemplate& was = RefAt(m_before.templates.buttonTemplates, i);
            const ButtonTemplate& now = RefAt(m_after.templates.buttonTemplates, i);
            const std::string name = TemplateName(m_after, i);
            if (was.number != now.number)
                Add(name + ": number " + std::to_string(was.number) + " changed to " +
                    std::to_string(now.number));
            Buttons(name, was, now);
        }
    }

    // The growth to 32 buttons, said once: template 01 "Host": grown from 1
    // to 32 buttons. Its buttons are then listed only where they differ from
    // what the growth adds (or from a cleared one, as a button a template does
    // not hold reads).
    void Buttons(const std::string& name, const ButtonTemplate& was, const ButtonTemplate& now) {
        const int held = static_cast<int>(SentCount(was.buttonCount, was.buttons));
        const int holds = static_cast<int>(SentCount(now.buttonCount, now.buttons));
        if (holds != held)
            Add(name + (holds > held ? ": grown from " : ": cut from ") + std::to_string(held) +
                " to " + Counted(holds, "button"));
        for (int k = 0; k < std::max(held, holds); ++k) {
            const PanelButton b = k < holds ? RefAt(now.buttons, k) : PanelButton::Cleared();
            if (k < held) {
                const PanelButton& a = RefAt(was.buttons, k);
                if (!SameAsSent(a, b))
                    Add(ButtonLine(name, k, a, b));
            } else if (!SameAsSent(PanelButton::Cleared(), b) && !SameAsSent(GrownButton(k), b)) {
                Add(ButtonLine(name, k, GrownButton(k), b));
            }
        }
    }

    std::string ButtonLine(const std::string& name, int k, const PanelButton& a,
                           const PanelButton& b) const {
        return name + " " + ButtonKey(k) + ": " + Button(a) + " changed to " + Button(b);
    }

    void Add(std::string line) { m_lines.push_back(std::move(line)); }

    const PanelStore& m_before;
    const PanelStore& m_after;
    std::vector<std::string> m_lines;
};

} // namespace

std::vector<std::string> DiffStores(const PanelStore& before, const PanelStore& after) {
    return Differ(before, after).Run();
}

std::vector<std::string> DiffPart(const PanelStore& before, const PanelStore& after, Part part) {
    return Differ(before, after).Part(part);
}

PartSet DifferingParts(const PanelStore& before, const PanelStore& after) {
    return DifferAsSent(before, after);
}

} // namespace lumeth
