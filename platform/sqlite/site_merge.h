#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrune {

struct MergedSite {
    std::string url;
    std::string description;
    friend bool operator==(const MergedSite&, const MergedSite&) = default;
};

enum class MergeMode : std::uint8_t { Store, DryRun };

// Adds the sites of a newer shipped library to the user's own: those whose address it does not have, as sites
// not yet submitted to, under new keys. No row that is there changes. A site that the user has deleted stays
// deleted: the library remembers, in a table of its own, which addresses have come with a version. All of it
// is stored together or not at all. Returns the sites that it adds, or would add. Throws DatabaseError.
std::vector<MergedSite> merge_site_libraries(const std::string& newer, const std::string& own,
                                             MergeMode mode);

} // namespace kestrune
