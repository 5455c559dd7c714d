#include "platform/sqlite/site_merge.h"

#include "platform/database_value.h"
#include "platform/site_address.h"
#include "platform/sqlite/sqlite_handle.h"

#include <limits>
#include <optional>
#include <set>

namespace kestrune {
namespace {

struct ShippedSite {
    std::string key;
    std::vector<DatabaseValue> values; // url, description, softtype, pad, referral, linkfound
};

std::vector<ShippedSite> read_shipped(const std::string& path) {
    const SqliteConnection library = SqliteConnection::open_existing(path);
    SqliteQuery rows{library,
                     "SELECT url, description, softtype, pad, referral, linkfound FROM tblSubmitList "
                     "WHERE url IS NOT NULL AND description IS NOT NULL ORDER BY padkey"};
    std::vector<ShippedSite> sites;
    while (rows.step()) {
        ShippedSite site;
        for (int i = 0; i < rows.columns(); ++i)
            site.values.push_back(rows.value(i));
        site.key = site_address_key(as_text(site.values[0]).value_or(""));
        sites.push_back(std::move(site));
    }
    return sites;
}

bool has_memory(const SqliteConnection& library) {
    SqliteQuery table{library, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'shipped_sites'"};
    return table.step();
}

// The addresses that must not be added: the user has them, or had them and took them out.
std::set<std::string> settled_addresses(const SqliteConnection& library) {
    std::set<std::string> settled;
    SqliteQuery own{library, "SELECT url FROM tblSubmitList WHERE url IS NOT NULL"};
    while (own.step())
        settled.insert(site_address_key(as_text(own.value(0)).value_or("")));
    if (!has_memory(library))
        return settled;
    SqliteQuery shipped{library, "SELECT address FROM shipped_sites"};
    while (shipped.step())
        settled.insert(as_text(shipped.value(0)).value_or(""));
    return settled;
}

class Merge {
public:
    explicit Merge(const std::string& path) : library_(SqliteConnection::open_existing(path)) {
        library_.run("BEGIN IMMEDIATE");
        SqliteQuery last{library_, "SELECT max(padkey) FROM tblSubmitList"};
        last.step();
        next_key_ = last.integer(0) + 1;
        settled_ = settled_addresses(library_);
    }

    // True when the user's library does not have the site, the first time it is asked about.
    bool is_new(const ShippedSite& site) { return settled_.insert(site.key).second; }

    void add(const ShippedSite& site) {
        if (next_key_ > std::numeric_limits<std::int32_t>::max())
            throw DatabaseError("no key is left for another site");
        SqliteQuery insert{library_, "INSERT INTO tblSubmitList(url, description, softtype, pad, referral, "
                                     "linkfound, padkey, status, note) VALUES(?, ?, ?, ?, ?, ?, ?, 'N', '')"};
        int index = 0;
        for (const DatabaseValue& value : site.values)
            insert.bind(++index, value);
        insert.bind(++index, next_key_++);
        insert.step();
    }
    void remember(const std::vector<ShippedSite>& sites) {
        library_.run("CREATE TABLE IF NOT EXISTS shipped_sites(address TEXT PRIMARY KEY) WITHOUT ROWID");
        SqliteQuery remember{library_, "INSERT OR IGNORE INTO shipped_sites VALUES(?1)"};
        for (const ShippedSite& site : sites) {
            remember.bind(1, site.key);
            remember.step();
            remember.reset();
        }
    }
    void commit() { library_.run("COMMIT"); }

private:
    SqliteConnection library_;
    std::int64_t next_key_ = 0;
    std::set<std::string> settled_;
};

} // namespace

std::vector<MergedSite> merge_site_libraries(const std::string& newer, const std::string& own,
                                             MergeMode mode) {
    const std::vector<ShippedSite> shipped = read_shipped(newer);
    Merge merge{own};
    std::vector<MergedSite> added;
    for (const ShippedSite& site : shipped) {
        if (!merge.is_new(site))
            continue;
        added.push_back({as_text(site.values[0]).value_or(""), as_text(site.values[1]).value_or("")});
        if (mode == MergeMode::Store)
            merge.add(site);
    }
    if (mode == MergeMode::Store) {
        merge.remember(shipped);
        merge.commit();
    }
    return added;
}

} // namespace kestrune
