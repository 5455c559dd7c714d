#include "child_process.h"
#include "libraries.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};
constexpr int site_count = 20;
constexpr int writes = 60;

std::string address(int key) { return "http://site" + std::to_string(key) + ".example/"; }

class TwoPrograms : public testing::Test {
protected:
    TwoPrograms() {
        std::vector<SiteRow> rows;
        for (int key = 1; key <= site_count; ++key)
            rows.push_back(site(key, "Site"));
        libraries.create(lib, rows);
    }
    // Marks every second site, from `first` on, again and again. A write that another program keeps waiting
    // for too long is lost as a whole, which is how an error ends; so each is repeated until it is there.
    void mark(int first, const std::string& name) {
        for (int i = 0; i < writes; ++i) {
            const int key = first + i * 2 % site_count;
            const std::string note = name + std::to_string(i);
            do {
                library.UpdateSubmitStatus(lib, address(key), "Y", note);
            } while (stored_note(key) != note);
        }
    }
    std::optional<std::string> stored_note(int key) {
        try {
            SqliteDatabase database;
            return database
                .open(libraries.path(lib),
                      "select * from tblSubmitList where padkey = " + std::to_string(key))
                ->text("note");
        } catch (const DatabaseError&) {
            return std::nullopt;
        }
    }

    SqliteLibraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
};

TEST_F(TwoPrograms, EachWriteChangesTheAddressedRowAndNoOther) {
    ChildProcess other{[this] { mark(2, "other"); }};
    mark(1, "own");
    EXPECT_TRUE(other.wait());
    for (const SiteRow& row : libraries.sites(lib)) {
        const bool own = row.padkey % 2 == 1;
        const int last = writes - site_count / 2 + (row.padkey - 1) / 2;
        SiteRow expected = site(row.padkey, "Site");
        expected.status = "Y";
        expected.note = (own ? "own" : "other") + std::to_string(last);
        EXPECT_EQ(row, expected);
    }
}

// The pauses that a ranking makes are short; on a machine that is too busy to notice one of them a mark may
// still be lost, hence not every single one is asked for.
TEST_F(TwoPrograms, MarksAreStoredWhileTheOtherProgramRanks) {
    std::vector<SiteRow> rows;
    for (int key = 1; key <= 20000; ++key)
        rows.push_back(site(key, "Site"));
    libraries.create("ranked.mdb", rows);
    std::filesystem::rename(libraries.path("ranked.mdb"), libraries.path(lib));
    libraries.create_referrals(std::string(referral_database_name), {{"http://site1.example", 5}});
    constexpr int marks = 60;
    int stored = 0;
    ChildProcess other{[this] {
        const ReferralRanking ranking{libraries.database, libraries.files, libraries.folder};
        while (ranking.RecomputeReferralRanks({}).rewritten > 0) {
        }
    }};
    for (int key = 1; key <= marks; ++key) {
        library.UpdateSubmitStatus(lib, address(key), "Y", "marked");
        stored += stored_note(key) == "marked" ? 1 : 0;
    }
    other.kill_after({});
    EXPECT_GE(stored, marks * 9 / 10);
}

TEST_F(TwoPrograms, LaterWriteOfARowWins) {
    library.UpdateSubmitStatus(lib, address(1), "Y", "first");
    ChildProcess other{[this] { library.UpdateSubmitStatus(lib, address(1), "P", "second"); }};
    EXPECT_TRUE(other.wait());
    EXPECT_EQ(libraries.sites(lib)[0].note, "second");
    library.UpdateSubmitStatus(lib, address(1), "N", "third");
    EXPECT_EQ(libraries.sites(lib)[0].note, "third");
    EXPECT_EQ(libraries.sites(lib)[0].status, "N");
}

TEST_F(TwoPrograms, RowDeletedByTheOtherIsNotFoundAndNothingElseChanges) {
    ChildProcess other{[this] { library.DeleteSiteRecord(lib, "K5"); }};
    EXPECT_TRUE(other.wait());
    const auto before = libraries.sites(lib);
    EXPECT_FALSE(library.UpdateSubmitStatus(lib, address(5), "Y", ""));
    EXPECT_FALSE(library.UpdateSiteRecord(lib, "K5", "a", "b", "N", "", ""));
    EXPECT_EQ(libraries.sites(lib), before);
}

} // namespace
} // namespace kestrune
