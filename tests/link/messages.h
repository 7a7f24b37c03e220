#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/link/layout.h"

// Server-side download messages written from their layouts, for feeding a
// session in the tests.
namespace lumeth::testing {

inline Layout AlphaBody(int code, int width, const std::vector<std::string>& names,
                        const std::vector<int>& numbers, int start = 0) {
    Layout l(0xFC);
    l.Bytes({code, width}).U14(static_cast<int>(names.size())).U14(start);
    for (size_t i = 0; i < names.size(); ++i) {
        l.Padded(names[i], static_cast<size_t>(width)).U14(numbers[i]);
    }
    return l;
}

struct ListSpec {
    std::string name;
    std::vector<int> channels;
};

inline Layout ListBody(int code, int width, const std::vector<ListSpec>& lists) {
    Layout l(0xDF);
    l.Byte(code).U14(static_cast<int>(lists.size())).U14(0).Byte(width);
    for (const auto& list : lists) {
        l.U14(static_cast<int>(list.channels.size()));
        for (int c : list.channels) {
            l.U14(c);
        }
        l.Padded(list.name, static_cast<size_t>(width));
    }
    return l;
}

struct GroupSpec {
    std::string name;
    std::vector<std::pair<int, int>> entries; // position, list type code
};

inline Layout GroupBody(int width, const std::vector<GroupSpec>& groups) {
    Layout l(0xCC);
    l.Byte(0).U14(static_cast<int>(groups.size())).U14(0).Byte(width);
    for (const auto& g : groups) {
        l.Padded(g.name, static_cast<size_t>(width)).U14(static_cast<int>(g.entries.size()));
        for (auto [position, type] : g.entries) {
            l.U14(position).U14(type);
        }
    }
    return l;
}

struct ButtonSpec {
    int type, caption, channel, channel2;
    std::string label;
};
struct TemplateSpec {
    std::string name;
    int number;
    std::vector<ButtonSpec> buttons;
};

inline Layout ButtonBody(int x, int first, int labelWidth, int nameWidth,
                         const std::vector<TemplateSpec>& templates) {
    Layout l(0xFD);
    l.Bytes({0x7F, 0x52})
        .U14(x)
        .U14(static_cast<int>(templates.size()))
        .U14(first)
        .Bytes({labelWidth, nameWidth});
    for (const auto& t : templates) {
        l.Padded(t.name, static_cast<size_t>(nameWidth))
            .U14(t.number)
            .U14(static_cast<int>(t.buttons.size()));
        for (const auto& b : t.buttons) {
            l.U14(b.type).U14(b.caption).U14(b.channel).U14(b.channel2);
            l.Padded(b.label, static_cast<size_t>(labelWidth));
        }
    }
    return l;
}

inline std::string PasswordAnswer(const std::string& pw, int checksumDelta = 0) {
    return Layout(0x80).Byte(0x05).Byte(static_cast<int>(pw.size())).Text(pw).Finish(checksumDelta);
}

// The request the tool sends for the given masks, from the layout.
inline std::string Request(uint32_t a, uint32_t b, uint32_t c) {
    return Layout(0xF2)
        .U28(a)
        .U28(b)
        .U14(static_cast<int>(c & 0x3FFF))
        .Bytes({0, 0, 0, 0})
        .Finish();
}

} // namespace lumeth::testing
