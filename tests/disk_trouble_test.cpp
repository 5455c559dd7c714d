#include "jet_samples.h"
#include "libraries.h"
#include "library/library_backup.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "library/submit_status.h"
#include "platform/jet/jet_conversion.h"
#include "platform/sqlite/table_file.h"
#include "small_disk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

const std::string lib{site_library_name};

// Every operation that writes, on a disk that takes nothing any more: it ends as an error does, and the
// library is whole and as it was.
class DiskTrouble : public testing::Test {
protected:
    DiskTrouble() { create(); }

    void create() {
        libraries.create(lib, {site(1, "One"), site(2, "Two"), site(3, "Three")});
        libraries.create_referrals(std::string(referral_database_name), {{"http://site1.example", 5}});
        before = libraries.sites(lib);
        bytes = bytes_of(libraries.path(lib));
    }

    struct Operation {
        const char* name;
        std::function<void()> run;
    };
    std::vector<Operation> operations() {
        return {
            {"mark",
             [this] { EXPECT_TRUE(library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "note")); }},
            {"edit", [this] { EXPECT_TRUE(library.UpdateSiteRecord(lib, "K2", "a", "b", "Y", "c", "d")); }},
            {"delete", [this] { EXPECT_TRUE(library.DeleteSiteRecord(lib, "K3")); }},
            {"link found", [this] { EXPECT_TRUE(library.SetLinkFound(lib, "http://site1.example/", 1)); }},
            {"reset", [this] { ResetSiteStatus(library, lib, list, true); }},
            {"rank",
             [this] {
                 const ReferralRanking ranking{libraries.database, libraries.files, libraries.folder};
                 EXPECT_EQ(ranking.RecomputeReferralRanks({}).end, RankingSummary::End::Failed);
             }},
            {"back up", [this] {
                 EXPECT_FALSE(
                     LibraryBackup(libraries.database, libraries.files, libraries.folder).BackUp(lib));
             }}};
    }
    void expect_as_it_was(const char* operation) {
        EXPECT_EQ(libraries.sites(lib), before) << operation;
        EXPECT_EQ(bytes_of(libraries.path(lib)), bytes) << operation;
        EXPECT_FALSE(fs::exists(libraries.path(lib) + "-journal")) << operation;
        EXPECT_FALSE(fs::exists(libraries.path("backup/" + lib))) << operation;
    }

    SqliteLibraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    ListView list{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    std::vector<SiteRow> before;
    std::string bytes;
};

TEST_F(DiskTrouble, FullDiskEndsEveryOperationAndLeavesTheLibraryWhole) {
    for (const Operation& operation : operations()) {
        {
            const FileSizeLimit full{64};
            operation.run();
        }
        expect_as_it_was(operation.name);
    }
}

TEST_F(DiskTrouble, DiskWithNoByteLeftEndsEveryOperationAndLeavesTheLibraryWhole) {
    const SmallDisk tried = on_small_disk(libraries.folder, "256k", [this] {
        create();
        fill_disk(libraries.folder);
        for (const Operation& operation : operations()) {
            operation.run();
            expect_as_it_was(operation.name);
        }
        fs::remove(libraries.path("filler"));
        EXPECT_TRUE(library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "there is room again"));
        EXPECT_EQ(libraries.sites(lib)[0].note, "there is room again");
    });
    if (tried == SmallDisk::NotToBeHad)
        GTEST_SKIP() << "no small file system can be mounted here: not run";
    EXPECT_EQ(tried, SmallDisk::Done);
}

TEST_F(DiskTrouble, DiskThatFillsUpDuringAConversionLeavesTheOriginal) {
    KESTRUNE_NEED_JET_SAMPLES();
    const std::string original = bytes_of(jet_sample("sites-2003.mdb"));
    const SmallDisk tried = on_small_disk(libraries.folder, "300k", [&] {
        write_bytes(libraries.path(lib), original);
        const auto outcomes = JetConversions{jet_files_in(libraries.folder), create_table_file}.finish();
        EXPECT_EQ(outcomes[0], JetOutcome::NotWritten);
        EXPECT_EQ(bytes_of(libraries.path(lib)), original);
        const fs::directory_iterator left{libraries.folder};
        EXPECT_EQ(std::distance(begin(left), end(left)), 1) << "something is left over";
    });
    if (tried == SmallDisk::NotToBeHad)
        GTEST_SKIP() << "no small file system can be mounted here: not run";
    EXPECT_EQ(tried, SmallDisk::Done);
}

TEST_F(DiskTrouble, ReadOnlyFolderEndsEveryOperationAndLeavesTheLibraryWhole) {
    fs::permissions(libraries.path(lib), fs::perms(0444));
    fs::permissions(libraries.folder, fs::perms(0555));
    for (const Operation& operation : operations()) {
        {
            const OrdinaryUser user;
            operation.run();
        }
        expect_as_it_was(operation.name);
    }
}

} // namespace
} // namespace kestrune
