#include "library/site_library.h"

#include "libraries.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};

std::vector<std::string> site_keys() { return {"url", "Status", "Category", "Comment"}; }

std::string entries(const ListView& list) {
    std::string all;
    for (std::size_t i = 0; i < list.size(); ++i)
        all += list.item(i).Key + "=" + list.item(i).Text + ";";
    return all;
}

template <typename Libraries>
class SiteLibraryTest : public testing::Test {
protected:
    void load(bool padEnabled) { library.LoadSiteList(lib, list, padEnabled, counter); }
    SiteRow stored(int padkey) {
        for (const SiteRow& row : libraries.sites(lib)) {
            if (row.padkey == padkey)
                return row;
        }
        ADD_FAILURE() << "no site " << padkey;
        return {};
    }

    Libraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    ListView list{"lvwPAD", site_keys()};
    int counter = -1;
};
TYPED_TEST_SUITE(SiteLibraryTest, EveryLibrary);

TYPED_TEST(SiteLibraryTest, ListHoldsTheSitesOfItsHalfByDescription) {
    SiteRow other = site(3, "Without");
    other.pad = "NO";
    this->libraries.create(lib, {site(17, "beta"), site(2, "Alpha"), other});
    this->load(true);
    EXPECT_EQ(entries(this->list), "K2=Alpha;K17=beta;");
    EXPECT_EQ(this->counter, 2);
    this->load(false);
    EXPECT_EQ(entries(this->list), "K3=Without;");
    EXPECT_EQ(this->counter, 1);
}

TYPED_TEST(SiteLibraryTest, EntryHoldsAddressStatusCategoryAndComment) {
    SiteRow row = site(5, "Five");
    row.status = "Y";
    row.softtype = "4=business";
    row.note = "well done";
    this->libraries.create(lib, {row});
    this->load(true);
    EXPECT_EQ(this->list.item(0).SubItems,
              (std::vector<std::string>{"http://site5.example/", "Y", "4=business", "well done"}));
}

TYPED_TEST(SiteLibraryTest, SiteWhosePadIsNullIsInNeitherList) {
    SiteRow null = site(1, "Null");
    null.pad = std::nullopt;
    this->libraries.create(lib, {null});
    this->load(true);
    EXPECT_EQ(this->list.size(), 0U);
    this->load(false);
    EXPECT_EQ(this->list.size(), 0U);
    EXPECT_EQ(this->counter, 0);
}

TYPED_TEST(SiteLibraryTest, NullCategoryOrCommentShowsEmpty) {
    SiteRow row = site(1, "One");
    row.softtype = std::nullopt;
    row.note = std::nullopt;
    this->libraries.create(lib, {row});
    this->load(true);
    ASSERT_EQ(this->list.size(), 1U);
    EXPECT_EQ(this->list.sub_item(this->list.item(0), "Category"), "");
    EXPECT_EQ(this->list.sub_item(this->list.item(0), "Comment"), "");
}

TYPED_TEST(SiteLibraryTest, FillingTwiceYieldsTheSameEntriesAndTheCounterTheirNumber) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    this->load(true);
    const std::string once = entries(this->list);
    this->load(true);
    EXPECT_EQ(entries(this->list), once);
    EXPECT_EQ(this->counter, 2);
}

TYPED_TEST(SiteLibraryTest, ErrorWhileFillingLeavesTheEntriesAddedSoFarAndCountsThem) {
    SiteRow null = site(3, "Two and a half");
    null.url = std::nullopt;
    this->libraries.create_loose(lib, {site(1, "One"), site(2, "Two"), null, site(4, "Zero")});
    this->list.add({"old", "old", {}});
    this->load(true);
    EXPECT_EQ(entries(this->list), "K1=One;K2=Two;");
    EXPECT_EQ(this->counter, 2);
}

TYPED_TEST(SiteLibraryTest, NullDescriptionOrStatusOrKeyEndsTheFilling) {
    SiteRow null = site(2, "B");
    null.status = std::nullopt;
    this->libraries.create_loose(lib, {site(1, "A"), null, site(3, "C")});
    this->load(true);
    EXPECT_EQ(entries(this->list), "K1=A;");
    null = site(2, "B");
    null.description = std::nullopt;
    this->libraries.create_loose("other.mdb", {site(1, "A"), null});
    this->library.LoadSiteList("other.mdb", this->list, true, this->counter);
    EXPECT_EQ(entries(this->list), "");
    EXPECT_EQ(this->counter, 0);
}

TYPED_TEST(SiteLibraryTest, LibraryThatCannotBeOpenedLeavesListAndCounterAsTheyWere) {
    this->libraries.create(lib, {site(1, "One")});
    this->libraries.create_without("lacking.mdb", "pad", {site(1, "One")});
    this->load(true);
    const auto expect_unchanged = [this](const std::string& name) {
        this->library.LoadSiteList(name, this->list, true, this->counter);
        EXPECT_EQ(entries(this->list), "K1=One;") << name;
        EXPECT_EQ(this->counter, 1) << name;
    };
    expect_unchanged("missing.mdb");
    expect_unchanged("lacking.mdb");
    const Guard locked = this->libraries.lock(lib);
    expect_unchanged(lib);
}

TYPED_TEST(SiteLibraryTest, UpdateWritesItsFiveColumnsAndNoOther) {
    SiteRow before = site(17, "Before");
    before.referral = 7;
    before.linkfound = 8;
    this->libraries.create(lib, {site(1, "One"), before});
    EXPECT_TRUE(
        this->library.UpdateSiteRecord(lib, "K17", "it's", "http://x/", "P", "9=special", "a 'note'"));
    SiteRow expected = before;
    expected.description = "it's";
    expected.url = "http://x/";
    expected.status = "P";
    expected.softtype = "9=special";
    expected.note = "a 'note'";
    EXPECT_EQ(this->libraries.sites(lib), (std::vector<SiteRow>{site(1, "One"), expected}));
}

TYPED_TEST(SiteLibraryTest, ListKeyK0AddressesTheRowWhoseKeyIs0) {
    this->libraries.create(lib, {site(0, "Zero"), site(10, "Ten")});
    EXPECT_TRUE(this->library.UpdateSiteRecord(lib, "K0", "changed", "u", "N", "", ""));
    EXPECT_EQ(this->stored(0).description, "changed");
    EXPECT_EQ(this->stored(10).description, "Ten");
    EXPECT_TRUE(this->library.DeleteSiteRecord(lib, "K0"));
    EXPECT_EQ(this->libraries.sites(lib).size(), 1U);
}

TYPED_TEST(SiteLibraryTest, KeyWithoutARowOrNoKeyAtAllChangesNothing) {
    this->libraries.create(lib, {site(1, "One"), site(-1, "Minus one")});
    const auto before = this->libraries.sites(lib);
    for (const char* const key :
         {"K2", "", "K", "1", "Kx", "K1x", "K 1", "K1.0", "K99999999999", "K1 or 1=1"}) {
        EXPECT_FALSE(this->library.UpdateSiteRecord(lib, key, "d", "u", "N", "", "")) << key;
        EXPECT_FALSE(this->library.DeleteSiteRecord(lib, key)) << key;
    }
    EXPECT_EQ(this->libraries.sites(lib), before);
    EXPECT_TRUE(this->library.DeleteSiteRecord(lib, "K-1"));
}

TYPED_TEST(SiteLibraryTest, DeleteRemovesTheRowOfTheKey) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    EXPECT_TRUE(this->library.DeleteSiteRecord(lib, "K1"));
    EXPECT_EQ(this->libraries.sites(lib), std::vector<SiteRow>{site(2, "Two")});
    EXPECT_FALSE(this->library.DeleteSiteRecord(lib, "K1"));
}

TEST(SqlQuote, NothingInTheTextIsEscaped) {
    EXPECT_EQ(SqlQuote("it's"), "'it's'");
    EXPECT_EQ(SqlQuote(""), "''");
}

TYPED_TEST(SiteLibraryTest, AddressHoldingAnApostropheCanBeNeitherLookedUpNorMarked) {
    SiteRow row = site(1, "One");
    row.url = "http://it's.example/";
    SiteRow victim = site(2, "Two");
    victim.url = "y";
    this->libraries.create(lib, {row, victim});
    const auto before = this->libraries.sites(lib);
    for (const char* const url : {"http://it's.example/", "x' or url = 'y", "' or '1'='1", "'"}) {
        EXPECT_FALSE(this->library.UpdateSubmitStatus(lib, url, "Y", "")) << url;
        EXPECT_FALSE(this->library.SetLinkFound(lib, url, 1)) << url;
    }
    EXPECT_EQ(this->libraries.sites(lib), before);
}

TYPED_TEST(SiteLibraryTest, StatusUpdateChangesOnlyTheFirstOfTwoRowsWithTheSameAddress) {
    SiteRow second = site(2, "A");
    second.url = site(1, "").url;
    this->libraries.create(lib, {site(1, "Z"), second});
    EXPECT_TRUE(this->library.UpdateSubmitStatus(lib, *second.url, "P", "no answer"));
    EXPECT_EQ(this->stored(1).status, "P");
    EXPECT_EQ(this->stored(1).note, "no answer");
    EXPECT_EQ(this->stored(2), second);
}

TYPED_TEST(SiteLibraryTest, AddressWithoutARowIsNotMarked) {
    this->libraries.create(lib, {site(1, "One")});
    EXPECT_FALSE(this->library.UpdateSubmitStatus(lib, "http://elsewhere/", "Y", ""));
    EXPECT_FALSE(this->library.UpdateSubmitStatus(lib, "HTTP://SITE1.example/", "Y", ""));
    EXPECT_EQ(this->stored(1), site(1, "One"));
}

TYPED_TEST(SiteLibraryTest, LinkFoundIsWrittenAndNothingElse) {
    this->libraries.create(lib, {site(1, "One")});
    EXPECT_TRUE(this->library.SetLinkFound(lib, "http://site1.example/", 3));
    SiteRow expected = site(1, "One");
    expected.linkfound = 3;
    EXPECT_EQ(this->stored(1), expected);
    EXPECT_FALSE(this->library.SetLinkFound(lib, "http://site2.example/", 3));
}

TYPED_TEST(SiteLibraryTest, RowThatWasFoundCountsAsTrueEvenWhenItCannotBeWritten) {
    this->libraries.create(lib, {site(1, "One")});
    {
        const Guard read_only = this->libraries.make_read_only(lib);
        EXPECT_TRUE(this->library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", ""));
        EXPECT_TRUE(this->library.SetLinkFound(lib, "http://site1.example/", 1));
        EXPECT_TRUE(this->library.UpdateSiteRecord(lib, "K1", "d", "u", "Y", "", ""));
        EXPECT_TRUE(this->library.DeleteSiteRecord(lib, "K1"));
        EXPECT_FALSE(this->library.DeleteSiteRecord(lib, "K2"));
    }
    EXPECT_EQ(this->stored(1), site(1, "One"));
}

TYPED_TEST(SiteLibraryTest, MissingOrLockedLibraryOrOneWithoutTheColumnIsFalse) {
    const auto expect_false = [this](const std::string& name) {
        EXPECT_FALSE(this->library.UpdateSubmitStatus(name, "http://site1.example/", "Y", "")) << name;
        EXPECT_FALSE(this->library.SetLinkFound(name, "http://site1.example/", 1)) << name;
    };
    expect_false("missing.mdb");
    EXPECT_FALSE(this->library.DeleteSiteRecord("missing.mdb", "K1"));
    this->libraries.create_without("lacking.mdb", "url", {site(1, "One")});
    expect_false("lacking.mdb");
    this->libraries.create(lib, {site(1, "One")});
    const Guard locked = this->libraries.lock(lib);
    expect_false(lib);
    EXPECT_FALSE(this->library.UpdateSiteRecord(lib, "K1", "d", "u", "Y", "", ""));
    EXPECT_FALSE(this->library.DeleteSiteRecord(lib, "K1"));
}

TYPED_TEST(SiteLibraryTest, ColumnThatIsMissingLeavesTheWholeRowUnwritten) {
    this->libraries.create_without(lib, "note", {site(1, "One")});
    EXPECT_TRUE(this->library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "x"));
    const auto row =
        this->libraries.database.open(this->libraries.path(lib), "select * from tblSubmitList order by url");
    EXPECT_EQ(row->text("status"), "N");
}

} // namespace
} // namespace kestrune
