#pragma once

#include <string>
#include <string_view>

namespace lumeth {

// The names the per-user data folder is made of: the window gives them to
// Qt, which finds the same folder by the same rule as UserDataFolder.
inline constexpr std::string_view kDataOrganisation = "KOV";
inline constexpr std::string_view kDataApplication = "Lumeth Admin";

// The per-user data folder of an installed copy, ending in '/':
// $XDG_DATA_HOME (when absolute) or ~/.local/share, then
// "KOV/Lumeth Admin/". Not created here.
std::string UserDataFolder();

} // namespace lumeth
