#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "model/sub_type.h"

namespace lumeth {

// The parts of the configuration the server module holds: the eleven a
// request for everything downloads, of which the last six are the ones Apply
// uploads, in the order Apply sends them. The link's wire table
// (request bits, command bytes) is indexed by the same enum.
enum class Part : uint8_t {
    Password,
    InputAlphas,
    OutputAlphas,
    OptoAlphas,
    RelayAlphas,
    InputLists,
    OutputLists,
    OptoLists,
    RelayLists,
    UserGroups,
    Templates,
};
inline constexpr size_t kPartCount = 11;

enum class PartKind : uint8_t { Password, Alphas, DisplayLists, UserGroups, Templates };

struct PartInfo {
    Part part;
    PartKind kind;
    std::optional<SubType> subType;
    std::string_view name;    // what people read: "Relay display lists"
    std::string_view logText; // the download's activity and error-log text: "Relay Alphas"
};

inline constexpr std::array<PartInfo, kPartCount> kParts{{
    {Part::Password, PartKind::Password, std::nullopt, "password", "Password"},
    {Part::InputAlphas, PartKind::Alphas, SubType::Input, "Input channel names", "Input Alphas"},
    {Part::OutputAlphas, PartKind::Alphas, SubType::Output, "Output channel names",
     "Output Alphas"},
    {Part::OptoAlphas, PartKind::Alphas, SubType::Opto, "Opto channel names", "Opto Alphas"},
    {Part::RelayAlphas, PartKind::Alphas, SubType::Relay, "Relay channel names", "Relay Alphas"},
    {Part::InputLists, PartKind::DisplayLists, SubType::Input, "Input display lists",
     "Source Display Lists"},
    {Part::OutputLists, PartKind::DisplayLists, SubType::Output, "Output display lists",
     "Destination Display Lists"},
    {Part::OptoLists, PartKind::DisplayLists, SubType::Opto, "Opto display lists",
     "Opto Display Lists"},
    {Part::RelayLists, PartKind::DisplayLists, SubType::Relay, "Relay display lists",
     "Relay Display Lists"},
    {Part::UserGroups, PartKind::UserGroups, std::nullopt, "user groups", "Group Data"},
    {Part::Templates, PartKind::Templates, std::nullopt, "button templates", "Button Templates"},
}};

constexpr const PartInfo& Info(Part p) {
    return kParts[static_cast<size_t>(p)];
}
constexpr std::string_view PartName(Part p) {
    return Info(p).name;
}
constexpr Part AlphasPart(SubType s) {
    return static_cast<Part>(static_cast<size_t>(Part::InputAlphas) + Index(s));
}
constexpr Part ListsPart(SubType s) {
    return static_cast<Part>(static_cast<size_t>(Part::InputLists) + Index(s));
}

// A set of parts.
class PartSet {
public:
    constexpr PartSet() = default;
    constexpr PartSet(std::initializer_list<Part> parts) {
        for (Part p : parts)
            m_bits |= Bit(p);
    }
    static constexpr PartSet FromBits(uint16_t bits) {
        PartSet set;
        set.m_bits = bits & kAllBits;
        return set;
    }

    constexpr bool has(Part p) const { return (m_bits & Bit(p)) != 0; }
    constexpr bool empty() const { return m_bits == 0; }
    constexpr uint16_t bits() const { return m_bits; }
    constexpr int size() const {
        int n = 0;
        for (uint16_t b = m_bits; b != 0; b &= static_cast<uint16_t>(b - 1))
            ++n;
        return n;
    }
    constexpr PartSet& add(Part p) {
        m_bits |= Bit(p);
        return *this;
    }
    constexpr PartSet& remove(Part p) {
        m_bits &= static_cast<uint16_t>(~Bit(p));
        return *this;
    }
    constexpr PartSet operator|(PartSet o) const { return FromBits(m_bits | o.m_bits); }
    constexpr PartSet operator&(PartSet o) const { return FromBits(m_bits & o.m_bits); }
    // The parts of this set that are not in `o`.
    constexpr PartSet operator-(PartSet o) const {
        return FromBits(static_cast<uint16_t>(m_bits & ~o.m_bits));
    }
    constexpr PartSet& operator|=(PartSet o) { return *this = *this | o; }
    constexpr bool operator==(const PartSet&) const = default;

private:
    static constexpr uint16_t kAllBits = (1u << kPartCount) - 1;
    static constexpr uint16_t Bit(Part p) { return static_cast<uint16_t>(1u << static_cast<int>(p)); }
    uint16_t m_bits = 0;
};

inline constexpr PartSet kAllParts = PartSet::FromBits((1u << kPartCount) - 1);
// The parts Apply sends: the display lists of the four sub types, the user
// groups, the button templates.
inline constexpr PartSet kUploadParts{Part::InputLists, Part::OutputLists, Part::OptoLists,
                                      Part::RelayLists, Part::UserGroups,  Part::Templates};

// The parts of `set` in enum order (the order Apply sends the uploads).
template <typename F> void ForEachPart(PartSet set, F&& f) {
    for (const PartInfo& info : kParts)
        if (set.has(info.part))
            f(info.part);
}

// "Relay display lists, user groups, button templates"
std::string JoinPartNames(PartSet set);

} // namespace lumeth
