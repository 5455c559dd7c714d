#pragma once

#include "tools/library/library_file.h"

#include <cstdint>
#include <map>
#include <string>

namespace kestrune {

// How many sites there are of each status within each category. Sites without a category stand under "".
struct LibraryStatistics {
    std::int64_t sites = 0;
    std::int64_t with_pad = 0;
    std::map<std::string, std::map<std::string, std::int64_t>> by_category; // then by status
    [[nodiscard]] std::int64_t of_status(const std::string& status) const;
};

LibraryStatistics library_statistics(const LibraryFile& library);

// As a table for a terminal.
std::string statistics_text(const LibraryStatistics& statistics);

// A status in words: "submitted" for "Y".
std::string status_words(const std::string& status);

} // namespace kestrune
