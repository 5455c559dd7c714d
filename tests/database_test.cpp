#include "libraries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string lib = "SubmitList.mdb";
const std::string list_pad = "select * from tblSubmitList where PAD = 'PAD' order by description";
const std::string list_no_pad = "select * from tblSubmitList where PAD <> 'PAD' order by description";
const std::string all = "select * from tblSubmitList order by url";
const std::string queue_order = " order by referral desc, linkfound desc, softtype, description";

std::string by_key(int key) { return "select * from tblSubmitList where padkey = " + std::to_string(key); }
std::string by_url(const std::string& url) { return "select * from tblSubmitList where url = '" + url + "'"; }
std::string queue(const std::string& where) {
    return "select * from tblSubmitList where status = 'N' and " + where + queue_order;
}
std::string count(const std::string& where) {
    return "select count(*) as cnt from tblSubmitList where status = 'N' and " + where;
}

// What is asked of every Database.
template <typename Libraries>
class DatabaseContract : public testing::Test {
protected:
    std::unique_ptr<Recordset> open(const std::string& statement, const std::string& name = lib) {
        return libraries.database.open(libraries.path(name), statement);
    }
    std::vector<std::int64_t> keys(const std::string& statement) {
        std::vector<std::int64_t> keys;
        for (const auto rows = open(statement); !rows->at_end(); rows->move_next())
            keys.push_back(rows->number("padkey").value());
        return keys;
    }
    std::int64_t counted(const std::string& statement) { return open(statement)->number("cnt").value(); }

    Libraries libraries;
};
TYPED_TEST_SUITE(DatabaseContract, EveryLibrary);

TYPED_TEST(DatabaseContract, RowIsFoundByKeyAndItsColumnsAreNamedWithoutRegardToCase) {
    SiteRow row = site(17, "Seventeen");
    row.note = std::nullopt;
    row.referral = 1234567890123;
    this->libraries.create(lib, {site(3, "Three"), row});
    const auto rows = this->open(by_key(17));
    ASSERT_FALSE(rows->at_end());
    EXPECT_EQ(rows->number("PADKEY"), 17);
    EXPECT_EQ(rows->text("padkey"), "17");
    EXPECT_EQ(rows->text("Description"), "Seventeen");
    EXPECT_EQ(rows->text("pad"), "PAD");
    EXPECT_EQ(rows->text("PAD"), "PAD");
    EXPECT_EQ(rows->text("note"), std::nullopt);
    EXPECT_EQ(rows->number("note"), std::nullopt);
    EXPECT_EQ(rows->number("referral"), 1234567890123);
    rows->move_next();
    EXPECT_TRUE(rows->at_end());
}

TYPED_TEST(DatabaseContract, KeyWithoutARowFindsNothing) {
    this->libraries.create(lib, {site(1, "One")});
    EXPECT_TRUE(this->open(by_key(2))->at_end());
    EXPECT_THAT(this->keys(by_key(0)), IsEmpty());
}

TYPED_TEST(DatabaseContract, ColumnThatIsNotThereOrNoNumberIsAnError) {
    this->libraries.create(lib, {site(1, "One")});
    const auto rows = this->open(by_key(1));
    EXPECT_THROW((void)rows->text("nothing"), DatabaseError);
    EXPECT_THROW((void)rows->number("description"), DatabaseError);
    EXPECT_THROW(rows->set("nothing", std::string("x")), DatabaseError);
}

TYPED_TEST(DatabaseContract, ReadingOrWritingWithoutACurrentRowIsAnError) {
    this->libraries.create(lib, {site(1, "One")});
    const auto rows = this->open(by_key(2));
    EXPECT_THROW((void)rows->text("url"), DatabaseError);
    EXPECT_THROW(rows->set("url", std::string("x")), DatabaseError);
    EXPECT_THROW(rows->delete_current(), DatabaseError);
    rows->move_next();
    EXPECT_TRUE(rows->at_end());
}

TYPED_TEST(DatabaseContract, AddressIsMatchedExactlyAndOtherTextsWithoutRegardToCase) {
    SiteRow upper = site(1, "One");
    upper.url = "http://SITE.example/";
    upper.pad = "pad";
    upper.status = "n";
    upper.softtype = "1=GENERAL";
    this->libraries.create(lib, {upper});
    EXPECT_THAT(this->keys(by_url("http://SITE.example/")), ElementsAre(1));
    EXPECT_THAT(this->keys(by_url("http://site.example/")), IsEmpty());
    EXPECT_THAT(this->keys(list_pad), ElementsAre(1));
    EXPECT_THAT(this->keys(list_no_pad), IsEmpty());
    EXPECT_THAT(this->keys(queue("PAD = 'PAD' and (softtype = '1=general')")), ElementsAre(1));
    EXPECT_THAT(this->keys(queue("PAD = 'PAD' and (softtype = '1=general' or softtype = '2=game')")),
                ElementsAre(1));
    EXPECT_EQ(this->counted(count("PAD = 'PAD' and (softtype = '1=general')")), 1);
}

TYPED_TEST(DatabaseContract, RowsWithTheSameAddressComeInTheOrderTheyWereStored) {
    SiteRow first = site(5, "Z");
    SiteRow second = site(9, "A");
    second.url = first.url;
    this->libraries.create(lib, {first, second});
    EXPECT_THAT(this->keys(by_url(*first.url)), ElementsAre(5, 9));
}

TYPED_TEST(DatabaseContract, ListIsOrderedByDescriptionWithoutRegardToCase) {
    this->libraries.create(lib, {site(1, "beta"), site(2, "ALPHA"), site(3, "Gamma"), site(4, "alpha 2")});
    EXPECT_THAT(this->keys(list_pad), ElementsAre(2, 4, 1, 3));
}

TYPED_TEST(DatabaseContract, NullIsNeitherWithPadNorWithout) {
    SiteRow null = site(1, "Null");
    null.pad = std::nullopt;
    SiteRow other = site(2, "Other");
    other.pad = "anything";
    SiteRow empty = site(3, "Pempty");
    empty.pad = "";
    this->libraries.create(lib, {null, other, empty, site(4, "With")});
    EXPECT_THAT(this->keys(list_pad), ElementsAre(4));
    EXPECT_THAT(this->keys(list_no_pad), ElementsAre(2, 3));
    EXPECT_EQ(this->counted(count("PAD = 'PAD'")), 1);
    EXPECT_EQ(this->counted(count("PAD <> 'PAD'")), 2);
}

TYPED_TEST(DatabaseContract, QueueIsRankedByReferralThenLinkfoundThenCategoryThenDescription) {
    std::vector<SiteRow> rows;
    const auto add = [&](const char* description, std::optional<int> referral, std::optional<int> linkfound,
                         std::optional<std::string> softtype) {
        SiteRow row = site(static_cast<int>(rows.size()) + 1, description);
        row.referral = referral;
        row.linkfound = linkfound;
        row.softtype = std::move(softtype);
        rows.push_back(row);
    };
    add("no rank", std::nullopt, std::nullopt, "1=general");
    add("low", 1, 9, "1=general");
    add("high", 20, 0, "9=special");
    add("link", 20, 1, "9=special");
    add("b", 5, 0, "2=game");
    add("A", 5, 0, "2=game");
    add("z", 5, 0, "1=general");
    add("null category", 5, 0, std::nullopt);
    this->libraries.create(lib, rows);
    EXPECT_THAT(this->keys(queue("PAD = 'PAD'")), ElementsAre(4, 3, 8, 7, 6, 5, 2, 1));
}

TYPED_TEST(DatabaseContract, SeveralCategoriesMakeOneQueueInOneOrder) {
    std::vector<SiteRow> rows;
    for (int key = 1; key <= 12; ++key) {
        rows.push_back(site(key, "Site " + std::to_string(key)));
        rows.back().softtype = category_labels.at(static_cast<std::size_t>(key % 6));
        rows.back().referral = key * 7 % 5;
        if (key % 4 == 0)
            rows.back().status = "Y";
    }
    this->libraries.create(lib, rows);
    // referral: 1:2 2:4 3:1 5:0 6:2 7:4 9:3 10:0 11:2; categories: 1 and 7 game, 3 and 9 business, 5 and 11
    // special.
    const std::string filter =
        "PAD = 'PAD' and (softtype = '2=game' or softtype = '4=business' or softtype = '9=special')";
    EXPECT_THAT(this->keys(queue(filter)), ElementsAre(7, 9, 1, 11, 3, 5));
    EXPECT_EQ(this->counted(count(filter)), 6);
}

TYPED_TEST(DatabaseContract, CategoriesLeaveOutNullAndTheirAbsenceIncludesIt) {
    SiteRow null = site(1, "Null");
    null.softtype = std::nullopt;
    this->libraries.create(lib, {null, site(2, "General")});
    EXPECT_THAT(this->keys(queue("PAD = 'PAD'")), ElementsAre(1, 2));
    EXPECT_EQ(this->counted(count("PAD = 'PAD'")), 2);
    const std::string every =
        "PAD = 'PAD' and (softtype = '1=general' or softtype = '2=game' or softtype = "
        "'3=developer' or softtype = '4=business' or softtype = '5=freeware' or softtype = "
        "'9=special')";
    EXPECT_THAT(this->keys(queue(every)), ElementsAre(2));
    EXPECT_EQ(this->counted(count(every)), 1);
}

TYPED_TEST(DatabaseContract, CountOfNothingIsOneRowWithZero) {
    this->libraries.create(lib, {});
    const auto rows = this->open(count("PAD <> 'PAD'"));
    ASSERT_FALSE(rows->at_end());
    EXPECT_EQ(rows->number("CNT"), 0);
    EXPECT_THROW(rows->delete_current(), DatabaseError);
    EXPECT_THROW(rows->set("cnt", std::int64_t{1}), DatabaseError);
    rows->move_next();
    EXPECT_TRUE(rows->at_end());
}

TYPED_TEST(DatabaseContract, UpdateStoresWhatWasSetAndNothingElse) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    std::vector<SiteRow> expected = this->libraries.sites(lib);
    {
        const auto rows = this->open(by_key(2));
        rows->set("Status", std::string("P"));
        rows->set("note", std::string("it's \"here\"; -- \xC3\xA9"));
        rows->set("status", std::string("Y"));
        rows->set("softtype", DatabaseValue{});
        rows->set("linkfound", std::int64_t{-3});
        rows->update();
        EXPECT_EQ(rows->text("status"), "Y");
        EXPECT_EQ(rows->number("linkfound"), -3);
    }
    expected[1].status = "Y";
    expected[1].note = "it's \"here\"; -- \xC3\xA9";
    expected[1].softtype = std::nullopt;
    expected[1].linkfound = -3;
    EXPECT_EQ(this->libraries.sites(lib), expected);
}

TYPED_TEST(DatabaseContract, ValueThatIsSetAndNotStoredIsDropped) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    const auto before = this->libraries.sites(lib);
    {
        const auto rows = this->open(list_pad);
        rows->set("status", std::string("Y"));
        EXPECT_EQ(rows->text("status"), "N");
        rows->move_next();
        rows->update();
        rows->set("status", std::string("Y"));
    }
    EXPECT_EQ(this->libraries.sites(lib), before);
}

TYPED_TEST(DatabaseContract, DeletingAffectsTheCurrentRowOnly) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two"), site(3, "Zzz")});
    const auto rows = this->open(list_pad);
    rows->move_next();
    rows->delete_current();
    EXPECT_THROW((void)rows->text("url"), DatabaseError);
    EXPECT_THROW(rows->delete_current(), DatabaseError);
    rows->move_next();
    EXPECT_EQ(rows->number("padkey"), 3);
    rows->move_next();
    EXPECT_TRUE(rows->at_end());
    EXPECT_EQ(this->libraries.sites(lib), (std::vector<SiteRow>{site(1, "One"), site(3, "Zzz")}));
}

TYPED_TEST(DatabaseContract, WalkThatChangesWhatItIsOrderedByMeetsEachRowOnce) {
    std::vector<SiteRow> rows;
    rows.reserve(1200);
    for (int key = 0; key < 1200; ++key)
        rows.push_back(site(key, "site " + std::to_string(100000 + key)));
    this->libraries.create(lib, rows);
    int met = 0;
    for (const auto walk = this->open(list_pad); !walk->at_end(); walk->move_next()) {
        EXPECT_EQ(walk->number("padkey"), met++);
        walk->set("description", "zzz " + *walk->text("description"));
        walk->set("pad", std::string("NO"));
        walk->update();
    }
    EXPECT_EQ(met, 1200);
    EXPECT_THAT(this->keys(list_pad), IsEmpty());
    EXPECT_EQ(this->keys(list_no_pad).size(), 1200U);
}

TYPED_TEST(DatabaseContract, WalkThatIsGivenUpKeepsTheRowsItChanged) {
    this->libraries.create(lib, {site(1, "1"), site(2, "2"), site(3, "3"), site(4, "4")});
    {
        const auto rows = this->open(list_pad);
        for (int i = 0; i < 3; ++i) {
            rows->set("status", std::string("Y"));
            rows->update();
            rows->move_next();
        }
    }
    std::string statuses;
    for (const SiteRow& row : this->libraries.sites(lib))
        statuses += *row.status;
    EXPECT_EQ(statuses, "YYYN");
}

TYPED_TEST(DatabaseContract, RowThatCannotBeStoredLeavesThoseBeforeItChanged) {
    this->libraries.create(lib, {site(1, "1"), site(2, "2"), site(3, "3"), site(4, "4")});
    {
        const auto rows = this->open(list_pad);
        for (int i = 0; i < 3; ++i, rows->move_next()) {
            rows->set("note", std::string("new"));
            rows->update();
        }
        rows->set("status", DatabaseValue{});
        EXPECT_THROW(rows->update(), DatabaseError);
    }
    std::string notes;
    for (const SiteRow& row : this->libraries.sites(lib))
        notes += *row.note + ",";
    EXPECT_EQ(notes, "new,new,new,,");
}

TYPED_TEST(DatabaseContract, ChangesOfAWalkAreSeenByTheNextOpeningWhileTheWalkGoesOn) {
    this->libraries.create(lib, {site(1, "1"), site(2, "2"), site(3, "3"), site(4, "4")});
    const auto walk = this->open(list_pad);
    for (int i = 0; i < 2; ++i, walk->move_next()) {
        walk->set("status", std::string("Y"));
        walk->update();
    }
    EXPECT_EQ(this->counted(count("PAD = 'PAD'")), 2);
    {
        const auto other = this->open(by_key(4));
        other->set("note", std::string("in between"));
        other->update();
    }
    walk->set("status", std::string("P"));
    walk->update();
    walk->move_next();
    EXPECT_EQ(walk->text("note"), "in between");
    EXPECT_EQ(this->counted(count("PAD = 'PAD'")), 1);
}

TYPED_TEST(DatabaseContract, RowThatAnotherProgramDeletedIsPassedOver) {
    this->libraries.create(lib, {site(1, "1"), site(2, "2"), site(3, "3")});
    const auto walk = this->open(list_pad);
    walk->set("status", std::string("Y"));
    walk->update();
    this->libraries.delete_behind_the_back(lib, 2);
    walk->move_next();
    EXPECT_EQ(walk->number("padkey"), 3);
}

TYPED_TEST(DatabaseContract, ReferralsAreFoundByEitherAddressWithoutRegardToCase) {
    this->libraries.create_referrals("referral2.mdb",
                                     {{"http://a.example/", 5}, {"HTTP://A.example", 7}, {"", 9}});
    const auto hits = [this](const std::string& url, const std::string& alternative) {
        std::vector<std::int64_t> hits;
        const auto rows =
            this->open("select * from referral2 where url = '" + url + "' or url = '" + alternative + "'",
                       "referral2.mdb");
        for (; !rows->at_end(); rows->move_next())
            hits.push_back(rows->number("hitcount").value());
        return hits;
    };
    EXPECT_THAT(hits("http://a.example/", "http://a.example"), ElementsAre(5, 7));
    EXPECT_THAT(hits("http://a.example", "http://a.example/"), ElementsAre(7, 5));
    EXPECT_THAT(hits("http://a.example", "HTTP://A.EXAMPLE"), ElementsAre(7));
    EXPECT_THAT(hits("http://b.example", ""), ElementsAre(9));
    EXPECT_THAT(hits("http://b.example/", "http://b.example"), IsEmpty());
}

TYPED_TEST(DatabaseContract, StatementOfNoKnownShapeDoesNotRun) {
    this->libraries.create(lib, {site(1, "One")});
    const auto before = this->libraries.sites(lib);
    for (const std::string text : {"delete from tblSubmitList", "select * from tblSubmitList", "",
                                   "select * from tblSubmitList where url = 'it's'",
                                   "select * from tblSubmitList where url = 'x' or url = 'y'"})
        EXPECT_THROW(this->open(text), DatabaseError) << text;
    EXPECT_EQ(this->libraries.sites(lib), before);
}

TYPED_TEST(DatabaseContract, MissingFileOrTableIsAnError) {
    EXPECT_THROW(this->open(all), DatabaseError);
    this->libraries.create_referrals("other.mdb", {});
    EXPECT_THROW(this->open(all, "other.mdb"), DatabaseError);
    this->libraries.create(lib, {});
    EXPECT_THROW(this->open("select * from referral2 where url = 'a' or url = ''"), DatabaseError);
}

TYPED_TEST(DatabaseContract, LockedFileIsAnErrorUntilItIsLetGo) {
    this->libraries.create(lib, {site(1, "One")});
    {
        const Guard locked = this->libraries.lock(lib);
        EXPECT_THROW(this->open(all), DatabaseError);
    }
    EXPECT_THAT(this->keys(all), ElementsAre(1));
}

TYPED_TEST(DatabaseContract, ReadOnlyFileIsReadAndNotWritten) {
    this->libraries.create(lib, {site(1, "One")});
    const auto before = this->libraries.sites(lib);
    {
        const Guard read_only = this->libraries.make_read_only(lib);
        const auto rows = this->open(by_key(1));
        EXPECT_EQ(rows->text("description"), "One");
        rows->set("status", std::string("Y"));
        EXPECT_THROW(rows->update(), DatabaseError);
        EXPECT_THROW(rows->delete_current(), DatabaseError);
    }
    EXPECT_EQ(this->libraries.sites(lib), before);
}

TYPED_TEST(DatabaseContract, ColumnThatTheStatementNeedsAndTheTableLacksIsAnError) {
    this->libraries.create_without("no_pad.mdb", "pad", {site(1, "One")});
    EXPECT_THROW(this->open(list_pad, "no_pad.mdb"), DatabaseError);
    EXPECT_THROW(this->open(list_no_pad, "no_pad.mdb"), DatabaseError);
    EXPECT_THROW(this->open(count("PAD = 'PAD'"), "no_pad.mdb"), DatabaseError);
    EXPECT_EQ(this->open(by_key(1), "no_pad.mdb")->text("description"), "One");
    this->libraries.create_without("no_note.mdb", "note", {site(1, "One")});
    const auto rows = this->open(by_key(1), "no_note.mdb");
    rows->set("status", std::string("Y"));
    EXPECT_THROW(rows->set("note", std::string("x")), DatabaseError);
}

TYPED_TEST(DatabaseContract, ColumnsBeyondTheKnownOnesAreLeftAlone) {
    this->libraries.create_loose(lib, {site(1, "One")});
    {
        const auto rows = this->open(by_key(1));
        rows->set("status", std::string("Y"));
        rows->update();
    }
    EXPECT_EQ(this->libraries.extra(lib), "kept");
    EXPECT_EQ(this->libraries.sites(lib).front().status, "Y");
}

TYPED_TEST(DatabaseContract, LibraryWithoutOurIndexesGivesTheSameRowsInTheSameOrder) {
    std::vector<SiteRow> rows;
    for (int key = 1; key <= 60; ++key) {
        rows.push_back(site(key, "Site " + std::to_string(key * 37 % 61)));
        rows.back().softtype = category_labels.at(static_cast<std::size_t>(key % 6));
        rows.back().pad = key % 2 == 0 ? "PAD" : "NO";
        rows.back().referral = key % 3;
    }
    this->libraries.create(lib, rows);
    this->libraries.create_loose("loose.mdb", rows);
    for (const std::string where : {"PAD = 'PAD'", "PAD <> 'PAD'", "PAD = 'PAD' and (softtype = '1=general')",
                                    "PAD <> 'PAD' and (softtype = '2=game' or softtype = '4=business')"}) {
        std::vector<std::int64_t> loose;
        for (const auto walk = this->open(queue(where), "loose.mdb"); !walk->at_end(); walk->move_next())
            loose.push_back(walk->number("padkey").value());
        EXPECT_EQ(this->keys(queue(where)), loose);
        EXPECT_FALSE(loose.empty());
        EXPECT_EQ(this->counted(count(where)), static_cast<std::int64_t>(loose.size()));
        EXPECT_EQ(this->open(count(where), "loose.mdb")->number("cnt"),
                  static_cast<std::int64_t>(loose.size()));
    }
}

TYPED_TEST(DatabaseContract, CopyHoldsTheSameSites) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    this->libraries.database.copy(this->libraries.path(lib), this->libraries.path("copy.mdb"));
    EXPECT_EQ(this->libraries.sites("copy.mdb"), this->libraries.sites(lib));
}

TYPED_TEST(DatabaseContract, CopyReplacesWhatIsThere) {
    this->libraries.create(lib, {site(1, "One")});
    this->libraries.create("copy.mdb", {site(7, "Seven"), site(8, "Eight")});
    this->libraries.database.copy(this->libraries.path(lib), this->libraries.path("copy.mdb"));
    EXPECT_EQ(this->libraries.sites("copy.mdb"), this->libraries.sites(lib));
}

TYPED_TEST(DatabaseContract, CopyHasWhatAnUnfinishedWalkHasChanged) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two"), site(3, "Three")});
    const auto walk = this->open(all);
    for (; !walk->at_end(); walk->move_next()) {
        walk->set("status", std::string("Y"));
        walk->update();
        if (walk->number("padkey") == 2)
            this->libraries.database.copy(this->libraries.path(lib), this->libraries.path("copy.mdb"));
    }
    const auto copied = this->libraries.sites("copy.mdb");
    EXPECT_EQ(copied.at(0).status, "Y");
    EXPECT_EQ(copied.at(1).status, "Y");
    EXPECT_EQ(copied.at(2).status, "N");
}

TYPED_TEST(DatabaseContract, CopyThatFailsLeavesTheTargetAsItWas) {
    this->libraries.create("copy.mdb", {site(7, "Seven")});
    const auto before = this->libraries.sites("copy.mdb");
    const auto copy = [this](const std::string& from) {
        this->libraries.database.copy(this->libraries.path(from), this->libraries.path("copy.mdb"));
    };
    EXPECT_THROW(copy("missing.mdb"), DatabaseError);
    this->libraries.create(lib, {site(1, "One")});
    {
        const Guard locked = this->libraries.lock(lib);
        EXPECT_THROW(copy(lib), DatabaseError);
    }
    EXPECT_EQ(this->libraries.sites("copy.mdb"), before);
}

} // namespace
} // namespace kestrune
