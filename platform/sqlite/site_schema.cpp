#include "platform/sqlite/site_schema.h"

#include "platform/sqlite/site_sql.h"
#include "platform/sqlite/sqlite_handle.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrune {
namespace {

const char* const table =
    "CREATE TABLE tblSubmitList("
    "padkey INTEGER PRIMARY KEY, url TEXT NOT NULL, description TEXT NOT NULL, "
    "status TEXT NOT NULL, softtype TEXT, pad TEXT, referral INTEGER, linkfound INTEGER, "
    "note TEXT)";

// What a queue index is sorted by leads from its first entry to the next site; what it holds beyond that
// would only make it larger. Counting walks as few bytes as possible.
std::string queue_index(const char* name, const std::string& columns, const char* pad_term) {
    return std::string("CREATE INDEX ") + name + " ON tblSubmitList(" + columns + ") WHERE " +
           site_terms::queued + " AND " + pad_term;
}

std::string list_index(const char* name, const char* pad_term) {
    return std::string("CREATE INDEX ") + name + " ON tblSubmitList(description COLLATE NOCASE) WHERE " +
           pad_term;
}

// What the queue is sorted by, without and with its categories apart.
const char* const by_rank =
    "referral DESC, linkfound DESC, softtype COLLATE NOCASE, description COLLATE NOCASE";
const char* const by_category =
    "softtype COLLATE NOCASE, referral DESC, linkfound DESC, description COLLATE NOCASE";
const char* const category_alone = "softtype COLLATE NOCASE";

DatabaseValue stored(const std::optional<std::string>& text) {
    return text ? DatabaseValue{*text} : DatabaseValue{};
}

DatabaseValue stored(const std::optional<std::int64_t>& number) {
    return number ? DatabaseValue{*number} : DatabaseValue{};
}

void insert_rows(const SqliteConnection& database, const std::vector<SiteRow>& rows) {
    SqliteQuery insert{database,
                       "INSERT INTO tblSubmitList(padkey, url, description, status, softtype, pad, referral, "
                       "linkfound, note) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)"};
    for (const SiteRow& row : rows) {
        insert.bind(1, std::int64_t{row.padkey});
        insert.bind(2, stored(row.url));
        insert.bind(3, stored(row.description));
        insert.bind(4, stored(row.status));
        insert.bind(5, stored(row.softtype));
        insert.bind(6, stored(row.pad));
        insert.bind(7, stored(row.referral));
        insert.bind(8, stored(row.linkfound));
        insert.bind(9, stored(row.note));
        insert.step();
        insert.reset();
    }
}

// A file that goes away again unless it is given its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target) : path_(target + ".XXXXXX") {
        const int descriptor = ::mkostemp(path_.data(), 0);
        if (descriptor < 0)
            throw DatabaseError("cannot create " + target + ": " + std::strerror(errno));
        // A library is installed for all users of a machine and read by each.
        ::fchmod(descriptor, 0644);
        ::close(descriptor);
    }
    ~TemporaryFile() { ::unlink(path_.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    TemporaryFile(TemporaryFile&&) = delete;
    TemporaryFile& operator=(TemporaryFile&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    // A second name for the file: unlike a rename it fails where the name is taken.
    void become(const std::string& target) const {
        if (::link(path_.c_str(), target.c_str()) == 0)
            return;
        const bool no_links_here = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
        if (no_links_here && ::access(target.c_str(), F_OK) != 0 &&
            std::rename(path_.c_str(), target.c_str()) == 0)
            return;
        throw DatabaseError("cannot create " + target + ": " + std::strerror(errno));
    }

private:
    std::string path_;
};

} // namespace

void create_site_indexes(SqliteConnection& database) {
    using site_terms::with_pad;
    using site_terms::without_pad;
    for (const std::string& index :
         {queue_index(site_index::queue_with_pad, by_rank, with_pad),
          queue_index(site_index::queue_without_pad, by_rank, without_pad),
          queue_index(site_index::category_queue_with_pad, by_category, with_pad),
          queue_index(site_index::category_queue_without_pad, by_category, without_pad),
          queue_index(site_index::count_with_pad, category_alone, with_pad),
          queue_index(site_index::count_without_pad, category_alone, without_pad),
          list_index(site_index::list_with_pad, with_pad),
          list_index(site_index::list_without_pad, without_pad),
          std::string("CREATE INDEX sites_by_url ON tblSubmitList(url)")})
        database.run(index.c_str());
}

void create_referral_indexes(SqliteConnection& database) {
    database.run("CREATE INDEX referrals_by_url ON referral2(url COLLATE NOCASE)");
}

void create_site_library(const std::string& path, const std::vector<SiteRow>& rows) {
    if (::access(path.c_str(), F_OK) == 0)
        throw DatabaseError("there is a file already: " + path);
    const TemporaryFile file{path};
    {
        SqliteConnection database = SqliteConnection::create(file.path());
        database.run("PRAGMA journal_mode = MEMORY");
        database.run("BEGIN");
        database.run(table);
        insert_rows(database, rows);
        create_site_indexes(database);
        database.run("COMMIT");
    }
    file.become(path);
}

} // namespace kestrune
