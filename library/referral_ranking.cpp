#include "library/referral_ranking.h"

#include "library/site_library.h"
#include "platform/diagnostics.h"
#include "platform/text.h"

#include <limits>
#include <utility>

namespace kestrune {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::int32_t hits_of(const Recordset& row) {
    const auto hits = row.number("hitcount");
    if (!hits || *hits < std::numeric_limits<std::int32_t>::min() ||
        *hits > std::numeric_limits<std::int32_t>::max())
        throw DatabaseError("a hit count that is no 32-bit number");
    return static_cast<std::int32_t>(*hits);
}

} // namespace

ReferralRanking::ReferralRanking(Database& database, const Files& files, std::string folder)
    : database_(database), files_(files), folder_(std::move(folder)) {}

std::int32_t ReferralRanking::LookupReferralHits(std::string_view url) const {
    const std::string_view alternative =
        url.ends_with('/') ? url.substr(0, url.size() - 1) : std::string_view{};
    const auto rows = database_.open(files_.path(folder_, referral_database_name),
                                     "select * from referral2 where url = " + SqlQuote(url) +
                                         " or url = " + SqlQuote(alternative));
    return rows->at_end() ? 0 : hits_of(*rows);
}

RankingSummary
ReferralRanking::RecomputeReferralRanks(const std::function<bool(std::int64_t rewritten)>& between) const {
    RankingSummary summary;
    try {
        walk(summary, between);
    } catch (const DatabaseError& error) {
        summary.end = RankingSummary::End::Failed;
        summary.failure = error.what();
        diagnostics::report("RecomputeReferralRanks", error.what());
    }
    return summary;
}

void ReferralRanking::walk(RankingSummary& summary, const std::function<bool(std::int64_t)>& between) const {
    const auto sites =
        database_.open(files_.path(folder_, site_library_name), "select * from tblSubmitList order by url");
    while (!sites->at_end()) {
        summary.failed_at = sites->text("url").value_or("");
        const std::string url = lower_case(required_text(*sites, "url"));
        const std::int32_t hits = LookupReferralHits(trimmed(url));
        sites->set("referral", std::int64_t{hits});
        sites->update();
        ++summary.rewritten;
        if (hits > 0)
            ++summary.with_hits;
        sites->move_next();
        if (between && !between(summary.rewritten)) {
            summary.end = RankingSummary::End::Cancelled;
            break;
        }
    }
    summary.failed_at.clear();
}

} // namespace kestrune
