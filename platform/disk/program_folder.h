#pragma once

#include <string>

namespace kestrune {

// The folder of the running program's file, where its library and its session folder lie; the current folder
// when that cannot be told.
[[nodiscard]] std::string program_folder();

} // namespace kestrune
