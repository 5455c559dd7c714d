#include "library/referral_ranking.h"

#include "libraries.h"
#include "library/site_library.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};
const std::string referrals{referral_database_name};
using End = RankingSummary::End;

template <typename Libraries>
class ReferralRankingTest : public testing::Test {
protected:
    void create(const std::vector<std::pair<std::string, int>>& hits) {
        libraries.create_referrals(referrals, hits);
    }
    void create_sites(const std::vector<std::string>& urls) {
        std::vector<SiteRow> rows;
        for (const std::string& url : urls) {
            rows.push_back(site(static_cast<int>(rows.size()) + 1, "Site"));
            rows.back().url = url;
            rows.back().referral = 77;
        }
        libraries.create(lib, rows);
    }
    RankingSummary recompute() { return ranking.RecomputeReferralRanks({}); }
    // By key.
    std::map<int, std::int64_t> ranks() {
        std::map<int, std::int64_t> ranks;
        for (const SiteRow& row : libraries.sites(lib))
            ranks[row.padkey] = row.referral.value();
        return ranks;
    }

    Libraries libraries;
    ReferralRanking ranking{libraries.database, libraries.files, libraries.folder};
};
TYPED_TEST_SUITE(ReferralRankingTest, EveryLibrary);

using Ranks = std::map<int, std::int64_t>;

TYPED_TEST(ReferralRankingTest, AddressWithFinalSlashFindsARowStoredWithIt) {
    this->create({{"http://a.example/", 5}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example/"), 5);
}

TYPED_TEST(ReferralRankingTest, AddressWithFinalSlashFindsARowStoredWithoutIt) {
    this->create({{"http://a.example", 6}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example/"), 6);
}

TYPED_TEST(ReferralRankingTest, ExactAddressComesBeforeTheAlternative) {
    this->create({{"http://a.example", 6}, {"http://a.example/", 5}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example/"), 5);
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example"), 6);
}

TYPED_TEST(ReferralRankingTest, OnlyOneFinalSlashIsTakenOff) {
    this->create({{"http://a.example", 6}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example//"), 0);
}

TYPED_TEST(ReferralRankingTest, RowStoredWithFinalSlashIsNotFoundForAnAddressWithoutIt) {
    this->create({{"http://a.example/", 5}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example"), 0);
}

TYPED_TEST(ReferralRankingTest, AddressWithoutFinalSlashAlsoMatchesARowWithoutAnAddress) {
    this->create({{"", 9}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example"), 9);
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example/"), 0);
}

TYPED_TEST(ReferralRankingTest, LetterCaseOfTheStoredAddressDoesNotMatter) {
    this->create({{"HTTP://A.Example/", 5}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example/"), 5);
}

TYPED_TEST(ReferralRankingTest, FirstOfSeveralRowsOfAnAddressCounts) {
    this->create({{"http://a.example", 3}, {"http://a.example", 4}});
    EXPECT_EQ(this->ranking.LookupReferralHits("http://a.example"), 3);
}

TYPED_TEST(ReferralRankingTest, AddressWithAnApostropheIsAnError) {
    this->create({{"http://a.example/it's", 3}});
    EXPECT_THROW((void)this->ranking.LookupReferralHits("http://a.example/it's"), DatabaseError);
}

TYPED_TEST(ReferralRankingTest, EverySiteGetsItsHitsAndOneWithoutARowGetsZero) {
    this->create({{"http://a.example/", 5}, {"http://c.example", 2147483647}});
    this->create_sites({"http://a.example/", "http://b.example/", "http://c.example/"});
    const RankingSummary summary = this->recompute();
    EXPECT_EQ(this->ranks(), (Ranks{{1, 5}, {2, 0}, {3, 2147483647}}));
    EXPECT_EQ(summary.end, End::Finished);
    EXPECT_EQ(summary.rewritten, 3);
    EXPECT_EQ(summary.with_hits, 2);
}

TYPED_TEST(ReferralRankingTest, AddressWithoutARowMovesItsSiteToTheEndOfThePlaybackOrderAmongEquals) {
    this->create({{"http://b.example/", 1}, {"http://c.example/", 2}});
    this->create_sites({"http://a.example/", "http://b.example/", "http://c.example/"});
    this->recompute();
    std::vector<std::int64_t> order;
    const auto queue = this->libraries.database.open(
        this->libraries.path(lib), "select * from tblSubmitList where status = 'N' and PAD = 'PAD' order by "
                                   "referral desc, linkfound desc, softtype, description");
    for (; !queue->at_end(); queue->move_next())
        order.push_back(queue->number("padkey").value());
    EXPECT_EQ(order, (std::vector<std::int64_t>{3, 2, 1}));
}

TYPED_TEST(ReferralRankingTest, AddressIsLowerCasedAndTrimmedOfBlanksBeforeTheLookUp) {
    this->create({{"http://\xc3\xa9.example/path/", 5}, {"\thttp://b.example/", 6}});
    this->create_sites({"  HTTP://\xc3\x89.Example/Path/  ", "\thttp://b.example/"});
    this->recompute();
    EXPECT_EQ(this->ranks(), (Ranks{{1, 5}, {2, 6}}));
}

TYPED_TEST(ReferralRankingTest, NothingButTheReferralChanges) {
    this->create({{"http://a.example/", 5}});
    this->create_sites({"http://a.example/", "http://b.example/"});
    auto expected = this->libraries.sites(lib);
    expected[0].referral = 5;
    expected[1].referral = 0;
    this->recompute();
    EXPECT_EQ(this->libraries.sites(lib), expected);
}

TYPED_TEST(ReferralRankingTest, SitesWithTheSameAddressAreAllRanked) {
    this->create({{"http://a.example", 5}});
    this->create_sites({"http://a.example/", "http://a.example/", "http://a.example"});
    this->recompute();
    EXPECT_EQ(this->ranks(), (Ranks{{1, 5}, {2, 5}, {3, 5}}));
}

TYPED_TEST(ReferralRankingTest, ErrorEndsTheWalkAndRowsAlreadyRewrittenKeepTheirValues) {
    this->create({{"http://a.example/", 5}, {"http://c.example/", 6}});
    this->create_sites({"http://c.example/", "http://b.example/it's", "http://a.example/"});
    const RankingSummary summary = this->recompute();
    EXPECT_EQ(this->ranks(), (Ranks{{3, 5}, {2, 77}, {1, 77}}));
    EXPECT_EQ(summary.end, End::Failed);
    EXPECT_EQ(summary.rewritten, 1);
    EXPECT_EQ(summary.failed_at, "http://b.example/it's");
    EXPECT_NE(summary.failure, "");
}

TYPED_TEST(ReferralRankingTest, MissingReferralDatabaseLeavesEveryRank) {
    this->create_sites({"http://a.example/"});
    const RankingSummary summary = this->recompute();
    EXPECT_EQ(this->ranks(), (Ranks{{1, 77}}));
    EXPECT_EQ(summary.end, End::Failed);
    EXPECT_EQ(summary.rewritten, 0);
}

TYPED_TEST(ReferralRankingTest, MissingLibraryEndsAtOnce) {
    this->create({{"http://a.example/", 5}});
    EXPECT_EQ(this->recompute().end, End::Failed);
}

TYPED_TEST(ReferralRankingTest, EventsAreServedBetweenTheSites) {
    this->create({});
    this->create_sites({"http://a.example/", "http://b.example/", "http://c.example/"});
    std::vector<std::int64_t> served;
    this->ranking.RecomputeReferralRanks([&served](std::int64_t rewritten) {
        served.push_back(rewritten);
        return true;
    });
    EXPECT_EQ(served, (std::vector<std::int64_t>{1, 2, 3}));
}

TYPED_TEST(ReferralRankingTest, CancelledWalkKeepsWhatItHasRewritten) {
    this->create({{"http://a.example/", 1}, {"http://b.example/", 2}, {"http://c.example/", 3}});
    this->create_sites({"http://a.example/", "http://b.example/", "http://c.example/"});
    const RankingSummary summary =
        this->ranking.RecomputeReferralRanks([](std::int64_t rewritten) { return rewritten < 2; });
    EXPECT_EQ(this->ranks(), (Ranks{{1, 1}, {2, 2}, {3, 77}}));
    EXPECT_EQ(summary.end, End::Cancelled);
    EXPECT_EQ(summary.rewritten, 2);
}

TYPED_TEST(ReferralRankingTest, SiteMarkedBetweenTwoSitesOfTheWalkKeepsItsMark) {
    this->create({{"http://a.example/", 1}, {"http://b.example/", 2}});
    this->create_sites({"http://a.example/", "http://b.example/", "http://c.example/"});
    SiteLibrary library{this->libraries.database, this->libraries.files, this->libraries.folder};
    this->ranking.RecomputeReferralRanks([&library](std::int64_t rewritten) {
        return rewritten != 2 || library.UpdateSubmitStatus(lib, "http://c.example/", "Y", "done");
    });
    const auto rows = this->libraries.sites(lib);
    EXPECT_EQ(rows[2].status, "Y");
    EXPECT_EQ(rows[2].note, "done");
    EXPECT_EQ(this->ranks(), (Ranks{{1, 1}, {2, 2}, {3, 0}}));
}

TYPED_TEST(ReferralRankingTest, NullAddressEndsTheWalk) {
    SiteRow null = site(1, "Null");
    null.url = std::nullopt;
    this->create({});
    this->libraries.create_loose(lib, {null, site(2, "Two")});
    const RankingSummary summary = this->recompute();
    EXPECT_EQ(summary.end, End::Failed);
    EXPECT_EQ(summary.rewritten, 0);
}

} // namespace
} // namespace kestrune
