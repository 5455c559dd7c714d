#pragma once

#include "tools/library/library_file.h"

#include <string>
#include <vector>

namespace kestrune {

// What is wrong with the rows of a library, one line each, in the order of the file: Null where a value must
// be, doubled keys and addresses, unknown statuses and categories, addresses that no browser can open, sites
// that are in neither list; before them, what the database engine finds wrong with the file.
std::vector<std::string> check_library(const LibraryFile& library);

} // namespace kestrune
