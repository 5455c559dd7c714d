#include "libraries.h"
#include "platform/sqlite/site_sql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kestrune {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string lib = "SubmitList.mdb";
const std::string all = "select * from tblSubmitList order by url";
const std::string list_pad = "select * from tblSubmitList where PAD = 'PAD' order by description";
const std::string by_key_1 = "select * from tblSubmitList where padkey = 1";

class SqliteDatabaseTest : public testing::Test {
protected:
    // Every statement fails on the file, which stays as it is, alone in its folder.
    void expect_refused(const std::string& name) {
        const std::string before = bytes_of(libraries.path(name));
        const std::size_t entries = libraries.temporary.entries();
        for (const std::string& statement :
             {all, list_pad, by_key_1, std::string("select * from tblSubmitList where url = 'x'"),
              std::string("select count(*) as cnt from tblSubmitList where status = 'N' and PAD = 'PAD'")})
            EXPECT_THROW((void)libraries.database.open(libraries.path(name), statement), DatabaseError)
                << statement;
        EXPECT_EQ(bytes_of(libraries.path(name)), before);
        EXPECT_EQ(libraries.temporary.entries(), entries);
    }
    void create_by(const std::string& name, const std::vector<std::string>& statements) {
        SqliteConnection raw = SqliteConnection::create(libraries.path(name));
        for (const std::string& statement : statements)
            raw.run(statement.c_str());
    }
    // By this process.
    [[nodiscard]] bool is_open(const std::string& name) const {
        for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (std::filesystem::read_symlink(descriptor, gone) == libraries.path(name))
                return true;
        }
        return false;
    }
    // A write fails and leaves the file as it is, alone in its folder.
    void expect_write_refused() {
        const std::string before = bytes_of(libraries.path(lib));
        {
            const auto rows = libraries.database.open(libraries.path(lib), by_key_1);
            rows->set("status", std::string("Y"));
            EXPECT_THROW(rows->update(), DatabaseError);
        }
        EXPECT_EQ(bytes_of(libraries.path(lib)), before);
        EXPECT_EQ(libraries.temporary.entries(), 1U);
    }

    SqliteLibraries libraries;
};

const std::string columns =
    "padkey INTEGER PRIMARY KEY, url, description, status, softtype, pad, referral, linkfound, note";

TEST_F(SqliteDatabaseTest, MissingFileIsNotCreated) {
    EXPECT_THROW((void)libraries.database.open(libraries.path(lib), all), DatabaseError);
    EXPECT_EQ(libraries.temporary.entries(), 0U);
}

TEST_F(SqliteDatabaseTest, NoNameAndTheNamesOfDatabasesInMemoryAreRefused) {
    for (const char* const path : {"", ":memory:", "file::memory:?cache=shared"})
        EXPECT_THROW((void)libraries.database.open(path, all), DatabaseError);
}

TEST_F(SqliteDatabaseTest, FolderIsRefused) {
    std::filesystem::create_directory(libraries.path(lib));
    EXPECT_THROW((void)libraries.database.open(libraries.path(lib), all), DatabaseError);
}

TEST_F(SqliteDatabaseTest, FileOfAnotherKindIsRefusedAndLeftAlone) {
    write_bytes(libraries.path("zero"), "");
    write_bytes(libraries.path("short"), "SQLite");
    write_bytes(libraries.path("text"), std::string(5000, 'x'));
    write_bytes(libraries.path("access"),
                std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(8000, '\1'));
    write_bytes(libraries.path("header"), std::string("SQLite format 3\0", 16));
    write_bytes(libraries.path("garbage"), std::string("SQLite format 3\0", 16) + std::string(8000, '\x7f'));
    for (const char* const name : {"zero", "short", "text", "access", "header", "garbage"})
        expect_refused(name);
}

TEST_F(SqliteDatabaseTest, JournalBesideAFileOfAnotherKindIsNotPlayedBackIntoIt) {
    // Left by a crash in the middle of a change.
    libraries.create(lib, {site(1, "One")});
    {
        SqliteConnection raw = SqliteConnection::open_existing(libraries.path(lib));
        raw.run("PRAGMA synchronous = OFF"); // what the journal holds so far counts at once
        raw.run("BEGIN EXCLUSIVE");
        raw.run("UPDATE tblSubmitList SET note = hex(zeroblob(100000))");
        std::filesystem::copy_file(libraries.path(lib + "-journal"), libraries.path("kept"));
        raw.run("ROLLBACK");
    }
    for (const std::string& foreign :
         {std::string("not a database, but long enough to be written over"), std::string()}) {
        write_bytes(libraries.path("other.mdb"), foreign);
        std::filesystem::copy_file(libraries.path("kept"), libraries.path("other.mdb-journal"),
                                   std::filesystem::copy_options::overwrite_existing);
        expect_refused("other.mdb");
    }
}

TEST_F(SqliteDatabaseTest, TruncatedLibraryIsRefusedAndLeftAlone) {
    std::vector<SiteRow> rows;
    for (int key = 1; key <= 500; ++key)
        rows.push_back(site(key, "Site " + std::to_string(key)));
    libraries.create(lib, rows);
    const auto size = std::filesystem::file_size(libraries.path(lib));
    for (const auto cut : {size - 1, size - 4096, size / 2, std::uintmax_t{4096}, std::uintmax_t{100}}) {
        std::filesystem::resize_file(libraries.path(lib), cut);
        expect_refused(lib);
    }
}

TEST_F(SqliteDatabaseTest, TableWithoutRowNumbersAndViewAreRefusedAndLeftAlone) {
    create_by("without", {"CREATE TABLE tblSubmitList(" + columns + ") WITHOUT ROWID"});
    create_by("view", {"CREATE TABLE t(" + columns + ")", "CREATE VIEW tblSubmitList AS SELECT * FROM t"});
    create_by("hidden", {"CREATE TABLE tblSubmitList(" + columns + ", _RowId_)"});
    create_by("none", {"CREATE TABLE other(x)"});
    for (const char* const name : {"view", "none"})
        expect_refused(name);
    // Nothing tells the rows of these apart, so none is given out; counting them is all that works.
    for (const char* const name : {"without", "hidden"}) {
        const std::string before = bytes_of(libraries.path(name));
        for (const std::string& statement : {all, list_pad, by_key_1})
            EXPECT_THROW((void)libraries.database.open(libraries.path(name), statement), DatabaseError);
        EXPECT_EQ(bytes_of(libraries.path(name)), before);
    }
}

TEST_F(SqliteDatabaseTest, MissingColumnIsNeverTakenForAText) {
    create_by(lib, {"CREATE TABLE tblSubmitList(padkey, url, description, status)",
                    "INSERT INTO tblSubmitList VALUES(1, 'u', 'd', 'N')"});
    EXPECT_THROW((void)libraries.database.open(libraries.path(lib), list_pad), DatabaseError);
    EXPECT_FALSE(libraries.database.open(libraries.path(lib), by_key_1)->at_end());
}

TEST_F(SqliteDatabaseTest, TriggersOfALibraryDoNotRun) {
    create_by(lib, {"CREATE TABLE tblSubmitList(" + columns + ")",
                    "INSERT INTO tblSubmitList(padkey) VALUES(1), (2)",
                    "CREATE TRIGGER t AFTER UPDATE ON tblSubmitList BEGIN DELETE FROM tblSubmitList; END"});
    const auto rows = libraries.database.open(libraries.path(lib), by_key_1);
    rows->set("status", std::string("Y"));
    rows->update();
    EXPECT_EQ(libraries.sites(lib).size(), 2U);
}

TEST_F(SqliteDatabaseTest, LockedLibraryIsLeftAlone) {
    libraries.create(lib, {site(1, "One")});
    const std::string before = bytes_of(libraries.path(lib));
    {
        const Guard locked = libraries.lock(lib);
        EXPECT_THROW((void)libraries.database.open(libraries.path(lib), by_key_1), DatabaseError);
    }
    EXPECT_EQ(bytes_of(libraries.path(lib)), before);
    EXPECT_EQ(libraries.temporary.entries(), 1U);
}

TEST_F(SqliteDatabaseTest, LibraryThatAnotherProgramIsWritingIsReadAndNotWritten) {
    libraries.create(lib, {site(1, "One")});
    const std::string before = bytes_of(libraries.path(lib));
    {
        SqliteConnection other = SqliteConnection::open_existing(libraries.path(lib));
        other.run("BEGIN IMMEDIATE");
        const auto rows = libraries.database.open(libraries.path(lib), by_key_1);
        EXPECT_EQ(rows->text("description"), "One");
        rows->set("status", std::string("Y"));
        EXPECT_THROW(rows->update(), DatabaseError);
        EXPECT_THROW(rows->delete_current(), DatabaseError);
    }
    EXPECT_EQ(bytes_of(libraries.path(lib)), before);
    EXPECT_EQ(libraries.temporary.entries(), 1U);
}

TEST_F(SqliteDatabaseTest, ReadOnlyFileIsLeftAloneByAWrite) {
    libraries.create(lib, {site(1, "One")});
    const Guard read_only = libraries.make_read_only(lib);
    expect_write_refused();
}

TEST_F(SqliteDatabaseTest, FileInAReadOnlyFolderIsReadAndLeftAloneByAWrite) {
    libraries.create(lib, {site(1, "One")});
    std::filesystem::permissions(libraries.path(lib), std::filesystem::perms(0666));
    std::filesystem::permissions(libraries.folder, std::filesystem::perms(0555));
    const OrdinaryUser user;
    EXPECT_EQ(libraries.database.open(libraries.path(lib), by_key_1)->text("description"), "One");
    expect_write_refused();
}

TEST_F(SqliteDatabaseTest, OperationsLeaveNothingBesideTheLibrary) {
    libraries.create(lib, {site(1, "One"), site(2, "Two"), site(3, "Three")});
    for (const auto rows = libraries.database.open(libraries.path(lib), list_pad); !rows->at_end();
         rows->move_next()) {
        rows->set("status", std::string("Y"));
        rows->update();
    }
    EXPECT_EQ(libraries.temporary.entries(), 1U);
}

TEST_F(SqliteDatabaseTest, OpenRecordsetThatChangesNothingDoesNotKeepAnotherProgramFromWritingAfterItsEnd) {
    libraries.create(lib, {site(1, "One")});
    const auto rows = libraries.database.open(libraries.path(lib), by_key_1);
    rows->move_next();
    ASSERT_TRUE(rows->at_end());
    const Guard other = libraries.lock(lib);
    EXPECT_NE(other, nullptr);
}

// A walk that changes rows keeps the file that it asks about each of them open; nothing may show of that.
TEST_F(SqliteDatabaseTest, FileAskedDuringAWalkIsReadAsItStandsAtEachOpening) {
    libraries.create(lib, {site(1, "1"), site(2, "2"), site(3, "3"), site(4, "4"), site(5, "5")});
    libraries.create_referrals("referral2.mdb", {{"http://a", 1}});
    libraries.create_referrals("another.mdb", {{"http://a", 3}});
    const auto hits = [this] {
        return libraries.database
            .open(libraries.path("referral2.mdb"),
                  "select * from referral2 where url = 'http://a' or url = ''")
            ->number("hitcount");
    };
    const auto walk = libraries.database.open(libraries.path(lib), all);
    const auto change_one = [&walk] {
        walk->set("note", std::string("changed"));
        walk->update();
        walk->move_next();
    };
    change_one();
    EXPECT_EQ(hits(), 1);
    EXPECT_EQ(hits(), 1);
    {
        SqliteConnection other = SqliteConnection::open_existing(libraries.path("referral2.mdb"));
        other.run("UPDATE referral2 SET hitcount = 2");
    }
    change_one();
    EXPECT_EQ(hits(), 2);
    {
        SqliteConnection other = SqliteConnection::open_existing(libraries.path("referral2.mdb"));
        other.run("ALTER TABLE referral2 RENAME COLUMN hitcount TO visits");
    }
    EXPECT_THROW((void)hits(), DatabaseError);
    std::filesystem::rename(libraries.path("another.mdb"), libraries.path("referral2.mdb"));
    change_one();
    EXPECT_EQ(hits(), 3);
    std::filesystem::remove(libraries.path("referral2.mdb"));
    EXPECT_THROW((void)hits(), DatabaseError);
}

TEST_F(SqliteDatabaseTest, FileAskedDuringAWalkIsLetGoAtItsEnd) {
    libraries.create(lib, {site(1, "1"), site(2, "2")});
    libraries.create_referrals("referral2.mdb", {{"http://a", 1}});
    {
        const auto walk = libraries.database.open(libraries.path(lib), all);
        walk->set("note", std::string("changed"));
        walk->update();
        (void)libraries.database.open(libraries.path("referral2.mdb"),
                                      "select * from referral2 where url = 'http://a' or url = ''");
        EXPECT_TRUE(is_open("referral2.mdb"));
    }
    EXPECT_FALSE(is_open("referral2.mdb"));
    EXPECT_FALSE(is_open(lib));
}

TEST_F(SqliteDatabaseTest, WalkOnAFullDiskKeepsTheRowsThatStillFitted) {
    std::vector<SiteRow> rows;
    for (int key = 1; key <= 100; ++key)
        rows.push_back(site(key, "Site " + std::to_string(1000 + key)));
    libraries.create(lib, rows);
    const auto size = std::filesystem::file_size(libraries.path(lib));
    bool failed = false;
    {
        const FileSizeLimit limit{size + 100'000};
        try {
            const auto walk = libraries.database.open(libraries.path(lib), list_pad);
            for (; !walk->at_end(); walk->move_next()) {
                walk->set("note", std::string(6000, 'x'));
                walk->update();
            }
        } catch (const DatabaseError&) {
            failed = true;
        }
    }
    EXPECT_TRUE(failed);
    int kept = 0;
    bool gap = false;
    for (const SiteRow& row : libraries.sites(lib)) {
        if (row.note->empty()) {
            gap = true;
        } else {
            EXPECT_EQ(row.note->size(), 6000U);
            EXPECT_FALSE(gap) << "a row after the first that was not stored";
            ++kept;
        }
    }
    EXPECT_GE(kept, 10);
    EXPECT_LT(kept, 100);
    EXPECT_EQ(libraries.temporary.entries(), 1U);
}

TEST_F(SqliteDatabaseTest, EveryStatementFindsItsRowsByAnIndexAndSortsNothing) {
    libraries.create(lib, {site(1, "One")});
    const SqliteConnection raw = SqliteConnection::open_existing(libraries.path(lib));
    const SiteFilter some{true, {"2=game", "4=business", "9=special"}};
    const std::vector<Statement> statements{SiteByKey{1},
                                            SitesByUrl{"u"},
                                            SiteList{{true, {}}},
                                            SiteList{{false, {}}},
                                            SiteQueue{{true, {}}},
                                            SiteQueue{{false, {}}},
                                            SiteQueue{some},
                                            SiteQueue{{false, {"2=game"}}},
                                            SiteQueueCount{some},
                                            SiteQueueCount{{true, {}}},
                                            SiteQueueCount{{false, {}}},
                                            AllSites{}};
    for (const Statement& statement : statements) {
        const SiteSql sql = site_sql(statement);
        SqliteQuery plan{raw, "EXPLAIN QUERY PLAN " + (sql.indexed.empty() ? sql.plain : sql.indexed)};
        while (plan.step()) {
            const std::string step = std::get<std::string>(plan.value(3));
            EXPECT_THAT(step, Not(HasSubstr("TEMP B-TREE"))) << sql.plain;
            if (step.starts_with("SCAN") || step.starts_with("SEARCH")) {
                EXPECT_TRUE(step.find("USING INDEX") != std::string::npos ||
                            step.find("USING INTEGER PRIMARY KEY") != std::string::npos ||
                            step.find("USING COVERING INDEX") != std::string::npos)
                    << step << "\n"
                    << sql.plain;
            }
        }
    }
}

TEST_F(SqliteDatabaseTest, LibraryThatIsThereAlreadyIsNeverReplaced) {
    libraries.create(lib, {site(1, "One")});
    const std::string before = bytes_of(libraries.path(lib));
    EXPECT_THROW(libraries.create(lib, {site(2, "Two")}), DatabaseError);
    EXPECT_EQ(bytes_of(libraries.path(lib)), before);
    EXPECT_EQ(libraries.temporary.entries(), 1U);
}

TEST_F(SqliteDatabaseTest, LibraryOfRowsThatCannotBeStoredDoesNotComeIntoBeing) {
    SiteRow nameless = site(2, "Two");
    nameless.description = std::nullopt;
    EXPECT_THROW(libraries.create(lib, {site(1, "One"), nameless}), DatabaseError);
    EXPECT_THROW(libraries.create(lib, {site(1, "One"), site(1, "One again")}), DatabaseError);
    EXPECT_EQ(libraries.temporary.entries(), 0U);
}

} // namespace
} // namespace kestrune
