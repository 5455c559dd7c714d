#include "platform/disk/program_folder.h"

#include "app/library_start.h"
#include "jet_samples.h"
#include "libraries.h"
#include "library/site_library.h"
#include "platform/jet/jet_header.h"
#include "platform/sqlite/table_file.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

const std::string lib{site_library_name};

// A machine on which the program is installed under "usr", with one user.
class ProgramFolder : public testing::Test {
protected:
    ProgramFolder() {
        for (const char* const folder : {"usr/bin", "usr/share/kestrune", "home/data"})
            fs::create_directories(libraries.path(folder));
    }
    ProgramFolders find() {
        return find_program_folders(libraries.path("usr/bin"), libraries.path("home/data"));
    }
    void ship(const std::vector<SiteRow>& rows) {
        fs::remove(libraries.path("usr/share/kestrune/" + lib));
        libraries.create("usr/share/kestrune/" + lib, rows);
    }
    void start() { LibraryStart{find()}.finish(); }
    std::vector<SiteRow> users_sites() { return libraries.sites("home/data/kestrune/" + lib); }

    SqliteLibraries libraries;
};

TEST_F(ProgramFolder, CopyWithALibraryBesideItRunsFromItsOwnFolder) {
    ship({});
    libraries.create("usr/bin/" + lib, {});
    const ProgramFolders found = find();
    EXPECT_EQ(found.folder, libraries.path("usr/bin"));
    EXPECT_EQ(found.shared_library, "");
}

TEST_F(ProgramFolder, CopyInAFolderThatCanBeWrittenToRunsFromThere) {
    EXPECT_EQ(find().folder, libraries.path("usr/bin"));
}

TEST_F(ProgramFolder, InstalledCopyKeepsWhatBelongsToTheUserInTheDataFolder) {
    ship({site(1, "One")});
    const ProgramFolders found = find();
    EXPECT_EQ(found.folder, libraries.path("home/data/kestrune"));
    EXPECT_EQ(found.shared_library, libraries.path("usr/share/kestrune/" + lib));
}

TEST_F(ProgramFolder, CopyInAReadOnlyFolderWithoutALibraryUsesTheDataFolder) {
    fs::permissions(libraries.path("usr/bin"), fs::perms(0555));
    const OrdinaryUser user;
    EXPECT_EQ(find().folder, libraries.path("home/data/kestrune"));
}

TEST_F(ProgramFolder, UserWithoutADataFolderGetsTheFolderOfTheExecutable) {
    ship({});
    EXPECT_EQ(find_program_folders(libraries.path("usr/bin"), "").folder, libraries.path("usr/bin"));
}

TEST_F(ProgramFolder, FirstStartSeedsTheUsersLibraryForThatUserAlone) {
    ship({site(1, "One")});
    start();
    EXPECT_EQ(users_sites(), std::vector<SiteRow>{site(1, "One")});
    EXPECT_EQ(fs::status(libraries.path("home/data/kestrune")).permissions(), fs::perms(0700));
}

TEST_F(ProgramFolder, LaterStartLeavesTheUsersLibraryAlone) {
    ship({site(1, "One")});
    start();
    const std::string users = libraries.path("home/data/kestrune/" + lib);
    SqliteDatabase database;
    DiskFiles files;
    SiteLibrary library{database, files, libraries.path("home/data/kestrune")};
    EXPECT_TRUE(library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "done"));
    const std::string bytes = bytes_of(users);
    start();
    EXPECT_EQ(bytes_of(users), bytes);
}

TEST_F(ProgramFolder, LaterVersionAddsItsNewSitesAndKeepsTheUsersRows) {
    ship({site(1, "One"), site(2, "Two")});
    start();
    SqliteDatabase database;
    DiskFiles files;
    SiteLibrary library{database, files, libraries.path("home/data/kestrune")};
    library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "done");
    library.DeleteSiteRecord(lib, "K2");
    const SiteRow marked = users_sites().at(0);
    ship({site(1, "Renamed"), site(2, "Two"), site(3, "Three")});
    start();
    SiteRow fresh = site(3, "Three");
    fresh.padkey = 2;
    EXPECT_EQ(users_sites(), (std::vector<SiteRow>{marked, fresh}));
    EXPECT_EQ(libraries.sites("home/data/kestrune/backup/" + lib), std::vector<SiteRow>{marked});
}

TEST_F(ProgramFolder, UsersOwnSiteStaysWhenALaterVersionBringsTheSame) {
    ship({});
    start();
    SiteRow own = site(1, "My name for it");
    own.note = "mine";
    fs::remove(libraries.path("home/data/kestrune/" + lib));
    libraries.create("home/data/kestrune/" + lib, {own});
    ship({site(1, "Their name")});
    start();
    EXPECT_EQ(users_sites(), std::vector<SiteRow>{own});
}

TEST_F(ProgramFolder, DataFolderThatCannotBeMadeDoesNotEndTheStart) {
    ship({site(1, "One")});
    fs::permissions(libraries.path("home/data"), fs::perms(0555));
    const OrdinaryUser user;
    EXPECT_NO_THROW(start());
    EXPECT_FALSE(fs::exists(libraries.path("home/data/kestrune")));
}

TEST_F(ProgramFolder, AccessLibraryBesideTheProgramIsConvertedAtTheStart) {
    KESTRUNE_NEED_JET_SAMPLES();
    fs::copy_file(jet_sample("sites-2003.mdb"), libraries.path("usr/bin/" + lib));
    LibraryStart start{find()};
    EXPECT_TRUE(start.converting());
    start.finish();
    EXPECT_FALSE(start.converting());
    EXPECT_EQ(libraries.sites("usr/bin/" + lib).size(), jet_contents("sites-2003.tsv").rows.size());
}

// Access files whose conversion goes no further than the test lets it: the writer of the new file waits for a
// byte in a pipe before each row.
class SlowConversion : public ProgramFolder {
protected:
    SlowConversion() {
        if (::pipe(gate.data()) != 0)
            throw std::runtime_error("no pipe");
    }
    ~SlowConversion() override {
        ::close(gate[0]);
        ::close(gate[1]);
    }
    void SetUp() override {
        KESTRUNE_NEED_JET_SAMPLES();
        fs::copy_file(jet_sample("sites-2003.mdb"), libraries.path("usr/bin/SubmitList.mdb"));
        fs::copy_file(jet_sample("referral-2000.mdb"), libraries.path("usr/bin/referral2.mdb"));
    }
    CreateTable create() {
        return [this](const std::string& path, const std::string& table,
                      const std::vector<TableColumn>& columns) {
            return std::make_unique<Waiting>(create_table_file(path, table, columns), gate[0]);
        };
    }
    // For ever.
    void open_gate() {
        const std::string bytes(4096, '.');
        ASSERT_EQ(::write(gate[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    static std::int64_t all_rows() {
        return static_cast<std::int64_t>(jet_contents("sites-2003.tsv").rows.size() +
                                         jet_contents("referral-2000.tsv").rows.size());
    }
    [[nodiscard]] std::size_t entries() const {
        const fs::directory_iterator all{libraries.path("usr/bin")};
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    std::array<int, 2> gate{};

private:
    class Waiting final : public TableWriter {
    public:
        Waiting(std::unique_ptr<TableWriter> writer, int gate) : writer_(std::move(writer)), gate_(gate) {}
        void add(const std::vector<TableValue>& row) override {
            char byte = 0;
            [[maybe_unused]] const ssize_t got = ::read(gate_, &byte, 1);
            writer_->add(row);
        }
        void finish() override { writer_->finish(); }

    private:
        std::unique_ptr<TableWriter> writer_;
        int gate_;
    };
};

TEST_F(SlowConversion, ProgressOfBothFilesIsToldAgainAndAgainWhileTheyAreConverted) {
    LibraryStart start{find(), create()};
    int told_while_waiting = 0;
    EXPECT_TRUE(start.finish([&](JetProgress rows) {
        if (rows.total == all_rows() && ++told_while_waiting == 5)
            open_gate();
        return true;
    }));
    EXPECT_GE(told_while_waiting, 5);
    EXPECT_FALSE(is_jet_file(libraries.path("usr/bin/SubmitList.mdb")));
    EXPECT_FALSE(is_jet_file(libraries.path("usr/bin/referral2.mdb")));
}

TEST_F(SlowConversion, UserWhoWouldRatherNotWaitFindsEverythingAsItWas) {
    LibraryStart start{find(), create()};
    EXPECT_FALSE(start.finish([](JetProgress) { return false; }));
    EXPECT_FALSE(start.converting());
    EXPECT_EQ(bytes_of(libraries.path("usr/bin/SubmitList.mdb")), bytes_of(jet_sample("sites-2003.mdb")));
    EXPECT_EQ(bytes_of(libraries.path("usr/bin/referral2.mdb")), bytes_of(jet_sample("referral-2000.mdb")));
    EXPECT_EQ(entries(), 2U) << "something is left over";
    EXPECT_TRUE(LibraryStart{find()}.finish()) << "and the next start converts";
    EXPECT_FALSE(is_jet_file(libraries.path("usr/bin/SubmitList.mdb")));
}

TEST_F(SlowConversion, ProgramThatEndsMeanwhileLeavesEverythingAsItWas) {
    { const LibraryStart start{find(), create()}; }
    EXPECT_EQ(bytes_of(libraries.path("usr/bin/SubmitList.mdb")), bytes_of(jet_sample("sites-2003.mdb")));
    EXPECT_EQ(entries(), 2U) << "something is left over";
}

} // namespace
} // namespace kestrune
