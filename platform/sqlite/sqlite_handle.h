#pragma once

#include "platform/database.h"

#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace kestrune {

// An open SQLite database. Errors are thrown as DatabaseError.
class SqliteConnection {
public:
    // An existing database file, never a new one; read-only when the file may not be written. A file that
    // does not begin as an SQLite database does is refused before anything beside it is looked at: a journal
    // of that name would otherwise be played back into it.
    static SqliteConnection open_existing(const std::string& path);
    // A new database in a new or empty file.
    static SqliteConnection create(const std::string& path);

    [[nodiscard]] sqlite3* get() const { return handle_.get(); }
    // The full path of the file, links followed.
    [[nodiscard]] std::string_view file() const { return sqlite3_db_filename(get(), "main"); }
    void run(const char* sql);
    // Whether a transaction is open.
    [[nodiscard]] bool in_transaction() const { return sqlite3_get_autocommit(get()) == 0; }
    [[noreturn]] void fail(std::string_view what) const;

private:
    SqliteConnection(const std::string& path, int flags);
    void check_header() const;
    [[nodiscard]] bool has_journal() const;
    void distrust_schema();

    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    std::unique_ptr<sqlite3, Close> handle_;
};

// A prepared statement. It must not outlive its connection.
class SqliteQuery {
public:
    SqliteQuery() = default;
    SqliteQuery(const SqliteConnection& connection, const std::string& sql);
    // Nothing prepared when the text makes no sense for this database: it names a table, a column or an index
    // that is not there.
    static SqliteQuery if_possible(const SqliteConnection& connection, const std::string& sql);

    explicit operator bool() const { return handle_ != nullptr; }
    [[nodiscard]] sqlite3_stmt* get() const { return handle_.get(); }

    // index from 1. Values are copied.
    void bind(int index, const DatabaseValue& value);
    // True when there is a row, false at the end.
    bool step();
    // Lets go of the row and of the locks held for it; the values stay bound.
    void reset() { sqlite3_reset(handle_.get()); }

    // Columns from 0.
    [[nodiscard]] int columns() const { return sqlite3_column_count(handle_.get()); }
    [[nodiscard]] std::string name(int column) const;
    [[nodiscard]] DatabaseValue value(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const {
        return sqlite3_column_int64(handle_.get(), column);
    }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

} // namespace kestrune
