#include "platform/sqlite/site_sql.h"

#include "platform/sqlite/site_schema.h"

namespace kestrune {
namespace {

using std::string;

const string rows = "SELECT _rowid_, * FROM tblSubmitList";
// A number is a column of the result, so that the order also goes for a union.
const string queue_order =
    " ORDER BY referral DESC, linkfound DESC, softtype COLLATE NOCASE, description COLLATE NOCASE, 1";

string by(const char* index) { return string(" INDEXED BY ") + index; }

string pad_term(const SiteFilter& filter) {
    return filter.pad ? site_terms::with_pad : site_terms::without_pad;
}

string queue_terms(const SiteFilter& filter) {
    return string(" WHERE ") + site_terms::queued + " AND " + pad_term(filter);
}

string category_term(const SiteFilter& filter) {
    if (filter.categories.empty())
        return {};
    string term = " AND softtype COLLATE NOCASE IN (";
    for (std::size_t i = 1; i <= filter.categories.size(); ++i)
        term += (i == 1 ? "?" : ", ?") + std::to_string(i);
    return term + ")";
}

std::vector<DatabaseValue> category_values(const SiteFilter& filter) {
    return {filter.categories.begin(), filter.categories.end()};
}

// One look-up for each category, merged in order: an index leads to the first site of a category, but to the
// first of several only by way of all of them.
string indexed_queue(const SiteFilter& filter) {
    if (filter.categories.empty())
        return rows + by(filter.pad ? site_index::queue_with_pad : site_index::queue_without_pad) +
               queue_terms(filter) + queue_order;
    string sql;
    for (std::size_t i = 1; i <= filter.categories.size(); ++i) {
        sql += (i == 1 ? "" : " UNION ALL ") + rows +
               by(filter.pad ? site_index::category_queue_with_pad : site_index::category_queue_without_pad) +
               queue_terms(filter) + " AND softtype = ?" + std::to_string(i) + " COLLATE NOCASE";
    }
    return sql + queue_order;
}

struct Translate {
    SiteSql operator()(const SiteByKey& by_key) const {
        return {{}, rows + " WHERE padkey = ?1", {std::int64_t{by_key.padkey}}, "tblSubmitList"};
    }
    SiteSql operator()(const SitesByUrl& by_url) const {
        return {{}, rows + " WHERE url = ?1 COLLATE BINARY ORDER BY 1", {by_url.url}, "tblSubmitList"};
    }
    SiteSql operator()(const SiteList& list) const {
        const SiteFilter& filter = list.filter;
        const string where = " WHERE " + pad_term(filter) + category_term(filter);
        const string order = " ORDER BY description COLLATE NOCASE, 1";
        const char* const index = filter.pad ? site_index::list_with_pad : site_index::list_without_pad;
        return {rows + by(index) + where + order, rows + where + order, category_values(filter),
                "tblSubmitList"};
    }
    SiteSql operator()(const SiteQueue& queue) const {
        const SiteFilter& filter = queue.filter;
        return {indexed_queue(filter), rows + queue_terms(filter) + category_term(filter) + queue_order,
                category_values(filter), "tblSubmitList"};
    }
    SiteSql operator()(const SiteQueueCount& count) const {
        const SiteFilter& filter = count.filter;
        const string select = "SELECT count(*) AS cnt FROM tblSubmitList";
        const string where = queue_terms(filter) + category_term(filter);
        const char* const index = filter.pad ? site_index::count_with_pad : site_index::count_without_pad;
        return {select + by(index) + where, select + where, category_values(filter), nullptr};
    }
    SiteSql operator()(const AllSites& /*all*/) const {
        return {{}, rows + " ORDER BY url COLLATE BINARY, 1", {}, "tblSubmitList"};
    }
    // Two selects in a row rather than a sort: a caller that takes the first row has no other read, however
    // many there are without an address.
    SiteSql operator()(const ReferralsByUrl& by_url) const {
        const string referrals = "SELECT _rowid_, * FROM referral2 WHERE url = ";
        return {{},
                referrals + "?1 COLLATE NOCASE UNION ALL " + referrals +
                    "?2 COLLATE NOCASE AND ?1 <> ?2 COLLATE NOCASE",
                {by_url.url, by_url.alternative},
                "referral2"};
    }
};

} // namespace

SiteSql site_sql(const Statement& statement) { return std::visit(Translate{}, statement); }

} // namespace kestrune
