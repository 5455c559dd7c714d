#include "library/library_backup.h"

#include "libraries.h"
#include "library/site_library.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrune {
namespace {

const std::string lib{site_library_name};
const std::string copy = "backup/" + lib;

template <typename Libraries>
class LibraryBackupTest : public testing::Test {
protected:
    LibraryBackupTest() {
        libraries.files.create_folder(libraries.folder);
        libraries.create(lib, {site(1, "One"), site(2, "Two")});
    }

    Libraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    LibraryBackup backup{libraries.database, libraries.files, libraries.folder};
};
TYPED_TEST_SUITE(LibraryBackupTest, EveryLibrary);

TYPED_TEST(LibraryBackupTest, CopyInTheBackupFolderHoldsTheSitesAsTheyWere) {
    const auto before = this->libraries.sites(lib);
    EXPECT_TRUE(this->backup.BackUp(lib));
    this->library.DeleteSiteRecord(lib, "K1");
    EXPECT_EQ(this->libraries.sites(copy), before);
    EXPECT_EQ(this->backup.copy_path(lib), this->libraries.path(copy));
}

TYPED_TEST(LibraryBackupTest, LaterBackupReplacesTheEarlierOne) {
    this->backup.BackUp(lib);
    this->library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "");
    const auto before = this->libraries.sites(lib);
    EXPECT_TRUE(this->backup.BackUp(lib));
    EXPECT_EQ(this->libraries.sites(copy), before);
}

TYPED_TEST(LibraryBackupTest, OnlyTheFirstDeleteOfARunIsPrecededByABackup) {
    const auto before = this->libraries.sites(lib);
    for (const char* const key : {"K1", "K2"}) {
        this->backup.BackUpBeforeDelete(lib);
        EXPECT_TRUE(this->library.DeleteSiteRecord(lib, key));
    }
    EXPECT_EQ(this->libraries.sites(copy), before);
    EXPECT_TRUE(this->libraries.sites(lib).empty());
}

TYPED_TEST(LibraryBackupTest, FailedBackupBeforeADeleteIsTriedAgainBeforeTheNext) {
    {
        const Guard locked = this->libraries.lock(lib);
        this->backup.BackUpBeforeDelete(lib);
    }
    this->backup.BackUpBeforeDelete(lib);
    EXPECT_EQ(this->libraries.sites(copy), this->libraries.sites(lib));
}

TYPED_TEST(LibraryBackupTest, LibraryThatIsMissingIsNotBackedUp) {
    EXPECT_FALSE(this->backup.BackUp("x.mdb"));
}

} // namespace
} // namespace kestrune
