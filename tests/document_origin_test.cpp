#include "filling/document_origin.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

TEST(OriginOfAddress, SchemeHostAndAPortOfItsOwnWithoutRegardToLetterCase) {
    EXPECT_EQ(origin_of_address("http://a.b/dir/x.php?q=http://c.d/"), "http://a.b");
    EXPECT_EQ(origin_of_address("HTTPS://A.B:8443/"), "https://a.b:8443");
    EXPECT_EQ(origin_of_address("http://a.b?x"), "http://a.b");
    EXPECT_EQ(origin_of_address("http://a.b"), "http://a.b");
}

TEST(OriginOfAddress, DefaultPortsAreLeftOutAndOnlyOfTheirOwnScheme) {
    EXPECT_EQ(origin_of_address("http://a.b:80/"), "http://a.b");
    EXPECT_EQ(origin_of_address("https://a.b:443/"), "https://a.b");
    EXPECT_EQ(origin_of_address("https://a.b:80/"), "https://a.b:80");
    EXPECT_EQ(origin_of_address("http://[::1]:80/"), "http://[::1]");
}

TEST(OriginOfAddress, UserNameIsNoHost) {
    EXPECT_EQ(origin_of_address("http://a.b@c.d/"), "http://c.d");
    EXPECT_EQ(origin_of_address("http://c.d/@a.b"), "http://c.d");
    EXPECT_EQ(origin_of_address("http://c.d\\@a.b/"), "http://c.d") << "a browser takes it for a slash";
}

TEST(OriginOfAddress, WhatIsNoWebAddressIsOfNoOrigin) {
    for (const char* address : {"", "add.cgi", "//a.b/", "file:///etc/x", "data:text/html,x", "about:blank",
                                "ftp://a.b/", "http:///x", "javascript:x"})
        EXPECT_EQ(origin_of_address(address), "") << address;
}

TEST(OriginOf, AsTheEngineSaysAndWithoutThatAsTheAddressSays) {
    PageDocument document;
    document.url = "http://a.b/x";
    EXPECT_EQ(origin_of(document), "http://a.b");
    document.origin = "null";
    EXPECT_EQ(origin_of(document), "http://a.b") << "sandboxed, but of that site";
    document.origin = "http://c.d";
    EXPECT_EQ(origin_of(document), "http://c.d");
}

TEST(SharesRecords, NobodyIsOfTheSameOriginAsADocumentOfNone) {
    PageDocument page;
    page.url = "data:text/html,x";
    EXPECT_FALSE(shares_records(page, page, "add.cgi"));
}

} // namespace
} // namespace kestrune
