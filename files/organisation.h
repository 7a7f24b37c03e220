#pragma once

#include <string_view>

// The maker's name and address, shown in the error log header and the About
// dialog. Kept in one place so both always agree.
namespace lumeth::organisation {

inline constexpr std::string_view kName = "KOV Broadcast Systems";
inline constexpr std::string_view kStreet = "2750 Meridian Parkway, Suite 140";
inline constexpr std::string_view kCityLine = "Lakewood, CO 80228";
inline constexpr std::string_view kTelephone = "(303) 555-0147";
inline constexpr std::string_view kWeb = "www.kovbroadcast.example";

} // namespace lumeth::organisation
