#include "platform/statement.h"

#include "platform/database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string queue_order = " order by referral desc, linkfound desc, softtype, description";
const std::string queue = "select * from tblSubmitList where status = 'N' and ";
const std::string count = "select count(*) as cnt from tblSubmitList where status = 'N' and ";

void expect_no_shape(const std::string& text) { EXPECT_THROW(parse_statement(text), DatabaseError) << text; }

TEST(Statement, EachKnownShapeIsReadWithItsValues) {
    EXPECT_EQ(parse_statement("select * from tblSubmitList where padkey = 17"), Statement{SiteByKey{17}});
    EXPECT_EQ(parse_statement("select * from tblSubmitList where padkey = -2147483648"),
              Statement{SiteByKey{-2147483647 - 1}});
    EXPECT_EQ(parse_statement("select * from tblSubmitList where url = 'http://a.b/'"),
              Statement{SitesByUrl{"http://a.b/"}});
    EXPECT_EQ(parse_statement("select * from tblSubmitList where url = ''"), Statement{SitesByUrl{""}});
    EXPECT_EQ(parse_statement("select * from tblSubmitList where PAD = 'PAD' order by description"),
              (Statement{SiteList{{true, {}}}}));
    EXPECT_EQ(parse_statement("select * from tblSubmitList where PAD <> 'PAD' order by description"),
              (Statement{SiteList{{false, {}}}}));
    EXPECT_EQ(parse_statement(queue + "PAD <> 'PAD'" + queue_order), (Statement{SiteQueue{{false, {}}}}));
    EXPECT_EQ(parse_statement(count + "PAD = 'PAD'"), (Statement{SiteQueueCount{{true, {}}}}));
    EXPECT_EQ(parse_statement("select * from tblSubmitList order by url"), Statement{AllSites{}});
    EXPECT_EQ(parse_statement("select * from referral2 where url = 'a/' or url = 'a'"),
              (Statement{ReferralsByUrl{"a/", "a"}}));
}

TEST(Statement, EverySelectionOfCategoriesIsRead) {
    for (unsigned chosen = 1; chosen < 64; ++chosen) {
        std::vector<std::string> categories;
        std::string list;
        for (std::size_t i = 0; i < category_labels.size(); ++i) {
            if ((chosen >> i & 1U) == 0)
                continue;
            categories.emplace_back(category_labels[i]);
            list += (list.empty() ? "softtype = '" : " or softtype = '") + categories.back() + "'";
        }
        EXPECT_EQ(parse_statement(queue + "PAD = 'PAD' and (" + list + ")" + queue_order),
                  (Statement{SiteQueue{{true, categories}}}));
        EXPECT_EQ(parse_statement(count + "PAD <> 'PAD' and (" + list + ")"),
                  (Statement{SiteQueueCount{{false, categories}}}));
    }
}

TEST(Statement, FilterWithoutPadPartIsOfNoShape) {
    expect_no_shape(queue + queue_order);
    expect_no_shape(queue + " and (softtype = '1=general')" + queue_order);
    expect_no_shape(count);
    expect_no_shape(count + " and (softtype = '1=general')");
}

TEST(Statement, CategoryListThatIsNotComposedByTheProgramIsOfNoShape) {
    for (const char* list :
         {"()", "(softtype = '1=general'", "(softtype = '2=game' or softtype = '1=general')",
          "(softtype = '1=general' or softtype = '1=general')", "(softtype = 'x')",
          "(softtype = '1=general' or )", "( or softtype = '1=general')",
          "(softtype = '1=general') or (softtype = '2=game')"})
        expect_no_shape(count + "PAD = 'PAD' and " + list);
}

// What each operation would compose from a value that holds an apostrophe.
TEST(Statement, ValueWithAnApostropheLeavesNoShapeWhateverItSpells) {
    for (const std::string value : {"it's", "'", "''", "x' or url = 'y", "x' or url = 'y' or url = 'z",
                                    "x'; drop table tblSubmitList; --", "x' order by description",
                                    "x' or url = '", "' or url = '", "x' or url = 'x"}) {
        const std::string quoted = "'" + value + "'";
        expect_no_shape("select * from tblSubmitList where url = " + quoted);
        expect_no_shape("select * from referral2 where url = " + quoted + " or url = ''");
        expect_no_shape("select * from referral2 where url = " + quoted + " or url = " + quoted);
        const std::string slash = "'" + value + "/'";
        expect_no_shape("select * from referral2 where url = " + slash + " or url = " + quoted);
        expect_no_shape("select * from tblSubmitList where " + value + " order by description");
        expect_no_shape(queue + "PAD = 'PAD' and (softtype = " + quoted + ")" + queue_order);
        expect_no_shape(count + "PAD = 'PAD' and (softtype = " + quoted + ")");
    }
    expect_no_shape("select * from referral2 where url = 'x' or url = 'y' or url = ''");
}

TEST(Statement, KeyThatIsNoPlain32BitNumberIsOfNoShape) {
    for (const char* key : {"", "x", "1 or 1=1", "2147483648", "1.5", " 1", "+1", "0x10", "1;"})
        expect_no_shape(std::string("select * from tblSubmitList where padkey = ") + key);
}

TEST(Statement, AnythingElseIsOfNoShape) {
    for (const char* text :
         {"", "select * from tblSubmitList", "SELECT * FROM tblSubmitList ORDER BY url",
          "delete from tblSubmitList", "select * from tblSubmitList order by url;",
          "select * from tblSubmitList order by url ", "select  * from tblSubmitList order by url",
          "select * from sqlite_schema", "select * from tblSubmitList where url = 'unclosed",
          "select * from tblSubmitList where url = \"x\"", "update tblSubmitList set status = 'N'",
          "select * from referral2 where url = 'a'"})
        expect_no_shape(text);
}

} // namespace
} // namespace kestrune
