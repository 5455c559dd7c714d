#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrune {

// One row of a site library's table tblSubmitList, for whoever makes a library or looks into one from
// outside. The program itself reads and writes rows through a Recordset.
struct SiteRow {
    std::int32_t padkey = 0; // unique
    std::optional<std::string> url;
    std::optional<std::string> description;
    std::optional<std::string> status = "N";
    std::optional<std::string> softtype;
    std::optional<std::string> pad;
    std::optional<std::int64_t> referral = 0;
    std::optional<std::int64_t> linkfound = 0;
    std::optional<std::string> note = "";
    friend bool operator==(const SiteRow&, const SiteRow&) = default;
};

} // namespace kestrune
