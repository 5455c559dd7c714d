#include "tools/library/commands.h"

#include "jet_samples.h"
#include "libraries.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "tools/csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace kestrune {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string lib{site_library_name};
const std::string copy = "backup/" + lib;

class LibraryTool : public testing::Test {
protected:
    ToolExit run(const std::vector<std::string>& arguments) {
        out.str("");
        err.str("");
        return run_library_tool(arguments, {out, err, libraries.folder, "2024-02-29", cancelled, false});
    }
    std::string file(const std::string& name, const std::string& bytes) {
        write_bytes(libraries.path(name), bytes);
        return libraries.path(name);
    }
    ToolExit import_list(const std::string& csv, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"import", file("sites.csv", csv)});
        return run(options);
    }
    std::vector<SiteRow> sites() { return libraries.sites(lib); }
    [[nodiscard]] bool has_backup() const { return std::filesystem::exists(libraries.path(copy)); }

    SqliteLibraries libraries;
    std::ostringstream out;
    std::ostringstream err;
    std::function<bool()> cancelled = [] { return false; };
};

TEST_F(LibraryTool, HelpNamesEveryCommand) {
    EXPECT_EQ(run({"--help"}), ToolExit::Done);
    for (const char* const command :
         {"import", "export", "check", "statistics", "report", "rank", "merge", "convert", "--dry-run"})
        EXPECT_THAT(out.str(), HasSubstr(command));
}

TEST_F(LibraryTool, WrongUsageIsSaidAndNothingIsDone) {
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {"frobnicate"},
                                                      {"import"},
                                                      {"check", "x"},
                                                      {"export", "a", "b"},
                                                      {"--nonsense", "check"},
                                                      {"check", "--dry-run"},
                                                      {"merge", "x", "--update"},
                                                      {"--folder"}};
    for (const auto& arguments : wrong) {
        EXPECT_EQ(run(arguments), ToolExit::WrongUsage);
        EXPECT_THAT(err.str(), HasSubstr("--help"));
        EXPECT_EQ(out.str(), "");
    }
}

TEST_F(LibraryTool, MissingLibraryIsAnErrorThatNamesIt) {
    for (const std::string command : {"export", "check", "statistics", "report", "rank"}) {
        EXPECT_EQ(run({command}), ToolExit::NotDone) << command;
        EXPECT_THAT(err.str(), HasSubstr(libraries.path(lib))) << command;
    }
}

TEST_F(LibraryTool, FolderIsTakenFromItsOption) {
    libraries.create(lib, {site(1, "One")});
    std::ostringstream nowhere;
    EXPECT_EQ(run_library_tool({"--folder", libraries.folder, "check"},
                               {nowhere, nowhere, "/nonexistent", "", {}, false}),
              ToolExit::Done);
}

TEST_F(LibraryTool, ImportedSitesGetTheNextKeysAndDefaults) {
    libraries.create(lib, {site(7, "Seven")});
    EXPECT_EQ(
        import_list("Description,URL\r\nNew,http://new.example/\r\n\"A, \"\"B\"\"\",https://b.example\r\n"),
        ToolExit::Done);
    const auto rows = sites();
    ASSERT_EQ(rows.size(), 3U);
    SiteRow added;
    added.padkey = 8;
    added.description = "New";
    added.url = "http://new.example/";
    added.pad = "NO";
    EXPECT_EQ(rows[1], added);
    EXPECT_EQ(rows[2].padkey, 9);
    EXPECT_EQ(rows[2].description, "A, \"B\"");
    EXPECT_THAT(out.str(), HasSubstr("2 sites added"));
}

TEST_F(LibraryTool, ImportReadsEveryColumnByItsNameAndPassesOverUnknownOnes) {
    libraries.create(lib, {});
    EXPECT_EQ(
        import_list("\xef\xbb\xbfnote,colour,status,softtype,pad,url,description,linkfound,referral,padkey\n"
                    "n\xc3\xb6te,red,Y,2=game,PAD,http://a.example/,A,3,4,99\n"),
        ToolExit::Done);
    SiteRow expected;
    expected.padkey = 1;
    expected.url = "http://a.example/";
    expected.description = "A";
    expected.status = "Y";
    expected.softtype = "2=game";
    expected.pad = "PAD";
    expected.note = "n\xc3\xb6te";
    expected.linkfound = 3;
    expected.referral = 4;
    EXPECT_EQ(sites(), std::vector<SiteRow>{expected});
    EXPECT_THAT(out.str(), HasSubstr("colour"));
}

TEST_F(LibraryTool, DuplicatesAreReportedAndLeftAlone) {
    libraries.create(lib, {site(1, "One")});
    const auto before = sites();
    EXPECT_EQ(import_list("url,description\nHTTP://SITE1.example,Other name\n"), ToolExit::Done);
    EXPECT_EQ(sites(), before);
    EXPECT_THAT(out.str(), HasSubstr("line 2: HTTP://SITE1.example"));
    EXPECT_THAT(out.str(), HasSubstr("1 left alone"));
    EXPECT_FALSE(has_backup());
}

TEST_F(LibraryTool, DuplicatesAreUpdatedOnRequestByTheFieldsThatAreFilled) {
    SiteRow before = site(1, "One");
    before.note = "keep me";
    before.status = "Y";
    libraries.create(lib, {before, site(2, "Two")});
    EXPECT_EQ(
        import_list("url,description,note,status,softtype\nHTTP://SITE1.example,New name,,,4=business\n",
                    {"--update"}),
        ToolExit::Done);
    before.description = "New name";
    before.softtype = "4=business";
    EXPECT_EQ(sites(), (std::vector<SiteRow>{before, site(2, "Two")}));
    EXPECT_THAT(out.str(), HasSubstr("1 updated"));
}

TEST_F(LibraryTool, SiteThatTheListNamesTwiceIsTakenOnce) {
    libraries.create(lib, {});
    EXPECT_EQ(
        import_list("url,description\nhttp://a.example/,First\nhttp://A.example,Second\n", {"--update"}),
        ToolExit::Done);
    ASSERT_EQ(sites().size(), 1U);
    EXPECT_EQ(sites()[0].description, "First");
    EXPECT_THAT(out.str(), HasSubstr("earlier line"));
}

TEST_F(LibraryTool, DryRunReportsTheSameAndStoresNothing) {
    libraries.create(lib, {site(1, "One")});
    const std::string bytes = bytes_of(libraries.path(lib));
    EXPECT_EQ(import_list("url,description\nhttp://a.example/,A\nhttp://site1.example/,B\n",
                          {"--update", "--dry-run"}),
              ToolExit::Done);
    EXPECT_EQ(bytes_of(libraries.path(lib)), bytes);
    EXPECT_FALSE(has_backup());
    EXPECT_THAT(out.str(), HasSubstr("1 site would be added, 1 would be updated"));
}

TEST_F(LibraryTool, LinesThatHoldNoSiteAreRefusedWithTheirNumberAndTheRestIsTaken) {
    libraries.create(lib, {});
    EXPECT_EQ(import_list("url,description,status,softtype,referral\n"
                          "http://good.example/,Good,N,,\n"
                          "ftp://a.example/,A,N,,\n"
                          "http://b.example/it's,B,N,,\n"
                          "http://c.example/,,N,,\n"
                          "http://d.example/,D,X,,\n"
                          "http://e.example/,E,N,games,\n"
                          "http://f.example/,F,N,,many\n"
                          "http://g.example/,G\n"
                          ",H,N,,\n"
                          "\n"
                          "http://fine.example/,Fine,,,5\n"),
              ToolExit::LookAtIt);
    ASSERT_EQ(sites().size(), 2U);
    EXPECT_EQ(sites()[1].description, "Fine");
    for (int line = 3; line <= 10; ++line)
        EXPECT_THAT(out.str(), HasSubstr("line " + std::to_string(line) + ": "));
    EXPECT_THAT(out.str(), HasSubstr("8 lines refused"));
}

TEST_F(LibraryTool, ListThatBreaksOffIsNotTakenAtAll) {
    libraries.create(lib, {site(1, "One")});
    const auto before = sites();
    EXPECT_EQ(import_list("url,description\nhttp://a.example/,A\nhttp://b.example/,\"B\n"),
              ToolExit::NotDone);
    EXPECT_EQ(sites(), before);
    EXPECT_THAT(err.str(), HasSubstr("line 3"));
}

TEST_F(LibraryTool, ListWithoutTheNeededColumnsIsRefused) {
    libraries.create(lib, {});
    EXPECT_EQ(import_list("url,name\n"), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("description"));
    EXPECT_EQ(import_list(""), ToolExit::NotDone);
    EXPECT_EQ(import_list("url,description,URL\n"), ToolExit::NotDone);
    EXPECT_EQ(import_list("url,description\nhttp://a.example/,\xe9\n"), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("UTF-8"));
    EXPECT_EQ(run({"import", libraries.path("absent.csv")}), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("absent.csv"));
}

TEST_F(LibraryTool, LibraryIsCopiedBeforeTheFirstChange) {
    libraries.create(lib, {site(1, "One")});
    const auto before = sites();
    import_list("url,description\nhttp://a.example/,A\n");
    EXPECT_EQ(libraries.sites(copy), before);
}

TEST_F(LibraryTool, WithoutABackupNothingIsChanged) {
    libraries.create(lib, {site(1, "One")});
    const auto before = sites();
    file("backup", "a file where the folder should be");
    EXPECT_EQ(import_list("url,description\nhttp://a.example/,A\n"), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("backup"));
    EXPECT_EQ(sites(), before);
    EXPECT_EQ(run({"rank"}), ToolExit::NotDone);
}

TEST_F(LibraryTool, LockedLibraryIsAnErrorAndNothingIsChanged) {
    libraries.create(lib, {site(1, "One")});
    {
        const Guard locked = libraries.lock(lib);
        EXPECT_EQ(import_list("url,description\nhttp://a.example/,A\n"), ToolExit::NotDone);
        EXPECT_NE(err.str(), "");
    }
    EXPECT_EQ(sites().size(), 1U);
}

TEST_F(LibraryTool, ExportHoldsEveryRowAndColumn) {
    SiteRow row = site(3, "A, \"B\"\nC");
    row.note = "caf\xc3\xa9";
    row.softtype = std::nullopt;
    libraries.create_loose(lib, {row, site(4, "Four")});
    EXPECT_EQ(run({"export"}), ToolExit::Done);
    const std::string csv = out.str();
    CsvReader reader{csv};
    EXPECT_EQ(reader.next(), (std::vector<std::string>{"padkey", "url", "description", "status", "softtype",
                                                       "Pad", "referral", "linkfound", "note", "extra"}));
    EXPECT_EQ(reader.next(), (std::vector<std::string>{"3", "http://site3.example/", "A, \"B\"\nC", "N", "",
                                                       "PAD", "0", "0", "caf\xc3\xa9", "kept"}));
    EXPECT_TRUE(reader.next());
    EXPECT_FALSE(reader.next());
}

TEST_F(LibraryTool, ExportedSitesImportedElsewhereAreTheSame) {
    SiteRow row = site(1, "One, \"quoted\"");
    row.note = "two\nlines";
    row.status = "P";
    libraries.create(lib, {row, site(2, "Two")});
    const auto before = sites();
    const std::string list = libraries.path("list.csv");
    EXPECT_EQ(run({"export", list}), ToolExit::Done);
    std::filesystem::remove(libraries.path(lib));
    libraries.create(lib, {});
    EXPECT_EQ(run({"import", list}), ToolExit::Done);
    EXPECT_EQ(sites(), before);
}

TEST_F(LibraryTool, ExportToAFileThatCannotBeWrittenIsAnError) {
    libraries.create(lib, {});
    EXPECT_EQ(run({"export", libraries.path("no/such/folder.csv")}), ToolExit::NotDone);
}

TEST_F(LibraryTool, SoundLibraryHasNoProblems) {
    libraries.create(lib, {site(1, "One"), site(2, "Two")});
    EXPECT_EQ(run({"check"}), ToolExit::Done);
    EXPECT_EQ(out.str(), "no problems\n");
}

TEST_F(LibraryTool, CheckReportsEveryKindOfProblem) {
    std::vector<SiteRow> rows(8);
    for (int key = 1; key <= 8; ++key)
        rows[static_cast<std::size_t>(key) - 1] = site(key, "Site");
    rows[0].url = std::nullopt;
    rows[1].description = std::nullopt;
    rows[2].status = std::nullopt;
    rows[3].url = "HTTP://SITE2.example";
    rows[4].softtype = "7=other";
    rows[5].status = "Q";
    rows[6].url = "javascript:x";
    rows[7].padkey = 7;
    rows[7].pad = std::nullopt;
    libraries.create_loose(lib, rows);
    EXPECT_EQ(run({"check"}), ToolExit::LookAtIt);
    for (const char* const problem :
         {"site 1: no url", "site 2 (http://site2.example/): no description",
          "site 3 (http://site3.example/): no status",
          "site 4 (HTTP://SITE2.example): the same address as site 2", "unknown category \"7=other\"",
          "unknown status \"Q\"", "site 7 (javascript:x): no web address",
          "site 7 (http://site8.example/): the same key as site 7", "in neither list"})
        EXPECT_THAT(out.str(), HasSubstr(problem));
    EXPECT_THAT(out.str(), HasSubstr("problems (9)"));
}

TEST_F(LibraryTool, StatisticsCountByCategoryAndStatus) {
    std::vector<SiteRow> rows{site(1, "A"), site(2, "B"), site(3, "C"), site(4, "D")};
    rows[1].status = "Y";
    rows[2].softtype = std::nullopt;
    rows[3].pad = "NO";
    rows[3].status = "P";
    libraries.create(lib, rows);
    EXPECT_EQ(run({"statistics"}), ToolExit::Done);
    EXPECT_THAT(out.str(), HasSubstr("4 sites, 3 of them with PAD support"));
    const std::string blanks(15, ' ');
    EXPECT_THAT(out.str(), HasSubstr("1=general       " + blanks + "1" + blanks + "1" + blanks + "1" +
                                     blanks + "0" + blanks + "3\n"));
    EXPECT_THAT(out.str(), HasSubstr("no category     " + blanks + "1" + blanks + "0" + blanks + "0" +
                                     blanks + "0" + blanks + "1\n"));
}

TEST_F(LibraryTool, ReportShowsSubmissionsAloneAndNothingInItRuns) {
    std::vector<SiteRow> rows{site(1, "Not yet"), site(2, "<script>alert(1)</script>"), site(3, "Failed")};
    rows[1].status = "Y";
    rows[1].note = "a & b \"c\"";
    rows[2].status = "P";
    rows[2].url = "javascript:alert(2)";
    libraries.create(lib, rows);
    const std::string page = libraries.path("report.html");
    EXPECT_EQ(run({"report", page}), ToolExit::Done);
    const std::string html = bytes_of(page);
    EXPECT_THAT(html, HasSubstr("2024-02-29"));
    EXPECT_THAT(html, HasSubstr("3 sites: 1 submitted, 1 failed, 1 not yet submitted"));
    EXPECT_THAT(html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(html, HasSubstr("a &amp; b &quot;c&quot;"));
    EXPECT_THAT(html, HasSubstr("<a href=\"http://site2.example/\">"));
    EXPECT_THAT(html, Not(HasSubstr("<script")));
    EXPECT_THAT(html, Not(HasSubstr("href=\"javascript")));
    EXPECT_THAT(html, Not(HasSubstr("Not yet<")));
    EXPECT_THAT(html, Not(HasSubstr("src=")));
}

TEST_F(LibraryTool, RankRanksEverySiteAndSaysHowMany) {
    libraries.create(lib, {site(1, "One"), site(2, "Two")});
    libraries.create_referrals(std::string(referral_database_name), {{"http://site2.example", 9}});
    EXPECT_EQ(run({"rank"}), ToolExit::Done);
    EXPECT_EQ(sites()[1].referral, 9);
    EXPECT_THAT(out.str(), HasSubstr("2 of 2 sites ranked, 1 of them with hits"));
    EXPECT_TRUE(has_backup());
}

TEST_F(LibraryTool, RankEndedByTheUserKeepsWhatItHasAndSaysSo) {
    libraries.create(lib, {site(1, "One"), site(2, "Two")});
    libraries.create_referrals(std::string(referral_database_name),
                               {{"http://site1.example", 8}, {"http://site2.example", 9}});
    cancelled = [] { return true; };
    EXPECT_EQ(run({"rank"}), ToolExit::LookAtIt);
    EXPECT_EQ(sites()[0].referral, 8);
    EXPECT_EQ(sites()[1].referral, 0);
    EXPECT_THAT(out.str(), HasSubstr("1 of 2 sites ranked"));
    EXPECT_THAT(err.str(), HasSubstr("ended by you"));
}

TEST_F(LibraryTool, RankThatFailsNamesTheSite) {
    SiteRow bad = site(1, "One");
    bad.url = "http://it's.example/";
    libraries.create(lib, {bad});
    libraries.create_referrals(std::string(referral_database_name), {});
    EXPECT_EQ(run({"rank"}), ToolExit::LookAtIt);
    EXPECT_THAT(err.str(), HasSubstr("http://it's.example/"));
}

TEST_F(LibraryTool, RankWithoutHitsSaysWhatIsMissingAndCostsNoBackup) {
    libraries.create(lib, {site(1, "One")});
    EXPECT_EQ(run({"rank"}), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("there is no database of hits: " + libraries.path("referral2.mdb")));
    EXPECT_FALSE(has_backup());
}

TEST_F(LibraryTool, MergeAddsNewSitesAndTouchesNoRowOfTheUsers) {
    SiteRow own = site(1, "My own name");
    own.status = "Y";
    own.note = "mine";
    libraries.create(lib, {own});
    SiteRow shipped = site(1, "Their name");
    SiteRow fresh = site(2, "Fresh");
    fresh.status = "Y";
    fresh.referral = 12;
    libraries.create("newer.mdb", {shipped, fresh});
    EXPECT_EQ(run({"merge", libraries.path("newer.mdb"), "--dry-run"}), ToolExit::Done);
    EXPECT_THAT(out.str(), HasSubstr("Fresh  http://site2.example/"));
    EXPECT_EQ(sites(), std::vector<SiteRow>{own});
    EXPECT_FALSE(has_backup());
    EXPECT_EQ(run({"merge", libraries.path("newer.mdb")}), ToolExit::Done);
    fresh.status = "N";
    EXPECT_EQ(sites(), (std::vector<SiteRow>{own, fresh}));
    EXPECT_TRUE(has_backup());
}

TEST_F(LibraryTool, SiteThatTheUserDeletedDoesNotComeBackWithALaterMerge) {
    libraries.create(lib, {});
    libraries.create("newer.mdb", {site(1, "One"), site(2, "Two")});
    run({"merge", libraries.path("newer.mdb")});
    libraries.delete_behind_the_back(lib, 1);
    EXPECT_EQ(run({"merge", libraries.path("newer.mdb")}), ToolExit::Done);
    EXPECT_THAT(out.str(), HasSubstr("0 sites added"));
    ASSERT_EQ(sites().size(), 1U);
    EXPECT_EQ(sites()[0].description, "Two");
}

TEST_F(LibraryTool, MergeOfAFileThatIsNoLibraryChangesNothing) {
    libraries.create(lib, {site(1, "One")});
    EXPECT_EQ(run({"merge", file("no.mdb", "no library")}), ToolExit::NotDone);
    EXPECT_EQ(run({"merge", libraries.path("absent.mdb")}), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("there is no file: " + libraries.path("absent.mdb")));
    EXPECT_EQ(sites().size(), 1U);
    EXPECT_FALSE(has_backup()) << "it would have replaced a copy that may be wanted";
}

TEST_F(LibraryTool, AccessLibraryIsNamedAsSuchAndConverted) {
    KESTRUNE_NEED_JET_SAMPLES();
    file(lib, bytes_of(jet_sample("sites-2000.mdb")));
    EXPECT_EQ(run({"check"}), ToolExit::NotDone);
    EXPECT_THAT(err.str(), HasSubstr("convert"));
    EXPECT_EQ(run({"convert"}), ToolExit::Done);
    EXPECT_THAT(out.str(), HasSubstr("SubmitList.mdb: converted"));
    EXPECT_EQ(sites().size(), jet_contents("sites-2000.tsv").rows.size());
}

TEST_F(LibraryTool, FileThatCannotBeConvertedIsLeftAsItIsAndSaidToBe) {
    KESTRUNE_NEED_JET_SAMPLES();
    const std::string broken = bytes_of(jet_sample("broken.mdb"));
    file(lib, broken);
    EXPECT_EQ(run({"convert"}), ToolExit::NotDone);
    EXPECT_THAT(out.str(), HasSubstr("SubmitList.mdb: damaged, left as it is"));
    EXPECT_THAT(out.str(), HasSubstr("referral2.mdb: no such file"));
    EXPECT_EQ(bytes_of(libraries.path(lib)), broken);
}

} // namespace
} // namespace kestrune
