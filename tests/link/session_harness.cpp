#include "tests/link/session_harness.h"

namespace lumeth::testing {

std::string Dump(const PanelStore& s) {
    std::string out;
    auto num = [&](long v) { out += std::to_string(v) + ","; };
    auto text = [&](const std::string& t) { out += "'" + t + "',"; };
    for (SubType st : kAllSubTypes) {
        const AlphaTable& a = s.alpha(st);
        out += "\nalpha ";
        num(a.count);
        for (const auto& n : a.names)
            text(n);
        out += " ch ";
        for (const auto& n : a.channelNames)
            text(n);
        out += " nums ";
        for (auto n : a.numbers)
            num(n);
        out += " pos ";
        for (auto n : a.positionOf)
            num(n);
        out += "\nlists ";
        num(s.listCount(st));
        for (const auto& l : s.lists(st)) {
            text(l.name);
            num(l.channelCount);
            for (auto c : l.channels)
                num(c);
            out += ";";
        }
    }
    out += "\ngroups ";
    num(s.groups.userGroupCount);
    for (size_t g = 0; g < s.groups.userGroups.size(); ++g) {
        text(s.groups.userGroupNames[g]);
        num(s.groups.userGroupIndex[g]);
        num(s.groups.userGroupNumber[g]);
        num(s.groups.userGroups[g].listCount);
        for (auto v : s.groups.userGroups[g].listIndexes)
            num(v);
        for (auto v : s.groups.userGroups[g].listTypes)
            num(v);
        out += ";";
    }
    out += "\ntemplates ";
    num(s.templates.templateCount);
    for (size_t t = 0; t < s.templates.buttonTemplates.size(); ++t) {
        text(t < s.templates.templateNames.size() ? s.templates.templateNames[t] : "?");
        num(t < s.templates.templateIndex.size() ? s.templates.templateIndex[t] : -1);
        num(t < s.templates.templatePosition.size() ? s.templates.templatePosition[t] : -1);
        const ButtonTemplate& bt = s.templates.buttonTemplates[t];
        num(bt.number);
        num(bt.buttonCount);
        for (const auto& b : bt.buttons) {
            num(b.type);
            num(b.captionOption);
            num(b.channel);
            num(b.channel2);
            text(b.label);
        }
        out += ";";
    }
    return out;
}

} // namespace lumeth::testing
