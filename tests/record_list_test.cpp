#include "sessions/record_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;

ListView record_list() { return {"lvwPermanent", {"Type", "Url", "Action", "Postdata", "Header", "Frame"}}; }

RecordSession record(std::string name, std::string url) {
    return {"Form", std::move(name), std::move(url), "http://a.b/add", "a=1", "H: 1\r\n", "main"};
}

TEST(RecordList, SelectedRecordIsReadWithAllItsFields) {
    ListView list = record_list();
    AddRecordToList(list, record("Session1", "http://A.b/s?x"));
    ASSERT_TRUE(list.select("http://a.b/s"));
    const SelectedEntry entry = ReadSelectedEntry(&list);
    EXPECT_TRUE(entry.found);
    EXPECT_EQ(entry.key, "http://a.b/s");
    EXPECT_EQ(entry.text, "Session1");
    EXPECT_EQ(entry.url, "http://A.b/s?x");
    EXPECT_THAT(entry.fields,
                ElementsAre("Form", "http://A.b/s?x", "http://a.b/add", "a=1", "H: 1\r\n", "main"));
    EXPECT_EQ(RecordOf(list, *list.selected()), record("Session1", "http://A.b/s?x"));
}

TEST(RecordList, SelectedSiteIsReadWithItsAddress) {
    ListView sites{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    sites.add({"K17", "A site", {"http://site/", "N", "1=general", ""}});
    sites.select("K17");
    const SelectedEntry entry = ReadSelectedEntry(&sites);
    EXPECT_EQ(entry.key, "K17");
    EXPECT_EQ(entry.text, "A site");
    EXPECT_EQ(entry.url, "http://site/");
    EXPECT_THAT(entry.fields, ElementsAre("http://site/", "N", "1=general", ""));
}

TEST(RecordList, NothingIsFoundWithoutASelectionOrWithoutAList) {
    ListView list = record_list();
    AddRecordToList(list, record("Session1", "http://a.b/s"));
    EXPECT_FALSE(ReadSelectedEntry(&list).found);
    EXPECT_FALSE(ReadSelectedEntry(nullptr).found);
}

TEST(RecordList, ColumnsHaveTheirTitlesAndWidths) {
    std::string text;
    for (const ListView::Column& column : RecordColumns())
        text += column.Title + " " + std::to_string(column.Width) + "; ";
    EXPECT_EQ(text,
              "Record Name 3500; Record Type 1200; Destination Address 3500; "
              "Form Action / Originating Address 3500; Post Data 5000; Header 1000; Target Frame 1000; ");
    text.clear();
    for (const ListView::Column& column : SiteColumns())
        text += column.Title + " " + std::to_string(column.Width) + "; ";
    EXPECT_EQ(text, "Library Name 2500; URL 3500; Status 700; Category 1200; Comment 3000; ");
}

TEST(RecordList, RecordWithAKeyThatIsThereOverwritesTheEntry) {
    ListView list = record_list();
    RecordCounters counters;
    RecordSession first = record("first", "http://a.b/s.php?x=1");
    RecordSession second = record("second", "http://A.B/s.php?x=2");
    second.Type = "Bookmark";
    second.Postdata = "b=2";
    EXPECT_FALSE(PutRecordInList(list, UrlToRecordKey(first.Url), first, counters));
    EXPECT_TRUE(PutRecordInList(list, UrlToRecordKey(second.Url), second, counters));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list.item(0).Key, "http://a.b/s.php");
    EXPECT_EQ(RecordOf(list, list.item(0)), second);
}

TEST(RecordList, SysgenNamesANewEntryByTheNextNumberAndKeepsTheNameOfOneThatIsThere) {
    ListView list = record_list();
    RecordCounters counters;
    RecordSession first = record("*sysgen*", "http://a.b/1");
    RecordSession second = record("*sysgen*", "http://a.b/2");
    RecordSession again = record("*sysgen*", "http://a.b/1?x");
    EXPECT_FALSE(PutRecordInList(list, UrlToRecordKey(first.Url), first, counters));
    EXPECT_FALSE(PutRecordInList(list, UrlToRecordKey(second.Url), second, counters));
    EXPECT_EQ(first.Session, "Session1");
    EXPECT_EQ(second.Session, "Session2");
    EXPECT_TRUE(PutRecordInList(list, UrlToRecordKey(again.Url), again, counters));
    EXPECT_EQ(again.Session, "Session1");
    EXPECT_EQ(list.find("http://a.b/1")->Text, "Session1");
    EXPECT_EQ(list.sub_item(*list.find("http://a.b/1"), "Url"), "http://a.b/1?x");
    EXPECT_EQ(counters.generated_names, 2);
}

TEST(RecordList, UpdatingAnEntryThatIsNotThereChangesNothing) {
    ListView list = record_list();
    RecordSession changed = record("x", "http://a.b/");
    EXPECT_FALSE(UpdateRecordInList(list, "http://a.b/", changed));
    EXPECT_EQ(list.size(), 0U);
}

} // namespace
} // namespace kestrune
