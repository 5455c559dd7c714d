#pragma once

#include <string_view>

namespace kestrune {

// What Help, "Go to Website" opens. While the maker has no site it is a page of the program's own.
inline constexpr std::string_view makers_site = "kestrune:website";

} // namespace kestrune
