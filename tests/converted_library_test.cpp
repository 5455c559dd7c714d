#include "jet_samples.h"
#include "libraries.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "platform/jet/jet_conversion.h"
#include "platform/sqlite/table_file.h"
#include "platform/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};
const std::string referrals{referral_database_name};

std::string entries(const ListView& list) {
    std::string all;
    for (std::size_t i = 0; i < list.size(); ++i)
        all += list.item(i).Key + "=" + list.item(i).Text + ";";
    return all;
}

// What holds with a library of ours holds with one that was made with Access.
class ConvertedLibrary : public testing::Test {
protected:
    void SetUp() override {
        KESTRUNE_NEED_JET_SAMPLES();
        std::filesystem::copy_file(jet_sample("sites-2003.mdb"), libraries.path(lib));
        std::filesystem::copy_file(jet_sample("referral-2000.mdb"), libraries.path(referrals));
        const auto outcomes = JetConversions{jet_files_in(libraries.folder), create_table_file}.finish();
        ASSERT_EQ(outcomes, (std::vector{JetOutcome::Converted, JetOutcome::Converted}));
        before = libraries.sites(lib);
    }
    void load(bool padEnabled) { library.LoadSiteList(lib, list, padEnabled, counter); }
    void add_referral(const std::string& url, int hits) {
        const SqliteConnection raw = SqliteConnection::open_existing(libraries.path(referrals));
        SqliteQuery insert{raw, "INSERT INTO referral2(url, hitcount) VALUES(?1, ?2)"};
        insert.bind(1, url);
        insert.bind(2, std::int64_t{hits});
        insert.step();
    }
    // The first site for which it holds; the sample has one for everything asked for.
    template <typename Holds>
    const SiteRow& some_site(const Holds& holds) {
        const auto found = std::find_if(before.begin(), before.end(), holds);
        if (found == before.end())
            throw std::runtime_error("the sample has no such site");
        return *found;
    }

    SqliteLibraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    ReferralRanking ranking{libraries.database, libraries.files, libraries.folder};
    ListView list{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    int counter = -1;
    std::vector<SiteRow> before;
};

TEST_F(ConvertedLibrary, SiteWhosePadIsNullIsInNeitherList) {
    const std::string key = ListKey(some_site([](const SiteRow& row) { return !row.pad; }).padkey);
    std::size_t listed = 0;
    for (const bool padEnabled : {true, false}) {
        load(padEnabled);
        listed += list.size();
        EXPECT_EQ(entries(list).find(key + "="), std::string::npos);
    }
    EXPECT_EQ(listed,
              static_cast<std::size_t>(std::count_if(
                  before.begin(), before.end(), [](const SiteRow& row) { return row.pad.has_value(); })));
}

TEST_F(ConvertedLibrary, NullCategoryOrCommentShowsEmpty) {
    load(true);
    const auto shown = [this](const SiteRow& row, const char* column) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (list.item(i).Key == ListKey(row.padkey))
                return std::optional(std::string(list.sub_item(list.item(i), column)));
        }
        return std::optional<std::string>();
    };
    EXPECT_EQ(
        shown(some_site([](const SiteRow& row) { return row.pad == "PAD" && !row.softtype; }), "Category"),
        "");
    EXPECT_EQ(shown(some_site([](const SiteRow& row) { return row.pad == "PAD" && !row.note; }), "Comment"),
              "");
}

TEST_F(ConvertedLibrary, AddressHoldingAnApostropheCanBeNeitherLookedUpNorMarked) {
    const std::string url = "http://it's.example/";
    EXPECT_TRUE(library.UpdateSiteRecord(lib, "K7", "it's", url, "N", "", ""));
    const auto edited = libraries.sites(lib);
    EXPECT_FALSE(library.UpdateSubmitStatus(lib, url, "Y", ""));
    EXPECT_FALSE(library.SetLinkFound(lib, url, 1));
    EXPECT_EQ(libraries.sites(lib), edited);
}

TEST_F(ConvertedLibrary, FillingTwiceYieldsTheSameEntriesAndTheCounterTheirNumber) {
    load(true);
    const std::string once = entries(list);
    EXPECT_NE(once, "");
    load(true);
    EXPECT_EQ(entries(list), once);
    EXPECT_EQ(static_cast<std::size_t>(counter), list.size());
}

TEST_F(ConvertedLibrary, ListKeyK0AddressesTheRowWhoseKeyIs0) {
    EXPECT_TRUE(library.UpdateSiteRecord(lib, "K0", "changed", "u", "N", "c", "n"));
    auto expected = before;
    SiteRow& zero =
        *std::find_if(expected.begin(), expected.end(), [](const SiteRow& row) { return row.padkey == 0; });
    zero.description = "changed";
    zero.url = "u";
    zero.status = "N";
    zero.softtype = "c";
    zero.note = "n";
    EXPECT_EQ(libraries.sites(lib), expected);
}

TEST_F(ConvertedLibrary, StatusUpdateChangesOnlyTheFirstOfTwoRowsWithTheSameAddress) {
    const SiteRow& second = before.at(5);
    EXPECT_TRUE(library.UpdateSiteRecord(lib, ListKey(second.padkey), *second.description, *before.at(2).url,
                                         *second.status, "1=general", "note"));
    auto expected = libraries.sites(lib);
    EXPECT_TRUE(library.UpdateSubmitStatus(lib, *before.at(2).url, "P", "no answer"));
    expected.at(2).status = "P";
    expected.at(2).note = "no answer";
    EXPECT_EQ(libraries.sites(lib), expected);
}

TEST_F(ConvertedLibrary, AddressThatEndsInASlashFindsAReferralStoredWithItOrWithoutIt) {
    add_referral("http://with.example/", 31);
    add_referral("http://without.example", 32);
    EXPECT_EQ(ranking.LookupReferralHits("http://with.example/"), 31);
    EXPECT_EQ(ranking.LookupReferralHits("http://without.example/"), 32);
}

TEST_F(ConvertedLibrary, AddressWithoutAFinalSlashAlsoMatchesAReferralWhoseAddressIsEmpty) {
    EXPECT_EQ(ranking.LookupReferralHits("http://none.example"), 0);
    add_referral("", 33);
    EXPECT_EQ(ranking.LookupReferralHits("http://none.example"), 33);
    EXPECT_EQ(ranking.LookupReferralHits("http://none.example/"), 0);
}

TEST_F(ConvertedLibrary, RankingGivesEverySiteItsHitsAndZeroToOneWithoutARow) {
    std::map<std::string, std::int32_t> hits;
    for (const auto& row : jet_contents("referral-2000.tsv").rows)
        hits.emplace(lower_case(row[1].value()), std::stoi(row[2].value()));
    const RankingSummary summary = ranking.RecomputeReferralRanks({});
    EXPECT_EQ(summary.end, RankingSummary::End::Finished);
    int found = 0;
    for (SiteRow& row : before) {
        const std::string url = lower_case(*row.url);
        auto hit = hits.find(url);
        if (hit == hits.end() && url.ends_with('/'))
            hit = hits.find(url.substr(0, url.size() - 1));
        row.referral = hit == hits.end() ? 0 : hit->second;
        found += hit == hits.end() ? 0 : 1;
    }
    EXPECT_GT(found, 0);
    EXPECT_LT(found, static_cast<int>(before.size()));
    EXPECT_EQ(libraries.sites(lib), before);
}

} // namespace
} // namespace kestrune
