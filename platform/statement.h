#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrune {

// The categories of programs a site can take, as the column softtype holds them.
inline constexpr std::array<std::string_view, 6> category_labels{"1=general",  "2=game",     "3=developer",
                                                                 "4=business", "5=freeware", "9=special"};

// The statements that a database runs, read back from their texts. Nothing else runs: the program composes
// its statements by concatenation, and a text that matches a shape in full cannot carry anything besides its
// values.

// Sites with PAD support or without (a Null is neither), of the categories given; none given means all.
struct SiteFilter {
    bool pad = true;
    std::vector<std::string> categories;
    friend bool operator==(const SiteFilter&, const SiteFilter&) = default;
};

struct SiteByKey {
    std::int32_t padkey = 0;
    friend bool operator==(const SiteByKey&, const SiteByKey&) = default;
};
// The address compares exactly.
struct SitesByUrl {
    std::string url;
    friend bool operator==(const SitesByUrl&, const SitesByUrl&) = default;
};
// By description.
struct SiteList {
    SiteFilter filter;
    friend bool operator==(const SiteList&, const SiteList&) = default;
};
// Sites of status "N": highest referral first, then highest linkfound, then by softtype, then by description.
struct SiteQueue {
    SiteFilter filter;
    friend bool operator==(const SiteQueue&, const SiteQueue&) = default;
};
// One row with the column cnt: how many sites the queue has.
struct SiteQueueCount {
    SiteFilter filter;
    friend bool operator==(const SiteQueueCount&, const SiteQueueCount&) = default;
};
// Every site, by address.
struct AllSites {
    friend bool operator==(const AllSites&, const AllSites&) = default;
};
// Rows of the referral table whose address is one of the two, without regard to letter case; those of `url`
// come first.
struct ReferralsByUrl {
    std::string url;
    std::string alternative;
    friend bool operator==(const ReferralsByUrl&, const ReferralsByUrl&) = default;
};

using Statement =
    std::variant<SiteByKey, SitesByUrl, SiteList, SiteQueue, SiteQueueCount, AllSites, ReferralsByUrl>;

// The statement that the text spells, to the letter. A quoted value ends at the next apostrophe, so a value
// that holds one leaves a text of no known shape. Throws DatabaseError for every text of no known shape.
Statement parse_statement(std::string_view text);

} // namespace kestrune
