#include "libraries.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};

// Attempts to make a statement say more than it should, a thousand of them: each of the first list by itself,
// then pieces of both strung together.
std::vector<std::string> hostile_values() {
    const std::vector<std::string> whole{"'",
                                         "''",
                                         "'''",
                                         "' or '1'='1",
                                         "' or 1=1 --",
                                         "' or ''='",
                                         "x' or url like '%",
                                         "' or padkey > 0 or '",
                                         "'; delete from tblSubmitList; --",
                                         "'; drop table tblSubmitList; --",
                                         "'; update tblSubmitList set status = 'Y'; --",
                                         "' union select * from tblSubmitList --",
                                         "' union all select 1,2,3,4,5,6,7,8,9 --",
                                         "'/*",
                                         "*/'",
                                         "' /* */ or /* */ '1'='1",
                                         "%",
                                         "_",
                                         "%%",
                                         "http://site_.example/",
                                         "http://site%",
                                         "[a-z]*",
                                         "*",
                                         "?",
                                         "http://site1.example/' --",
                                         "http://site1.example/' or '1' = '1",
                                         "http://site1.example/'; --",
                                         "\\'",
                                         "\\",
                                         "\"",
                                         "`",
                                         "; delete",
                                         "--",
                                         "-- '",
                                         "#",
                                         "0x27",
                                         "char(39)",
                                         "' || '",
                                         "'||(select url from tblSubmitList limit 1)||'",
                                         "null",
                                         "NULL",
                                         "' is null or '' = '",
                                         "1 or 1=1",
                                         "K1 or 1=1",
                                         "K1; delete from tblSubmitList",
                                         "K1'",
                                         "K-1",
                                         "K+1",
                                         "K 1",
                                         "K1 ",
                                         "K01x",
                                         "K1e0",
                                         "K0x1",
                                         "K4294967297",
                                         "K99999999999999999999",
                                         "K",
                                         "",
                                         " ",
                                         std::string("\0", 1),
                                         std::string("http://site1.example/\0", 22),
                                         std::string("K1\0", 3),
                                         std::string("a\0' or '1'='1", 13),
                                         "\xc0\xa7 or 1=1",
                                         "\xe0\x80\xa7",
                                         "\xbf\x27 or 1=1 --",
                                         "\xff\xfe",
                                         "\xef\xbc\x87 or 1=1 --",
                                         "\xca\xbc or 1=1",
                                         "\xe2\x80\x99 or 1=1",
                                         "\xf0\x9f\x98\x80'",
                                         "\xed\xa0\x80",
                                         "e\xcc\x81",
                                         "\xe2\x80\xae",
                                         "\r\n' or 1=1",
                                         "\t",
                                         "' GO delete from tblSubmitList",
                                         "':x",
                                         "?1",
                                         "@a",
                                         "$a",
                                         ":a",
                                         "' collate nocase or '' = ''",
                                         "' limit 0 offset '",
                                         "' order by padkey --",
                                         "' and (select load_extension('x')) --",
                                         "' and randomblob(1000000000) --",
                                         std::string(5000, '\''),
                                         std::string(100000, 'a'),
                                         "http://site1.example/" + std::string(3000, '%')};
    std::vector<std::string> pieces{"'",
                                    " or ",
                                    "--",
                                    ";",
                                    "1=1",
                                    "delete from tblSubmitList",
                                    "%",
                                    "/*",
                                    "*/",
                                    "K1",
                                    "http://site1.example/",
                                    std::string("\0", 1),
                                    "\xc0\xa7",
                                    " union ",
                                    "select",
                                    "(",
                                    ")",
                                    "\"",
                                    " and ",
                                    "\xe2\x80\x99"};
    std::vector<std::string> values = whole;
    std::mt19937 random{39};
    const auto pick = [&random](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    while (values.size() < 1000) {
        std::string value;
        for (std::size_t left = 2 + pick(6); left > 0; --left)
            value += pieces[pick(pieces.size())];
        values.push_back(std::move(value));
    }
    return values;
}

// Whatever stands in front: the key begins at the second character.
bool names_a_site(const std::string& listKey) {
    const std::string key = listKey.substr(std::min<std::size_t>(1, listKey.size()));
    return key == "1" || key == "2" || key == "3";
}

template <typename Libraries>
class HostileValues : public testing::Test {
protected:
    HostileValues() {
        libraries.create(lib, {site(1, "One"), site(2, "Two"), site(3, "Three")});
        libraries.create_referrals(std::string(referral_database_name), {{"http://site1.example", 5}});
        before = libraries.sites(lib);
    }
    void expect_unchanged(const std::string& value) {
        ASSERT_TRUE(libraries.sites(lib) == before)
            << "after " << testing::PrintToString(value.substr(0, 200));
    }
    static bool is_address(const std::string& value) {
        return value == "http://site1.example/" || value == "http://site2.example/" ||
               value == "http://site3.example/";
    }

    Libraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    std::vector<SiteRow> before;
};
TYPED_TEST_SUITE(HostileValues, EveryLibrary);

TYPED_TEST(HostileValues, AddressToMarkFindsNoOtherRowAndChangesNothing) {
    for (const std::string& value : hostile_values()) {
        if (this->is_address(value))
            continue;
        EXPECT_FALSE(this->library.UpdateSubmitStatus(lib, value, "Y", "changed"));
        EXPECT_FALSE(this->library.SetLinkFound(lib, value, 9));
        this->expect_unchanged(value);
    }
}

TYPED_TEST(HostileValues, ListKeyFindsNoOtherRowAndChangesNothing) {
    for (const std::string& value : hostile_values()) {
        for (const std::string& key : {value, "K" + value, "K1" + value}) {
            if (names_a_site(key))
                continue;
            EXPECT_FALSE(this->library.UpdateSiteRecord(lib, key, "a", "b", "Y", "c", "d"));
            EXPECT_FALSE(this->library.DeleteSiteRecord(lib, key));
            this->expect_unchanged(key);
        }
    }
}

TYPED_TEST(HostileValues, ValueStoredInARowChangesThatRowAlone) {
    bool edit = false;
    for (const std::string& value : hostile_values()) {
        edit = !edit;
        SiteRow& row = this->before[edit ? 1 : 2];
        if (edit) {
            EXPECT_TRUE(this->library.UpdateSiteRecord(lib, "K2", value, value, value, value, value));
            row.url = row.description = row.softtype = value;
        } else {
            EXPECT_TRUE(this->library.UpdateSubmitStatus(lib, "http://site3.example/", value, value));
        }
        row.status = row.note = value;
        this->expect_unchanged(value);
    }
}

TYPED_TEST(HostileValues, AddressThatIsRankedFindsItsOwnRowOrNone) {
    const ReferralRanking ranking{this->libraries.database, this->libraries.files, this->libraries.folder};
    for (const std::string& value : hostile_values()) {
        if (value.find('\'') != std::string::npos) {
            EXPECT_THROW((void)ranking.LookupReferralHits(value), DatabaseError);
        } else if (!this->is_address(value)) {
            EXPECT_EQ(ranking.LookupReferralHits(value), 0);
        }
        this->expect_unchanged(value);
    }
}

} // namespace
} // namespace kestrune
