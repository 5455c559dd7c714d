#pragma once

#include "tools/tour/tour.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kestrune::tour {

// One line on a visit: the site, what happened, what was wrong.
std::string summary_line(const Visit& visit);

// Writes index.html with the pictures and a line of result for each visit, and the sites left out with the
// reason. Throws std::runtime_error when it cannot be written.
void write_index(const std::filesystem::path& folder, const std::vector<Visit>& visits,
                 const std::vector<practice::Site>& sites);

} // namespace kestrune::tour
