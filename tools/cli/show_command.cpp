#include <cstdio>
#include <iostream>
#include <string>

#include "model/button_catalogue.h"
#include "model/cp1252.h"
#include "model/limits.h"
#include "model/record_names.h"
#include "model/view_keys.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"

namespace lumeth::cli {

namespace {

// Names are stored blank-padded to their field width; the listing shows them
// without the padding, as UTF-8.
std::string Shown(const std::string& name) {
    return cp1252::ToUtf8(TrimTrailingBlanks(name));
}

std::string Quoted(const std::string& name) {
    std::string text(1, '"');
    text.append(Shown(name));
    text.push_back('"');
    return text;
}

// "MIC 1 [0001]" as the window shows a channel; channel n is numbered n+1.
// Without channel names only the number is shown.
std::string ChannelText(const Configuration& doc, SubType s, int16_t channel) {
    if (channel == kNoChannel) {
        return "none";
    }
    char number[16];
    std::snprintf(number, sizeof number, "[%04d]", channel + 1);
    if (!doc.hasAlphas) {
        return number;
    }
    const AlphaTable& table = doc.store.alpha(s);
    if (channel < 0 || static_cast<size_t>(channel) >= table.channelNames.size()) {
        return std::string("*Invalid* ") + number;
    }
    return Shown(table.channelNames[static_cast<size_t>(channel)]) + " " + number;
}

// A count as the listing shows it; a negative one (read from a damaged panel
// data file) is not a number of anything.
std::string CountText(int count) {
    return count < 0 ? "damaged (the file holds the count " + std::to_string(count) + ")"
                     : std::to_string(count);
}

// "(1 channel)", "(3 channels)", or the damage.
std::string Counted(int count, const char* one, const char* many) {
    std::string text(1, '(');
    if (count < 0) {
        text += CountText(count);
    } else {
        text += std::to_string(count);
        text += ' ';
        text += count == 1 ? one : many;
    }
    text += ')';
    return text;
}

template <typename T> const T* Entry(const std::vector<T>& v, int i, int count) {
    if (i < 0 || i >= count || static_cast<size_t>(i) >= v.size()) {
        return nullptr;
    }
    return &v[static_cast<size_t>(i)];
}

void ShowDisplayLists(const Configuration& doc, std::ostream& out) {
    for (SubType s : kAllSubTypes) {
        const int count = doc.store.listCount(s);
        out << SubTypeName(s) << " display lists: " << CountText(count) << "\n";
        for (int i = 0; i < count; ++i) {
            const DisplayList* list = Entry(doc.store.lists(s), i, count);
            if (list == nullptr) {
                break;
            }
            out << "  " << ListKey(i) << " " << Quoted(list->name) << " "
                << Counted(list->channelCount, "channel", "channels") << "\n";
            for (int k = 0; k < list->channelCount; ++k) {
                const int16_t* channel = Entry(list->channels, k, list->channelCount);
                if (channel != nullptr) {
                    out << "        " << ChannelText(doc, s, *channel) << "\n";
                }
            }
        }
    }
}

void ShowUserGroups(const Configuration& doc, std::ostream& out) {
    const PanelStore& store = doc.store;
    out << "User groups: " << CountText(store.groups.userGroupCount) << "\n";
    for (int i = 0; i < store.groups.userGroupCount; ++i) {
        const UserGroup* group = Entry(store.groups.userGroups, i, store.groups.userGroupCount);
        const std::string* name =
            Entry(store.groups.userGroupNames, i, store.groups.userGroupCount);
        if (group == nullptr || name == nullptr) {
            break;
        }
        out << "  " << GroupKey(i) << " " << Quoted(*name) << " "
            << Counted(group->listCount, "list", "lists") << "\n";
        for (int k = 0; k < group->listCount; ++k) {
            const int16_t* type = Entry(group->listTypes, k, group->listCount);
            const int16_t* index = Entry(group->listIndexes, k, group->listCount);
            if (type == nullptr || index == nullptr) {
                break;
            }
            const auto sub = SubTypeFromListCode(*type);
            if (!sub) {
                out << "        list type " << *type << " [" << *index << "] *Invalid*\n";
                continue;
            }
            const DisplayList* list = Entry(store.lists(*sub), *index, store.listCount(*sub));
            out << "        " << SubTypeName(*sub) << " " << ListKey(*index) << " "
                << (list ? Quoted(list->name) : std::string("*Invalid*")) << "\n";
        }
    }
}

void ShowTemplates(const Configuration& doc, std::ostream& out) {
    const PanelStore& store = doc.store;
    out << "Button templates: " << CountText(store.templates.templateCount) << "\n";
    for (int i = 0; i < store.templates.templateCount; ++i) {
        const ButtonTemplate* tmpl =
            Entry(store.templates.buttonTemplates, i, store.templates.templateCount);
        const std::string* name =
            Entry(store.templates.templateNames, i, store.templates.templateCount);
        if (tmpl == nullptr || name == nullptr) {
            break;
        }
        out << "  " << TemplateKey(i) << " " << Quoted(*name) << " Template # " << tmpl->number
            << " " << Counted(tmpl->buttonCount, "button", "buttons") << "\n";
        for (int k = 0; k < tmpl->buttonCount; ++k) {
            const PanelButton* b = Entry(tmpl->buttons, k, tmpl->buttonCount);
            if (b == nullptr) {
                break;
            }
            // A code outside the catalogue is listed by its number.
            const ButtonFunction& row = ButtonFunctionOf(b->type);
            const ButtonFunction* f = row.code == b->type ? &row : nullptr;
            out << "        " << ButtonKey(k) << ": "
                << (f ? std::string(f->longName) : "unknown function " + std::to_string(b->type));
            const auto channel = [&](const std::optional<SubType>& table, int16_t value) {
                if (table) {
                    return ChannelText(doc, *table, value);
                }
                return value == kNoChannel ? std::string("none") : std::to_string(value);
            };
            if (b->channel != kNoChannel || (f && f->channelSubType)) {
                out << ", channel " << channel(f ? f->channelSubType : std::nullopt, b->channel);
            }
            if (b->channel2 != kNoChannel || (f && f->channel2SubType)) {
                out << ", channel 2 "
                    << channel(f ? f->channel2SubType : std::nullopt, b->channel2);
            }
            out << ", label " << Quoted(b->label)
                << ((b->captionOption & 1) != 0 ? " (custom)" : "") << "\n";
        }
    }
}

} // namespace

// show FILE [--json]
int RunShow(const std::vector<std::string>& args) {
    std::string path;
    bool json = false;
    for (const std::string& arg : args) {
        if (arg == "--json") {
            json = true;
        } else if (!arg.empty() && arg[0] == '-') {
            return UsageError("unknown option " + arg);
        } else if (path.empty()) {
            path = arg;
        } else {
            return UsageError("show takes one FILE");
        }
    }
    if (path.empty()) {
        return UsageError("show needs a FILE");
    }

    const Configuration doc = ReadConfiguration(path);
    if (!doc.status) {
        return InputError(path, doc.status);
    }
    if (json) {
        if (const Status encodable = CheckEncodable(doc, ConfigurationForm::Json); !encodable) {
            return InputError(path, encodable);
        }
        EncodeConfiguration(doc, ConfigurationForm::Json, [](std::string_view piece) {
            return static_cast<bool>(std::cout.write(piece.data(), std::streamsize(piece.size())));
        });
        return std::cout.good() ? ToInt(ExitCode::Ok) : ToInt(ExitCode::BadInput);
    }

    if (doc.form == ConfigurationForm::PanelData) {
        std::cout << path << ": panel data file, version " << doc.version << "\n";
    } else {
        std::cout << path << ": JSON document"
                  << (doc.hasAlphas ? ", with channel names" : ", without channel names")
                  << (doc.password ? ", with password" : "") << "\n";
    }
    std::cout << "\n";
    ShowDisplayLists(doc, std::cout);
    std::cout << "\n";
    ShowUserGroups(doc, std::cout);
    std::cout << "\n";
    ShowTemplates(doc, std::cout);
    return std::cout.good() ? ToInt(ExitCode::Ok) : ToInt(ExitCode::BadInput);
}

} // namespace lumeth::cli
