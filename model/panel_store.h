#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/limits.h"
#include "model/sub_type.h"

namespace lumeth {

// 16383 in a button channel field means "no channel"; it is also the code of
// the "Inactive" button function.
inline constexpr int16_t kNoChannel = 16383;
// EditorListType value meaning "the editor opens on user groups".
inline constexpr int16_t kUserGroupListType = 83;

// Channel names of one sub type as downloaded from the server module.
struct AlphaTable {
    int16_t count = 0;
    std::vector<std::string> names;        // sorted by upper-cased text
    std::vector<std::string> channelNames; // channel order, as received
    std::vector<int16_t> numbers;          // numbers[i] = channel of names[i]
    std::vector<int16_t> positionOf;       // positionOf[channel] = index into names

    bool operator==(const AlphaTable&) const = default;
};

struct DisplayList {
    int16_t channelCount = 0;
    std::string name;                 // at most kNameWidth characters when saved or sent
    std::vector<int16_t> channels{0}; // at least one element; channelCount are valid

    bool operator==(const DisplayList&) const = default;
};

struct UserGroup {
    int16_t listCount = 0;
    std::vector<int16_t> listIndexes{0}; // display list positions
    std::vector<int16_t> listTypes{0};   // ListTypeCode of each entry

    bool operator==(const UserGroup&) const = default;
};

struct PanelButton {
    int16_t type = 0;          // ButtonType code
    int16_t captionOption = 0; // bit 0: use the custom label
    std::string label;         // at most kLabelWidth characters when saved or sent
    int16_t channel = 0;
    int16_t channel2 = 0;

    // The panel shows `label` on this button rather than its channel's name.
    bool usesCustomLabel() const { return (captionOption & 1) != 0; }

    // A cleared or newly added button: no channels, caption option 0.
    static PanelButton Cleared() {
        PanelButton b;
        b.channel = kNoChannel;
        b.channel2 = kNoChannel;
        return b;
    }

    bool operator==(const PanelButton&) const = default;
};

struct ButtonTemplate {
    int16_t number = 0;
    int16_t buttonCount = 0;
    std::vector<PanelButton> buttons{PanelButton{}}; // at least one element

    bool operator==(const ButtonTemplate&) const = default;
};

// The parts of the store. Each is one value that downloads, loads, snapshots
// and uploads take or replace whole. Arrays always hold at least one element;
// the count fields say how many entries are valid.

// The display lists of one sub type.
struct DisplayListTable {
    int16_t displayListCount = 0;
    std::vector<DisplayList> displayLists{DisplayList{}};

    // max(count, 1) records; new ones are empty.
    void Resize(int count) { displayLists.resize(ArraySizeFor(count)); }
    bool operator==(const DisplayListTable&) const = default;
};

// The user groups: names, records and the two index values, one entry each.
struct UserGroupTable {
    int16_t userGroupCount = 0;
    std::vector<std::string> userGroupNames{std::string()};
    std::vector<UserGroup> userGroups{UserGroup{}};
    std::vector<int16_t> userGroupIndex{0};
    std::vector<int16_t> userGroupNumber{0};

    // max(count, 1) entries in every array; new ones are empty.
    void Resize(int count);
    bool operator==(const UserGroupTable&) const = default;
};

// The button templates: names, records and the two index values.
struct TemplateTable {
    int16_t templateCount = 0;
    std::vector<std::string> templateNames{std::string()};
    std::vector<ButtonTemplate> buttonTemplates{ButtonTemplate{}};
    std::vector<int16_t> templateIndex{0};
    std::vector<int16_t> templatePosition{0};

    // max(count, 1) entries in every array; new ones are empty.
    void Resize(int count);
    bool operator==(const TemplateTable&) const = default;
};

// The one store of the panel configuration.
struct PanelStore {
    std::array<AlphaTable, kSubTypeCount> alphas;
    std::array<DisplayListTable, kSubTypeCount> displayLists;
    UserGroupTable groups;
    TemplateTable templates;

    // Main-window selection state.
    int16_t currentUserGroup = 0;
    int16_t currentListType = ListTypeCode(SubType::Input);
    int16_t currentList = 0;
    int16_t editorListType = kUserGroupListType;

    AlphaTable& alpha(SubType s) { return alphas[Index(s)]; }
    const AlphaTable& alpha(SubType s) const { return alphas[Index(s)]; }
    DisplayListTable& listTable(SubType s) { return displayLists[Index(s)]; }
    const DisplayListTable& listTable(SubType s) const { return displayLists[Index(s)]; }
    std::vector<DisplayList>& lists(SubType s) { return listTable(s).displayLists; }
    const std::vector<DisplayList>& lists(SubType s) const { return listTable(s).displayLists; }
    int16_t& listCount(SubType s) { return listTable(s).displayListCount; }
    int16_t listCount(SubType s) const { return listTable(s).displayListCount; }

    // One user group "No Users", one display list per sub type ("First In
    // List", ...), one template "None" with no buttons; alpha tables untouched.
    void ResetToDefaults();
};

} // namespace lumeth
