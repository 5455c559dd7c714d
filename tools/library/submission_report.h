#pragma once

#include "tools/library/library_file.h"

#include <string>
#include <string_view>

namespace kestrune {

// A page that stands alone, to print or to send: every site that something was submitted to, with its
// category and note, submitted ones first, and how many there are of each status. `date` is shown as it is.
std::string submission_report(const LibraryFile& library, std::string_view date);

} // namespace kestrune
