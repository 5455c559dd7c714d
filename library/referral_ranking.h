#pragma once

#include "platform/database.h"
#include "platform/files.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kestrune {

// File name of the database of hit counts, in the program's folder.
inline constexpr std::string_view referral_database_name = "referral2.mdb";

struct RankingSummary {
    enum class End : std::uint8_t { Finished, Cancelled, Failed };

    std::int64_t rewritten = 0; // sites; they keep their new values however the walk ended
    std::int64_t with_hits = 0; // of these, sites whose address has more than 0 hits
    End end = End::Finished;
    std::string failure;   // what went wrong
    std::string failed_at; // the address of the site where it did, as far as it could be read
};

// Ranks the sites of the library by how many hits their addresses have. Both databases lie in the program's
// folder and are opened afresh by each operation, the hit counts for every single site.
class ReferralRanking {
public:
    // All three outlive the ranking.
    ReferralRanking(Database& database, const Files& files, std::string folder);

    // The hits of one address, or of the address without its final "/"; the address itself comes first. An
    // address without a final "/" also finds a row whose address is empty. 0 when there is no row. Throws
    // DatabaseError, also when the count is Null or no 32-bit number.
    [[nodiscard]] std::int32_t LookupReferralHits(std::string_view url) const;

    // Rewrites the referral of every site. Between two sites it calls `between`, with the number rewritten so
    // far, so that the user interface can be served; when that returns false the walk ends. An error ends the
    // walk silently at the site where it happens: an address that holds an apostrophe is one.
    RankingSummary RecomputeReferralRanks(const std::function<bool(std::int64_t rewritten)>& between) const;

private:
    void walk(RankingSummary& summary, const std::function<bool(std::int64_t)>& between) const;

    Database& database_;
    const Files& files_;
    std::string folder_;
};

} // namespace kestrune
