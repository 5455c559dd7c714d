#include "child_process.h"
#include "jet_samples.h"
#include "libraries.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "library/submit_status.h"
#include "platform/jet/jet_conversion.h"
#include "platform/jet/jet_header.h"
#include "platform/sqlite/table_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

const std::string lib{site_library_name};
constexpr int rounds = 50; // of each operation
constexpr int site_count = 24;

// The program is killed at a random moment of an operation; what it leaves is compared row by row.
class KilledProgram : public testing::Test {
protected:
    void create(const std::string& status) {
        std::vector<SiteRow> rows;
        for (int key = 1; key <= site_count; ++key) {
            rows.push_back(site(key, "Site"));
            rows.back().status = status;
            rows.back().referral = 77;
        }
        libraries.create(lib, rows);
    }
    void start_anew() {
        for (const auto& entry : fs::directory_iterator(libraries.folder))
            fs::remove_all(entry);
    }
    void kill_at_random(const std::function<void()>& work, int longest_us) {
        ChildProcess program{work};
        program.kill_after(
            std::chrono::microseconds(std::uniform_int_distribution<>(0, longest_us)(random_)));
    }
    void expect_sound() {
        const SqliteConnection database = SqliteConnection::open_existing(libraries.path(lib));
        SqliteQuery check{database, "PRAGMA integrity_check"};
        ASSERT_TRUE(check.step());
        EXPECT_EQ(std::get<std::string>(check.value(0)), "ok");
    }
    // But for the columns that the operation writes, which the test looks at itself.
    static void expect_untouched(const SiteRow& row, const SiteRow& before) {
        EXPECT_EQ(row.url, before.url);
        EXPECT_EQ(row.pad, before.pad);
        EXPECT_EQ(row.linkfound, before.linkfound);
    }

    SqliteLibraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};

private:
    std::mt19937 random_{20240229};
};

TEST_F(KilledProgram, MarkingLosesAndTearsNoRow) {
    create("N");
    const auto before = libraries.sites(lib);
    for (int round = 0; round < rounds; ++round) {
        kill_at_random(
            [this] {
                for (int i = 0;; ++i) {
                    const std::string status = i % 2 == 0 ? "Y" : "P";
                    library.UpdateSubmitStatus(
                        lib, "http://site" + std::to_string(i % site_count + 1) + ".example/", status,
                        status + std::string(static_cast<std::size_t>(i % 700), 'x'));
                }
            },
            6000);
        const auto rows = libraries.sites(lib);
        ASSERT_EQ(rows.size(), before.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            expect_untouched(rows[i], before[i]);
            EXPECT_EQ(rows[i].description, "Site");
            if (rows[i].status == "N")
                EXPECT_EQ(rows[i].note, "");
            else
                EXPECT_EQ(rows[i].note->substr(0, 1), rows[i].status);
        }
        expect_sound();
    }
}

TEST_F(KilledProgram, EditingLosesAndTearsNoRow) {
    create("N");
    const auto before = libraries.sites(lib);
    for (int round = 0; round < rounds; ++round) {
        kill_at_random(
            [this] {
                for (int i = 0;; ++i) {
                    const std::string value = std::to_string(i);
                    library.UpdateSiteRecord(lib, ListKey(i % site_count + 1), value, value, value, value,
                                             value);
                }
            },
            6000);
        const auto rows = libraries.sites(lib);
        ASSERT_EQ(rows.size(), before.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].description == "Site") {
                EXPECT_EQ(rows[i], before[i]);
                continue;
            }
            EXPECT_EQ(rows[i].url, rows[i].description);
            EXPECT_EQ(rows[i].status, rows[i].description);
            EXPECT_EQ(rows[i].softtype, rows[i].description);
            EXPECT_EQ(rows[i].note, rows[i].description);
        }
        expect_sound();
    }
}

TEST_F(KilledProgram, DeletingLosesNoOtherRow) {
    for (int round = 0; round < rounds; ++round) {
        start_anew();
        create("N");
        auto expected = libraries.sites(lib);
        kill_at_random(
            [this] {
                for (int key = 1; key <= site_count; ++key)
                    library.DeleteSiteRecord(lib, ListKey(key));
            },
            20000);
        const auto rows = libraries.sites(lib);
        // One after the other: what is left is the end of the list.
        expected.erase(expected.begin(), expected.end() - static_cast<std::ptrdiff_t>(rows.size()));
        EXPECT_EQ(rows, expected);
        expect_sound();
    }
}

TEST_F(KilledProgram, ResettingLosesAndTearsNoRow) {
    for (int round = 0; round < rounds; ++round) {
        start_anew();
        create("Y");
        const auto before = libraries.sites(lib);
        kill_at_random(
            [this] {
                ListView list{"lvwPAD", {"url", "Status", "Category", "Comment"}};
                ResetSiteStatus(library, lib, list, true);
            },
            6000);
        const auto rows = libraries.sites(lib);
        ASSERT_EQ(rows.size(), before.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            SiteRow expected = before[i];
            if (rows[i].status == "N")
                expected.status = "N";
            EXPECT_EQ(rows[i], expected);
        }
        expect_sound();
    }
}

TEST_F(KilledProgram, RankingLosesAndTearsNoRow) {
    for (int round = 0; round < rounds; ++round) {
        start_anew();
        create("N");
        libraries.create_referrals(std::string(referral_database_name), {{"http://site3.example", 9}});
        const auto before = libraries.sites(lib);
        kill_at_random(
            [this] {
                const ReferralRanking ranking{libraries.database, libraries.files, libraries.folder};
                (void)ranking.RecomputeReferralRanks({});
            },
            20000);
        const auto rows = libraries.sites(lib);
        ASSERT_EQ(rows.size(), before.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            SiteRow expected = before[i];
            if (rows[i].referral != 77)
                expected.referral = i == 2 ? 9 : 0;
            EXPECT_EQ(rows[i], expected);
        }
        expect_sound();
    }
}

TEST_F(KilledProgram, ConvertingLeavesTheOneFileOrTheOtherWhole) {
    KESTRUNE_NEED_JET_SAMPLES();
    const std::string original = bytes_of(jet_sample("sites-2003.mdb"));
    const std::size_t all = jet_contents("sites-2003.tsv").rows.size();
    const std::string path = libraries.path(lib);
    for (int round = 0; round < rounds; ++round) {
        start_anew();
        write_bytes(path, original);
        kill_at_random(
            [&] {
                convert_jet_file({path, "tblSubmitList"}, create_table_file, [](JetProgress) {});
            },
            30000);
        const std::string kept = kept_original_name(path, 1);
        if (is_jet_file(path)) {
            EXPECT_EQ(bytes_of(path), original);
        } else {
            EXPECT_EQ(libraries.sites(lib).size(), all);
            EXPECT_EQ(bytes_of(kept), original);
            expect_sound();
        }
        JetConversions{jet_files_in(libraries.folder), create_table_file}.finish();
        EXPECT_EQ(libraries.sites(lib).size(), all);
        EXPECT_EQ(bytes_of(kept), original);
        const fs::directory_iterator left{libraries.folder};
        EXPECT_EQ(std::distance(begin(left), end(left)), 2) << "something is left over";
    }
}

} // namespace
} // namespace kestrune
