#include "tools/site_csv.h"

#include "platform/statement.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace kestrune {
namespace {

const std::string header = "description,url,softtype,pad,sure,evidence\n";

TEST(SiteCsv, WellFoundedSitesAreTakenInOrderWithKeysFrom1) {
    const auto sites = read_site_csv(header + "One,http://one/,1=general,PAD,high,seen\n"
                                              "Two,http://two/,2=game,NO,low,heard\n"
                                              "Three,https://three/,9=special,NO,medium,\n");
    ASSERT_EQ(sites.size(), 2U);
    SiteRow one;
    one.padkey = 1;
    one.description = "One";
    one.url = "http://one/";
    one.softtype = "1=general";
    one.pad = "PAD";
    EXPECT_EQ(sites[0], one);
    EXPECT_EQ(sites[0].status, "N");
    EXPECT_EQ(sites[0].note, "");
    EXPECT_EQ(sites[0].referral, 0);
    EXPECT_EQ(sites[0].linkfound, 0);
    EXPECT_EQ(sites[1].padkey, 2);
    EXPECT_EQ(sites[1].description, "Three");
}

TEST(SiteCsv, QuotedFieldHoldsCommasQuotationMarksAndLineEnds) {
    const auto sites = read_site_csv(header + "\"A, \"\"B\"\"\nC\",http://a/,1=general,PAD,high,\"x, y\"\r\n"
                                              "D,http://d/,1=general,PAD,high,z");
    ASSERT_EQ(sites.size(), 2U);
    EXPECT_EQ(sites[0].description, "A, \"B\"\nC");
    EXPECT_EQ(sites[1].description, "D");
}

TEST(SiteCsv, LineThatIsNotWellFormedIsNamed) {
    const auto message = [](const std::string& lines) -> std::string {
        try {
            (void)read_site_csv(lines);
        } catch (const SiteCsvError& error) {
            return error.what();
        }
        return "no error";
    };
    const std::string good = "\"G\nood\",http://g/,1=general,PAD,high,\n";
    EXPECT_EQ(message(""), "line 1: the columns are not those of a list of sites");
    EXPECT_EQ(message("url\n"), "line 1: the columns are not those of a list of sites");
    EXPECT_EQ(message(header + good + "x,http://x/,1=general,PAD,high\n"),
              "line 4: 5 fields where there are 6");
    EXPECT_EQ(message(header + ",http://x/,1=general,PAD,high,\n"), "line 2: a site without a description");
    EXPECT_EQ(message(header + "x,ftp://x/,1=general,PAD,high,\n"), "line 2: no web address: ftp://x/");
    EXPECT_EQ(message(header + "x,http://it's/,1=general,PAD,high,\n"),
              "line 2: an address that holds an apostrophe");
    EXPECT_EQ(message(header + "x,http://x/,general,PAD,high,\n"), "line 2: no category: general");
    EXPECT_EQ(message(header + "x,http://x/,1=general,pad,high,\n"), "line 2: neither PAD nor NO: pad");
    EXPECT_EQ(message(header + "x,http://x/,1=general,PAD,sure,\n"), "line 2: not high, medium or low: sure");
    EXPECT_EQ(message(header + "\"x,http://x/"), "line 2: a quotation mark that is not closed");
    EXPECT_EQ(message(header + "\"x\"y,http://x/,1=general,PAD,high,\n"),
              "line 2: text after a quoted field");
}

TEST(SiteCsv, ShippedListIsWellFormedAndNamesEachAddressOnce) {
    const auto sites = read_site_csv(bytes_of(KESTRUNE_SOURCE_DIR "/data/sites.csv"));
    EXPECT_FALSE(sites.empty());
    std::set<std::string> addresses;
    for (const SiteRow& site : sites)
        EXPECT_TRUE(addresses.insert(*site.url).second) << *site.url;
    // What the program's first press of "Submit" looks for.
    EXPECT_TRUE(std::any_of(sites.begin(), sites.end(), [](const SiteRow& site) {
        return site.pad == "PAD" && site.softtype == "1=general";
    }));
}

} // namespace
} // namespace kestrune
