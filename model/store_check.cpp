#include "model/store_check.h"

#include <algorithm>
#include <unordered_map>

#include "model/button_catalogue.h"

namespace lumeth {

namespace {

constexpr const char* kSubTypeKeys[4] = {"input", "output", "opto", "relay"};

std::string Index(const std::string& path, int i) {
    return path + "[" + std::to_string(i) + "]";
}

template <typename T> const T& At(const std::vector<T>& v, int i) {
    static const T kEmpty{};
    return i >= 0 && static_cast<size_t>(i) < v.size() ? v[static_cast<size_t>(i)] : kEmpty;
}

int Valid(int16_t count) {
    return std::max<int>(count, 0);
}

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
    void Warn(std::string path, std::string message) {
        m_findings.push_back(
            {CheckFinding::Severity::Warning, std::move(path), std::move(message)});
    }
    void Fail(std::string path, std::string message) {
        m_findings.push_back({CheckFinding::Severity::Error, std::move(path), std::move(message)});
    }

    void Name(const std::string& path, const std::string& name, size_t width, const char* what) {
        if (name.size() > width)
            Warn(path, what + std::string(" is ") + std::to_string(name.size()) +
                           " characters long; only the first " + std::to_string(width) +
                           " are kept");
    }

    void Channel(const std::string& path, SubType s, int channel) {
        if (!m_hasChannelNames)
            return;
        const int names = m_store.alpha(s).count;
        if (channel < 0 || channel >= names)
            Fail(path, "channel " + std::to_string(channel) + " is outside the " +
                           std::to_string(names) + " " + SubTypeName(s) + " channel names");
    }

    void DisplayLists(SubType s) {
        const std::string base =
            std::string("display_lists.") + kSubTypeKeys[static_cast<size_t>(s)];
        std::unordered_map<std::string, int> firstWithName;
        for (int i = 0; i < Valid(m_store.listCount(s)); ++i) {
            const DisplayList& list = At(m_store.lists(s), i);
            const std::string path = Index(base, i);
            Name(path + ".name", list.name, kNameWidth, "name");
            std::string sent = list.name.substr(0, std::min(kNameWidth, list.name.size()));
            sent.erase(sent.find_last_not_of(' ') + 1);
            const auto [first, inserted] = firstWithName.emplace(sent, i);
            if (!inserted)
                Warn(path + ".name",
                     "name \"" + sent + "\" is also the name of " + Index(base, first->second));
            if (list.channelCount <= 0)
                Warn(path, "display list is empty");
            for (int k = 0; k < Valid(list.channelCount); ++k)
                Channel(Index(path + ".channels", k), s, At(list.channels, k));
        }
    }

    void UserGroups() {
        for (int i = 0; i < Valid(m_store.groups.userGroupCount); ++i) {
            const std::string path = Index("user_groups", i);
            const UserGroup& group = At(m_store.groups.userGroups, i);
            Name(path + ".name", At(m_store.groups.userGroupNames, i), kNameWidth, "name");
            if (group.listCount <= 0)
                Warn(path, "user group is empty");
            for (int k = 0; k < Valid(group.listCount); ++k) {
                const std::string entry = Index(path + ".lists", k);
                const int type = At(group.listTypes, k);
                const int index = At(group.listIndexes, k);
                const auto subType = SubTypeFromListCode(type);
                if (!subType) {
                    Fail(entry, "list type " + std::to_string(type) + " is not 11, 21, 31 or 41");
                } else if (index < 0 || index >= m_store.listCount(*subType)) {
                    Fail(entry, "points to " + std::string(SubTypeName(*subType)) + " list " +
                                    std::to_string(index) + " of " +
                                    std::to_string(m_store.listCount(*subType)));
                }
            }
        }
    }

    void Templates() {
        for (int i = 0; i < Valid(m_store.templates.templateCount); ++i) {
            const std::string path = Index("templates", i);
            const ButtonTemplate& tmpl = At(m_store.templates.buttonTemplates, i);
            Name(path + ".name", At(m_store.templates.templateNames, i), kNameWidth, "name");
            for (int k = 0; k < Valid(tmpl.buttonCount); ++k) {
                const PanelButton& b = At(tmpl.buttons, k);
                const std::string button = Index(path + ".buttons", k);
                Name(button + ".label", b.label, kLabelWidth, "label");
                const ButtonFunction& function = ButtonFunctionOf(b.type);
                ButtonChannel(button + ".channel", function, function.channelSubType, b.channel);
                ButtonChannel(button + ".channel2", function, function.channel2SubType, b.channel2);
            }
        }
    }

    void ButtonChannel(const std::string& path, const ButtonFunction& function,
                       std::optional<SubType> s, int channel) {
        if (!s)
            return;
        if (channel == kNoChannel)
            Warn(path, std::string(function.longName) + " needs a channel and has none");
        else
            Channel(path, *s, channel);
    }

    const PanelStore& m_store;
    bool m_hasChannelNames;
    std::vector<CheckFinding> m_findings;
};

} // namespace

std::string CheckFinding::Line() const {
    return (severity == Severity::Error ? "error: " : "warning: ") + path + ": " + message;
}

std::vector<CheckFinding> CheckStore(const PanelStore& store, bool hasChannelNames) {
    return Checker(store, hasChannelNames).Run();
}

bool HasErrors(const std::vector<CheckFinding>& findings) {
    return std::any_of(findings.begin(), findings.end(), [](const CheckFinding& f) {
        return f.severity == CheckFinding::Severity::Error;
    });
}

} // namespace lumeth
