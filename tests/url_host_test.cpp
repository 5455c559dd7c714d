#include "shell/url_host.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

TEST(GetUrlHost, HttpsAddressInUpperCaseYieldsItsLowerCasedHost) {
    EXPECT_EQ(GetUrlHost("HTTPS://Example.COM/path"), "example.com");
    EXPECT_EQ(GetUrlHost("http://Example.com:8080/"), "example.com:8080");
}

TEST(GetUrlHost, SchemeThatIsNotRecognisedYieldsTheTextBeforeTheFirstSlash) {
    EXPECT_EQ(GetUrlHost("ftp://host/x"), "ftp:");
}

TEST(GetUrlHost, BareHostYieldsItself) { EXPECT_EQ(GetUrlHost("example.com"), "example.com"); }

TEST(GetUrlHost, AddressWithNothingAfterItsHostYieldsTheWholeLowerCasedAddress) {
    EXPECT_EQ(GetUrlHost("http://Example.COM"), "http://example.com");
    EXPECT_EQ(GetUrlHost("http://Example.COM/"), "example.com");
}

} // namespace
} // namespace kestrune
