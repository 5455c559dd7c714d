#pragma once

#include "tools/library/library_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Adding sites from comma-separated values. The first line names columns of the library, in any order and
// letter case; url and description must be among them. A site without a status is "N", one without pad "NO".
// The column padkey is passed over: a new site gets the next free key.

enum class Duplicates : std::uint8_t { Skip, Update };

struct ImportOptions {
    // What becomes of a site whose address the library, or an earlier line, already has. An update stores the
    // fields that the line fills and leaves the others alone.
    Duplicates duplicates = Duplicates::Skip;
    bool dry_run = false; // everything is reported, nothing is stored
};

struct ImportReport {
    std::int64_t added = 0;
    std::int64_t updated = 0;
    std::vector<std::string> duplicates; // one line for each
    std::vector<std::string> refused;    // lines that hold no site, with the reason
    std::vector<std::string> ignored_columns;
};

// Stores all that can be taken, together. Throws LibraryError when the text as a whole is no list of sites,
// and DatabaseError; then nothing is stored.
ImportReport import_sites(LibraryFile& library, std::string_view csv, const ImportOptions& options);

} // namespace kestrune
