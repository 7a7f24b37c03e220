#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumeth {

// The four kinds of channel. The enum value is the index into the store's
// per-sub-type arrays.
enum class SubType : int { Input = 0, Output = 1, Opto = 2, Relay = 3 };
inline constexpr std::array<SubType, 4> kAllSubTypes{SubType::Input, SubType::Output, SubType::Opto,
                                                     SubType::Relay};

// 16383 in a button channel field means "no channel"; it is also the code of
// the "Inactive" button function.
inline constexpr int16_t kNoChannel = 16383;
// EditorListType value meaning "the editor opens on user groups".
inline constexpr int16_t kUserGroupListType = 83;

// Alpha tables and alpha downloads use 10/20/30/40; display lists inside user
// groups and the current selection use 11/21/31/41.
constexpr int16_t AlphaTypeCode(SubType s) {
    return static_cast<int16_t>(10 * (int(s) + 1));
}
constexpr int16_t ListTypeCode(SubType s) {
    return static_cast<int16_t>(10 * (int(s) + 1) + 1);
}
std::optional<SubType> SubTypeFromAlphaCode(int code);
std::optional<SubType> SubTypeFromListCode(int code);
const char* SubTypeName(SubType s); // "Input", "Output", "Opto", "Relay"

// Channel names of one sub type as downloaded from the server module.
struct AlphaTable {
    int16_t count = 0;
    std::vector<std::string> names;        // sorted by upper-cased text
    std::vector<std::string> channelNames; // channel order, as received
    std::vector<int16_t> numbers;          // numbers[i] = channel of names[i]
    std::vector<int16_t> positionOf;       // positionOf[channel] = index into names
};

struct DisplayList {
    int16_t channelCount = 0;
    std::string name;                 // at most 16 characters when saved or sent
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
    std::string label;         // at most 8 characters when saved or sent
    int16_t channel = 0;
    int16_t channel2 = 0;

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

// The one store of the panel configuration. Arrays always hold at least one
// element; the count fields say how many entries are valid. Group and template
// data are kept as parallel arrays (names, records, the two index values)
// because downloads update them separately.
struct PanelStore {
    std::array<AlphaTable, 4> alphas;

    std::array<int16_t, 4> displayListCount{};
    std::array<std::vector<DisplayList>, 4> displayLists{
        std::vector<DisplayList>(1), std::vector<DisplayList>(1), std::vector<DisplayList>(1),
        std::vector<DisplayList>(1)};

    int16_t userGroupCount = 0;
    std::vector<std::string> userGroupNames{std::string()};
    std::vector<UserGroup> userGroups{UserGroup{}};
    std::vector<int16_t> userGroupIndex{0};
    std::vector<int16_t> userGroupNumber{0};

    int16_t templateCount = 0;
    std::vector<std::string> templateNames{std::string()};
    std::vector<ButtonTemplate> buttonTemplates{ButtonTemplate{}};
    std::vector<int16_t> templateIndex{0};
    std::vector<int16_t> templatePosition{0};

    // Main-window selection state.
    int16_t currentUserGroup = 0;
    int16_t currentListType = 11;
    int16_t currentList = 0;
    int16_t editorListType = kUserGroupListType;

    AlphaTable& alpha(SubType s) { return alphas[static_cast<size_t>(s)]; }
    const AlphaTable& alpha(SubType s) const { return alphas[static_cast<size_t>(s)]; }
    std::vector<DisplayList>& lists(SubType s) { return displayLists[static_cast<size_t>(s)]; }
    const std::vector<DisplayList>& lists(SubType s) const {
        return displayLists[static_cast<size_t>(s)];
    }
    int16_t& listCount(SubType s) { return displayListCount[static_cast<size_t>(s)]; }
    int16_t listCount(SubType s) const { return displayListCount[static_cast<size_t>(s)]; }

    // One user group "No Users", one display list per sub type ("First In
    // List", ...), one template "None" with no buttons; alpha tables untouched.
    void ResetToDefaults();

    // Resize helpers that keep the at-least-one-element rule and keep the
    // parallel arrays the same length.
    void ResizeUserGroups(int count);
    void ResizeTemplates(int count);

    // Take the user groups (or the templates) of `from`: the count and every
    // parallel array, so the part stays whole.
    void AssignUserGroups(const PanelStore& from);
    void AssignTemplates(const PanelStore& from);
};

// Size an array for `count` entries: max(count, 1) elements.
inline size_t ArraySizeFor(int count) {
    return count < 1 ? 1u : static_cast<size_t>(count);
}

} // namespace lumeth
