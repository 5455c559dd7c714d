#pragma once

#include "platform/site_row.h"

#include <stdexcept>
#include <string_view>
#include <vector>

namespace kestrune {

// A list of sites that cannot be read; says in which line.
class SiteCsvError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The sites of a list in comma-separated values: a first line
// "description,url,softtype,pad,sure,evidence", then one site a line; a field that holds a comma, a quotation
// mark or a line end is quoted, with quotation marks doubled. Only sites that are well founded (sure is
// "high" or "medium") are taken. Keys count from 1; every status is "N" and every note empty. Throws
// SiteCsvError.
std::vector<SiteRow> read_site_csv(std::string_view text);

} // namespace kestrune
