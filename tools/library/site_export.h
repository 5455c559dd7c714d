#pragma once

#include "tools/library/library_file.h"

#include <string>

namespace kestrune {

// Every row and column of the library as comma-separated values in UTF-8, the names of the columns first, in
// the order of the file. Null and an empty text both become an empty field.
std::string export_sites(const LibraryFile& library);

} // namespace kestrune
