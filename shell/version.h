#pragma once

#include <string_view>

namespace kestrune {

inline constexpr std::string_view program_version = "1.0";

} // namespace kestrune
