#include "libraries.h"
#include "library/library_backup.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "library/submit_status.h"

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
    DiskTrouble() {
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
