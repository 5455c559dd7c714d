#include "sessions/permanent_store.h"

#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// One site in each half of the library; notes the statements it ran.
class TwoSites : public Database {
public:
    class Row : public Recordset {
    public:
        Row(TwoSites& sites, int key) : sites_(sites), key_(key) {}
        [[nodiscard]] bool at_end() const override { return done_; }
        void move_next() override { done_ = true; }
        [[nodiscard]] std::optional<std::string> text(std::string_view column) const override {
            return column == "status" ? "N" : std::string(column) + std::to_string(key_);
        }
        [[nodiscard]] std::optional<std::int64_t> number(std::string_view /*column*/) const override {
            return key_;
        }
        void set(std::string_view /*column*/, DatabaseValue /*value*/) override {}
        void update() override {}
        void delete_current() override { sites_.deleted.push_back(key_); }

    private:
        TwoSites& sites_;
        int key_;
        bool done_ = false;
    };

    std::unique_ptr<Recordset> open(const std::string& /*path*/, std::string_view statement) override {
        constexpr std::string_view by_key = "select * from tblSubmitList where padkey = ";
        if (statement.substr(0, by_key.size()) == by_key)
            return std::make_unique<Row>(*this, std::stoi(std::string(statement.substr(by_key.size()))));
        return std::make_unique<Row>(*this, statement.find("<>") == std::string_view::npos ? 1 : 2);
    }

    std::vector<int> deleted;
};

std::vector<std::string> record_keys() { return {"Type", "Url", "Action", "Postdata", "Header", "Frame"}; }
std::vector<std::string> site_keys() { return {"url", "Status", "Category", "Comment"}; }

class PermanentStoreTest : public testing::Test {
protected:
    PermanentStoreTest() { files.folders = {"program"}; }
    ~PermanentStoreTest() override {
        EXPECT_THAT(ui.failures, IsEmpty());
        EXPECT_TRUE(ui.script_done());
    }

    static RecordSession form(std::string name, std::string url) {
        return {"Form", std::move(name), std::move(url), "http://a.b/add.php", "a=1", "", ""};
    }
    static std::string file_text(const RecordSession& record) { return BuildSessionXml(record) + "\r\n"; }

    void put_file(const std::string& name, const std::string& bytes) {
        files.folders.insert("program/session");
        files.contents["program/session/" + name] = bytes;
    }
    [[nodiscard]] bool has_file(const std::string& name) const {
        return files.file_exists("program/session/" + name);
    }
    [[nodiscard]] bool has_backup(const std::string& name) const {
        return files.file_exists("program/backup/" + name);
    }

    void select_temporary(const RecordSession& record) {
        const std::string key = "K" + std::to_string(++counters.temporary_records);
        temporary.add(ItemOf(key, record));
        temporary.select(key);
    }
    void save(const RecordSession& record) {
        select_temporary(record);
        store.cmdSave_Click();
    }
    [[nodiscard]] std::vector<std::string> listed() const {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < permanent.size(); ++i)
            names.push_back(permanent.item(i).Text);
        return names;
    }

    MemoryFiles files;
    TwoSites sites;
    MemoryUserInterface ui;
    ListView permanent{"lvwPermanent", record_keys()};
    ListView temporary{"ListView1", record_keys()};
    ListView pad{"lvwPAD", site_keys()};
    ListView non_pad{"lvwNonPad", site_keys()};
    StatusBar status{"StatusBar1"};
    RecordCounters counters;
    SiteLibrary library{sites, files, "program"};
    RecordFiles record_files{files, "program"};
    std::vector<std::string> preferences;
    PermanentStore store{{permanent, temporary, pad, non_pad, status, counters},
                         record_files,
                         library,
                         ui,
                         [this](std::string_view text) { preferences.emplace_back(text); }};
};

TEST_F(PermanentStoreTest, LoadingSetsColumnsFillsSiteListsAndCreatesTheSessionFolder) {
    store.LoadPermanentSession();
    EXPECT_TRUE(store.loaded());
    EXPECT_TRUE(files.folder_exists("program/session"));
    EXPECT_EQ(permanent.columns().size(), 7U);
    EXPECT_EQ(temporary.columns().at(3).Title, "Form Action / Originating Address");
    EXPECT_EQ(pad.columns().at(0).Title, "Library Name");
    EXPECT_EQ(non_pad.columns().at(4).Width, 3000);
    ASSERT_EQ(pad.size(), 1U);
    EXPECT_EQ(pad.item(0).Key, "K1");
    ASSERT_EQ(non_pad.size(), 1U);
    EXPECT_EQ(non_pad.item(0).Key, "K2");
    EXPECT_EQ(counters.glngNoOfPadRecord, 1);
    EXPECT_EQ(counters.glngNoOfNonPadRecord, 1);
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 0);
}

TEST_F(PermanentStoreTest, RecordsAreListedInOrderOfFileNameAndCounted) {
    put_file("a_b_2.xml", file_text(form("two", "http://a.b/2")));
    put_file("a_b_1.XML", file_text(form("one", "http://A.B/1")));
    store.LoadPermanentSession();
    EXPECT_THAT(listed(), ElementsAre("one", "two"));
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 2);
    EXPECT_EQ(permanent.item(0).Key, "http://a.b/1");
    EXPECT_FALSE(counters.gbRecordChanged);
}

TEST_F(PermanentStoreTest, ReloadReplacesTheListAndLeavesTemporaryRecordsAlone) {
    put_file("a_b_1.xml", file_text(form("one", "http://a.b/1")));
    store.LoadPermanentSession();
    select_temporary(form("kept", "http://a.b/t"));
    files.contents.erase("program/session/a_b_1.xml");
    put_file("a_b_2.xml", file_text(form("two", "http://a.b/2")));
    store.LoadPermanentSession();
    EXPECT_THAT(listed(), ElementsAre("two"));
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
    EXPECT_EQ(temporary.size(), 1U);
}

TEST_F(PermanentStoreTest, FileRenamedByHandIsDeletedAtTheNextStartAndKeptAsABackup) {
    const std::string bytes = file_text(form("one", "http://a.b/1"));
    put_file("other.xml", bytes);
    store.LoadPermanentSession();
    EXPECT_FALSE(has_file("other.xml"));
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(files.contents["program/backup/other.xml"], bytes);
}

TEST_F(PermanentStoreTest, RenamedFileThatCannotBeKeptStaysWhereItIs) {
    put_file("other.xml", file_text(form("one", "http://a.b/1")));
    files.contents["program/backup"] = "a file where the folder should be";
    store.LoadPermanentSession();
    EXPECT_TRUE(has_file("other.xml"));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(PermanentStoreTest, EmptyFileIsIgnoredAndStays) {
    put_file("x.xml", "");
    put_file("notes.txt", "text");
    store.LoadPermanentSession();
    EXPECT_TRUE(has_file("x.xml"));
    EXPECT_TRUE(has_file("notes.txt"));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(PermanentStoreTest, FileThatCannotBeReadIsNeitherListedNorDeleted) {
    put_file("locked.xml", file_text(form("one", "http://a.b/1")));
    files.unreadable = {"program/session/locked.xml"};
    store.LoadPermanentSession();
    EXPECT_TRUE(has_file("locked.xml"));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(PermanentStoreTest, FolderThatCannotBeReadLeavesThePermanentListEmpty) {
    put_file("a_b_1.xml", file_text(form("one", "http://a.b/1")));
    files.unreadable = {"program/session"};
    store.LoadPermanentSession();
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 0);
}

TEST_F(PermanentStoreTest, OfTwoFilesWithOneKeyTheFirstStandsAndTheOtherStaysOnDisk) {
    put_file("a_b_s_x_2.xml", file_text(form("second", "http://a.b/s?x=2")));
    put_file("a_b_s_x_1.xml", file_text(form("first", "http://a.b/s?x=1")));
    store.LoadPermanentSession();
    EXPECT_THAT(listed(), ElementsAre("first"));
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
    EXPECT_TRUE(has_file("a_b_s_x_2.xml"));
}

TEST_F(PermanentStoreTest, PreferenceFileIsHandedOverAndNotListed) {
    const std::string profile = "<Kestrune><Type>Preference</Type><Pad>p</Pad></Kestrune>";
    put_file("Kestrune.xml", profile);
    put_file("any name.xml", profile);
    store.LoadPermanentSession();
    EXPECT_THAT(preferences, ElementsAre(profile, profile));
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_TRUE(has_file("any name.xml"));
}

class LargeFolder : public PermanentStoreTest {
protected:
    static constexpr int count = 1000;
    LargeFolder() {
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            put_file("a_b_" + number + ".xml", file_text(form(number, "http://a.b/" + number)));
        }
    }
};

TEST_F(LargeFolder, IsReadInSlicesAndListedWhenComplete) {
    store.LoadPermanentSession();
    EXPECT_FALSE(store.loaded());
    EXPECT_EQ(permanent.size(), 0U);
    ui.run_later();
    EXPECT_TRUE(store.loaded());
    EXPECT_EQ(permanent.size(), count);
    EXPECT_EQ(counters.glngNoOfPermanentRecord, count);
}

TEST_F(LargeFolder, IsCompleteForWhoeverWaits) {
    store.LoadPermanentSession();
    permanent.sort(0, ListView::Order::descending);
    store.wait_until_loaded();
    ASSERT_EQ(permanent.size(), count);
    EXPECT_EQ(permanent.item(0).Text, "999");
    ui.run_later();
    EXPECT_EQ(counters.glngNoOfPermanentRecord, count);
}

TEST_F(LargeFolder, ReloadDuringALoadStartsAfresh) {
    store.LoadPermanentSession();
    store.LoadPermanentSession();
    ui.run_later();
    EXPECT_EQ(counters.glngNoOfPermanentRecord, count);
}

TEST_F(LargeFolder, SavingWaitsForTheLoadAndOverwritesTheEntry) {
    store.LoadPermanentSession();
    save(form("mine", "http://a.b/500"));
    EXPECT_EQ(permanent.size(), count);
    EXPECT_EQ(permanent.find("http://a.b/500")->Text, "mine");
}

TEST_F(PermanentStoreTest, SavedRecordMovesToThePermanentListAndItsFile) {
    store.LoadPermanentSession();
    save(form("Session1", "http://a.b/s.php?x=1"));
    EXPECT_EQ(temporary.size(), 0U);
    EXPECT_THAT(listed(), ElementsAre("Session1"));
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
    EXPECT_TRUE(counters.gbRecordChanged);
    EXPECT_EQ(files.contents["program/session/a_b_s_php_x_1.xml"],
              file_text(form("Session1", "http://a.b/s.php?x=1")));
}

TEST_F(PermanentStoreTest, TwoAddressesThatDifferInQueryAndCaseLeaveOneEntryAndTwoFiles) {
    store.LoadPermanentSession();
    save(form("first", "http://a.b/s.php?x=1"));
    RecordSession second = form("second", "http://A.B/s.php?x=2");
    second.Postdata = "b=2";
    save(second);
    ASSERT_EQ(permanent.size(), 1U);
    EXPECT_EQ(permanent.item(0).Key, "http://a.b/s.php");
    EXPECT_EQ(RecordOf(permanent, permanent.item(0)), second);
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
    EXPECT_TRUE(has_file("a_b_s_php_x_1.xml"));
    EXPECT_TRUE(has_file("A_B_s_php_x_2.xml"));
}

TEST_F(PermanentStoreTest, SavingWithNothingSelectedOnlySaysSo) {
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    store.cmdSave_Click();
    EXPECT_FALSE(counters.gbRecordChanged);
}

TEST_F(PermanentStoreTest, SavingWorksOnTheTemporaryListWhateverIsSelectedInTheOthers) {
    store.LoadPermanentSession();
    save(form("kept", "http://a.b/1"));
    permanent.select("http://a.b/1");
    pad.select("K1");
    select_temporary(form("new", "http://a.b/2"));
    store.cmdSave_Click();
    EXPECT_THAT(listed(), ElementsAre("kept", "new"));
    EXPECT_EQ(temporary.size(), 0U);
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    store.cmdSave_Click();
    EXPECT_THAT(listed(), ElementsAre("kept", "new"));
}

TEST_F(PermanentStoreTest, SysgenNameIsReplacedInListAndFile) {
    store.LoadPermanentSession();
    save(form("*sysgen*", "http://a.b/1"));
    EXPECT_THAT(listed(), ElementsAre("Session1"));
    EXPECT_EQ(files.contents["program/session/a_b_1.xml"], file_text(form("Session1", "http://a.b/1")));
}

TEST_F(PermanentStoreTest, ReplacedFileIsKeptAsABackup) {
    store.LoadPermanentSession();
    save(form("old", "http://a.b/1"));
    save(form("new", "http://a.b/1"));
    EXPECT_EQ(files.contents["program/session/a_b_1.xml"], file_text(form("new", "http://a.b/1")));
    EXPECT_EQ(files.contents["program/backup/a_b_1.xml"], file_text(form("old", "http://a.b/1")));
    save(form("new", "http://a.b/1"));
    EXPECT_EQ(files.contents["program/backup/a_b_1.xml"], file_text(form("old", "http://a.b/1")));
}

TEST_F(PermanentStoreTest, RecordWhoseNameIsTooLongForTheDiskIsKeptAsABackup) {
    files.longest_name = 255;
    store.LoadPermanentSession();
    const RecordSession record = form("long", "http://a.b/" + std::string(300, 'x'));
    save(record);
    ASSERT_EQ(files.contents.size(), 1U);
    const auto& [path, bytes] = *files.contents.begin();
    EXPECT_EQ(path.rfind("program/backup/a_b_xxx", 0), 0U);
    EXPECT_EQ(bytes, file_text(record));
    EXPECT_THAT(listed(), ElementsAre("long"));
}

TEST_F(PermanentStoreTest, FullDiskLeavesTheOldFileAsItWas) {
    store.LoadPermanentSession();
    save(form("old", "http://a.b/1"));
    files.disk_full = true;
    save(form("new", "http://a.b/1"));
    EXPECT_EQ(files.contents["program/session/a_b_1.xml"], file_text(form("old", "http://a.b/1")));
    EXPECT_EQ(temporary.size(), 0U);
}

TEST_F(PermanentStoreTest, RecordNeverReplacesOrDeletesTheProfile) {
    const std::string profile = "<Kestrune><Type>Preference</Type></Kestrune>";
    put_file("Kestrune.xml", profile);
    store.LoadPermanentSession();
    const RecordSession record = form("clash", "http://Kestrune");
    save(record);
    EXPECT_EQ(files.contents["program/session/Kestrune.xml"], profile);
    EXPECT_FALSE(has_backup("Kestrune.xml"));
    EXPECT_THAT(files.contents, testing::Contains(testing::Pair(
                                    testing::StartsWith("program/backup/Kestrune"), file_text(record))));
    permanent.select("http://kestrune");
    ui.expect_box("Are you sure to delete this permanent record session?", Answer::Yes);
    store.cmdDelete_Click(&permanent);
    EXPECT_EQ(files.contents["program/session/Kestrune.xml"], profile);
    EXPECT_THAT(listed(), IsEmpty());
}

constexpr const char* replace_form =
    "This bookmark would replace the recorded form of the same address, do you want to replace it?";

TEST_F(PermanentStoreTest, BookmarkReplacesARecordedFormOnlyWhenTheUserAgrees) {
    store.LoadPermanentSession();
    save(form("form", "http://a.b/1"));
    RecordSession bookmark = form("mark", "http://a.b/1?x");
    bookmark.Type = "Bookmark";
    ui.expect_box(replace_form, Answer::No);
    save(bookmark);
    EXPECT_THAT(listed(), ElementsAre("form"));
    EXPECT_EQ(temporary.size(), 1U);
    EXPECT_EQ(status.text(1), "Move action is aborted!");
    ui.expect_box(replace_form, Answer::Yes);
    store.cmdSave_Click();
    EXPECT_THAT(listed(), ElementsAre("mark"));
    EXPECT_EQ(temporary.size(), 0U);
}

TEST_F(PermanentStoreTest, BookmarkOfTheSameFileAsARecordedFormIsAskedAboutToo) {
    store.LoadPermanentSession();
    save(form("form", "http://a.b/s_x"));
    RecordSession bookmark = form("mark", "http://a.b/s?x");
    bookmark.Type = "Bookmark";
    ui.expect_box(replace_form, Answer::No);
    save(bookmark);
    EXPECT_THAT(listed(), ElementsAre("form"));
}

TEST_F(PermanentStoreTest, BookmarkWhoseAddressIsFreeIsKeptWithoutAQuestion) {
    store.LoadPermanentSession();
    RecordSession bookmark = form("mark", "http://a.b/1");
    bookmark.Type = "Bookmark";
    save(bookmark);
    save(bookmark);
    EXPECT_THAT(listed(), ElementsAre("mark"));
}

TEST_F(PermanentStoreTest, DeletingWithNothingSelectedOnlySaysSo) {
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    store.cmdDelete_Click(&permanent);
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    store.cmdDelete_Click(nullptr);
    EXPECT_EQ(status.text(1), "");
}

TEST_F(PermanentStoreTest, DeletingATemporaryRecordAsksNothing) {
    select_temporary(form("Session1", "http://a.b/1"));
    store.cmdDelete_Click(&temporary);
    EXPECT_EQ(temporary.size(), 0U);
    EXPECT_EQ(status.text(1), "Record session is deleted!");
    EXPECT_FALSE(counters.gbRecordChanged);
}

TEST_F(PermanentStoreTest, DeletedPermanentRecordLosesItsFileAndIsKeptAsABackup) {
    store.LoadPermanentSession();
    save(form("one", "http://a.b/1?q"));
    counters.gbRecordChanged = false;
    permanent.select("http://a.b/1");
    ui.expect_box("Are you sure to delete this permanent record session?", Answer::Yes);
    store.cmdDelete_Click(&permanent);
    EXPECT_EQ(permanent.size(), 0U);
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 0);
    EXPECT_TRUE(counters.gbRecordChanged);
    EXPECT_FALSE(has_file("a_b_1_q.xml"));
    EXPECT_EQ(files.contents["program/backup/a_b_1_q.xml"], file_text(form("one", "http://a.b/1?q")));
    EXPECT_EQ(status.text(1), "Record session is deleted!");
}

TEST_F(PermanentStoreTest, DeletionStandsWhereNothingCanBeKept) {
    store.LoadPermanentSession();
    save(form("one", "http://a.b/1"));
    files.contents["program/backup"] = "a file where the folder should be";
    permanent.select("http://a.b/1");
    ui.expect_box("Are you sure to delete this permanent record session?", Answer::Yes);
    store.cmdDelete_Click(&permanent);
    EXPECT_FALSE(has_file("a_b_1.xml"));
}

TEST_F(PermanentStoreTest, DeletionAnsweredWithNoIsAborted) {
    store.LoadPermanentSession();
    save(form("one", "http://a.b/1"));
    permanent.select("http://a.b/1");
    ui.expect_box("Are you sure to delete this permanent record session?", Answer::No);
    store.cmdDelete_Click(&permanent);
    EXPECT_EQ(permanent.size(), 1U);
    EXPECT_TRUE(has_file("a_b_1.xml"));
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
    EXPECT_EQ(status.text(1), "Delete action is aborted!");
}

TEST_F(PermanentStoreTest, DeletingASiteAsksInTheWordsOfItsListAndDeletesItsRow) {
    store.LoadPermanentSession();
    pad.select("K1");
    ui.expect_box("Are you sure to delete PAD Record?", Answer::Yes);
    store.cmdDelete_Click(&pad);
    EXPECT_EQ(pad.size(), 0U);
    EXPECT_THAT(sites.deleted, ElementsAre(1));
    EXPECT_EQ(status.text(1), "Record session is deleted!");
    EXPECT_EQ(counters.glngNoOfPadRecord, 1);
    EXPECT_FALSE(counters.gbRecordChanged);

    non_pad.select("K2");
    ui.expect_box("Are you sure to delete NON-PAD Record?", Answer::No);
    store.cmdDelete_Click(&non_pad);
    EXPECT_EQ(non_pad.size(), 1U);
    EXPECT_THAT(sites.deleted, ElementsAre(1));
    EXPECT_EQ(status.text(1), "Delete action is aborted!");
}

} // namespace
} // namespace kestrune
