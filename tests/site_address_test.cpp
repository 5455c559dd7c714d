#include "platform/site_address.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

TEST(SiteAddress, LetterCaseOfSchemeAndHostAndOneFinalSlashMakeNoDifference) {
    EXPECT_EQ(site_address_key("HTTP://A.Example/"), site_address_key("http://a.example"));
    EXPECT_EQ(site_address_key("http://a.example/Path/"), site_address_key("http://A.example/Path"));
}

TEST(SiteAddress, EverythingElseMakesADifference) {
    EXPECT_NE(site_address_key("http://a.example/path"), site_address_key("http://a.example/Path"));
    EXPECT_NE(site_address_key("http://a.example"), site_address_key("https://a.example"));
    EXPECT_NE(site_address_key("http://a.example//"), site_address_key("http://a.example"));
    EXPECT_NE(site_address_key("http://a.example?X"), site_address_key("http://a.example?x"));
}

TEST(SiteAddress, WebAddressHasNoProblem) {
    EXPECT_EQ(site_address_problem("http://a.example/"), "");
    EXPECT_EQ(site_address_problem("HTTPS://a.example/x?y=%27#z"), "");
}

TEST(SiteAddress, WhatNoBrowserOpensIsAProblem) {
    for (const char* const url : {"", "a.example", "ftp://a.example/", "javascript:alert(1)", "http://",
                                  "http:///path", "http://a.example/a b", "http://a.example/\n", "http:/a"})
        EXPECT_NE(site_address_problem(url), "") << url;
}

TEST(SiteAddress, ApostropheIsAProblemForSuchASiteCouldNeverBeMarked) {
    EXPECT_NE(site_address_problem("http://a.example/it's"), "");
}

} // namespace
} // namespace kestrune
