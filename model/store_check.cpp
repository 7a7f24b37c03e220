#include "model/store_check.h"

#include <algorithm>
#include <unordered_map>

#include "model/button_catalogue.h"
#include "model/limits.h"
#include "model/view_keys.h"

namespace lumeth {

namespace {

class Checker {
public:
    Checker(const PanelStore& store, bool hasChannelNames)
        : m_store(store), m_hasChannelNames(hasChannelNames) {}

    std::vector<CheckFinding> Run() {
        for (SubType s : kAllSubTypes)
            DisplayLists(s);
        UserGroups();
        Templates();
        return std::move(m_findings);
    }

private:
    void Warn(const StoreLocation& at, std::string message,
              std::optional<StoreLocation> other = std::nullopt) {
        m_findings.push_back(
            {CheckFinding::Severity::Warning, at, std::move(message), std::move(other)});
    }
    void Fail(const StoreLocation& at, std::string message) {
        m_findings.push_back({CheckFinding::Severity::Error, at, std::move(message), {}});
    }

    // A count the messages cannot carry: the server module would keep fewer
    // entries than the store holds.
    void Count(const StoreLocation& at, int count, int limit, const char* what,
               const char* holder = "a message carries") {
        if (count > limit)
            m_findings.push_back({CheckFinding::Severity::Error,
                                  at,
                                  std::to_string(count) + " " + what + "; " + holder + " at most " +
                                      std::to_string(limit),
                                  {},
                                  true});
    }

    void Name(const StoreLocation& at, const std::string& name, size_t width, const char* what) {
        if (name.size() > width)
            Warn(at, what + std::string(" is ") + std::to_string(name.size()) +
                         " characters long; only the first " + std::to_string(width) + " are kept");
    }

    void Channel(const StoreLocation& at, SubType s, int channel) {
        if (!m_hasChannelNames)
            return;
        const int names = m_store.alpha(s).count;
        if (channel < 0 || channel >= names)
            Fail(at, "channel " + std::to_string(channel) + " is outside the " +
                         std::to_string(names) + " " + SubTypeName(s) + " channel names");
    }

    void DisplayLists(SubType s) {
        const Part part = ListsPart(s);
        Count({part}, m_store.listCount(s), kMax14Bit, "display lists");
        std::unordered_map<std::string, int> firstWithName;
        for (int i = 0; i < ValidCount(m_store.listCount(s)); ++i) {
            const DisplayList& list = RefAt(m_store.lists(s), i);
            const StoreLocation name{part, i, StoreField::Name};
            Name(name, list.name, kNameWidth, "name");
            const std::string sent = AsSent(list.name, kNameWidth);
            const auto [first, inserted] = firstWithName.emplace(sent, i);
            if (!inserted)
                Warn(name, "name \"" + sent + "\" is also the name of ",
                     StoreLocation{part, first->second});
            if (list.channelCount <= 0)
                Warn({part, i}, "display list is empty");
            Count({part, i}, list.channelCount, kMax14Bit, "channels");
            for (int k = 0; k < ValidCount(list.channelCount); ++k)
                Channel({part, i, StoreField::Channel, k}, s, RefAt(list.channels, k));
        }
    }

    void UserGroups() {
        const UserGroupTable& groups = m_store.groups;
        Count({Part::UserGroups}, groups.userGroupCount, kMax14Bit, "user groups");
        for (int i = 0; i < ValidCount(groups.userGroupCount); ++i) {
            const UserGroup& group = RefAt(groups.userGroups, i);
            Name({Part::UserGroups, i, StoreField::Name}, RefAt(groups.userGroupNames, i),
                 kNameWidth, "name");
            if (group.listCount <= 0)
                Warn({Part::UserGroups, i}, "user group is empty");
            Count({Part::UserGroups, i}, group.listCount, kMax14Bit, "entries");
            for (int k = 0; k < ValidCount(group.listCount); ++k) {
                const StoreLocation entry{Part::UserGroups, i, StoreField::GroupEntry, k};
                const int type = RefAt(group.listTypes, k);
                const int index = RefAt(group.listIndexes, k);
                const auto subType = SubTypeFromListCode(type);
                if (!subType) {
                    Fail(entry, "list type " + std::to_string(type) + " is not 11, 21, 31 or 41");
                } else if (index < 0 || index >= m_store.listCount(*subType)) {
                    const std::string lists = SubTypeName(*subType);
                    Fail(entry, "points to " + lists + " " + ListKey(index) + ", past the " +
                                    std::to_string(m_store.listCount(*subType)) + " " + lists +
                                    " lists");
                }
            }
        }
    }

    void Templates() {
        const TemplateTable& templates = m_store.templates;
        Count({Part::Templates}, templates.templateCount, kMax14Bit, "templates");
        for (int i = 0; i < ValidCount(templates.templateCount); ++i) {
            const ButtonTemplate& tmpl = RefAt(templates.buttonTemplates, i);
            Name({Part::Templates, i, StoreField::Name}, RefAt(templates.templateNames, i),
                 kNameWidth, "name");
            Count({Part::Templates, i}, tmpl.buttonCount, kTemplateButtons, "buttons",
                  "a template has");
            for (int k = 0; k < ValidCount(tmpl.buttonCount); ++k) {
                const PanelButton& b = RefAt(tmpl.buttons, k);
                Name({Part::Templates, i, StoreField::Label, k}, b.label, kLabelWidth, "label");
                const ButtonFunction& function = ButtonFunctionOf(b.type);
                ButtonChannel({Part::Templates, i, StoreField::ButtonChannel, k}, function,
                              function.channelSubType, b.channel);
                ButtonChannel({Part::Templates, i, StoreField::ButtonChannel2, k}, function,
                              function.channel2SubType, b.channel2);
            }
        }
    }

    void ButtonChannel(const StoreLocation& at, const ButtonFunction& function,
                       std::optional<SubType> s, int channel) {
        if (!s)
            return;
        if (channel == kNoChannel)
            Warn(at, std::string(function.longName) + " without a channel");
        else
            Channel(at, *s, channel);
    }

    const PanelStore& m_store;
    bool m_hasChannelNames;
    std::vector<CheckFinding> m_findings;
};

} // namespace

std::vector<CheckFinding> CheckStore(const PanelStore& store, bool hasChannelNames) {
    return Checker(store, hasChannelNames).Run();
}

bool HasErrors(const std::vector<CheckFinding>& findings) {
    return std::any_of(findings.begin(), findings.end(), [](const CheckFinding& f) {
        return f.severity == CheckFinding::Severity::Error;
    });
}

bool BlocksSending(const std::vector<CheckFinding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const CheckFinding& f) { return f.blocksSending; });
}

CheckFinding NegativeCountFinding(const StoreLocation& at, const char* count, int value) {
    return {CheckFinding::Severity::Error,
            at,
            std::string(count) + " " + std::to_string(value) + " is negative: the file is damaged",
            {},
            true};
}

CheckFinding TrailingBytesFinding(size_t bytes) {
    return {CheckFinding::Severity::Error,
            StoreLocation{Part::Templates},
            std::to_string(bytes) + (bytes == 1 ? " byte follows" : " bytes follow") +
                " the last template: the file is damaged",
            {},
            true};
}

} // namespace lumeth
