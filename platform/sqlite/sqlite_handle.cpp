#include "platform/sqlite/sqlite_handle.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace kestrune {
namespace {

// About a second: longer than a program that writes row after row keeps the file (sqlite_recordset.cpp),
// because a mark that gives up is lost. Looking again often finds that program's short pauses.
constexpr int most_looks_again = 1000;
constexpr std::chrono::milliseconds between_looks{1};

int look_again(void* /*context*/, int looks) {
    if (looks >= most_looks_again)
        return 0;
    std::this_thread::sleep_for(between_looks);
    return 1;
}

constexpr std::array<unsigned char, 16> magic{'S', 'Q', 'L', 'i', 't', 'e', ' ', 'f',
                                              'o', 'r', 'm', 'a', 't', ' ', '3', '\0'};

} // namespace

SqliteConnection::SqliteConnection(const std::string& path, int flags) {
    sqlite3* handle = nullptr;
    // A connection stays within its operation, which runs on one thread.
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK)
        fail("cannot open " + path);
    sqlite3_busy_handler(handle, look_again, nullptr);
}

SqliteConnection SqliteConnection::open_existing(const std::string& path) {
    // An empty name would be a temporary database.
    if (path.empty())
        throw DatabaseError("cannot open a database without a name");
    SqliteConnection connection{path, SQLITE_OPEN_READWRITE};
    connection.check_header();
    connection.distrust_schema();
    return connection;
}

SqliteConnection SqliteConnection::create(const std::string& path) {
    return {path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE};
}

// Read through the connection's own descriptor: closing another one on the same file would drop the locks
// that this process holds on it.
void SqliteConnection::check_header() const {
    sqlite3_file* file = nullptr;
    std::array<unsigned char, 18> header{};
    const int found = sqlite3_file_control(get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (found != SQLITE_OK || file == nullptr || file->pMethods == nullptr ||
        file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0) != SQLITE_OK ||
        !std::equal(magic.begin(), magic.end(), header.begin()))
        throw DatabaseError("not an SQLite database");

    // SQLite itself notices missing pages, and fills up a page that is cut with zeros.
    const int stored_size = header[16] * 256 + header[17];
    const int page_size = stored_size == 1 ? 65536 : stored_size;
    sqlite3_int64 size = 0;
    if (page_size == 0 || file->pMethods->xFileSize(file, &size) != SQLITE_OK ||
        (size % page_size != 0 && !has_journal()))
        throw DatabaseError("a truncated SQLite database");
}

// While a journal stands beside it the file may be in the middle of a change, and SQLite knows what to do.
bool SqliteConnection::has_journal() const {
    sqlite3_vfs* vfs = nullptr;
    int exists = 0;
    return sqlite3_file_control(get(), "main", SQLITE_FCNTL_VFS_POINTER, &vfs) == SQLITE_OK &&
           vfs->xAccess(vfs, sqlite3_filename_journal(sqlite3_db_filename(get(), "main")),
                        SQLITE_ACCESS_EXISTS, &exists) == SQLITE_OK &&
           exists != 0;
}

// A library may come from anywhere. Its schema must not run anything by itself, and a misspelt column must be
// an error, never a text.
void SqliteConnection::distrust_schema() {
    for (const int off : {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_TRIGGER,
                          SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL})
        sqlite3_db_config(get(), off, 0, nullptr);
    sqlite3_db_config(get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

void SqliteConnection::run(const char* sql) {
    if (sqlite3_exec(get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(sql);
}

void SqliteConnection::fail(std::string_view what) const {
    throw DatabaseError(std::string(what) + ": " + sqlite3_errmsg(get()));
}

SqliteQuery::SqliteQuery(const SqliteConnection& connection, const std::string& sql) {
    sqlite3_stmt* handle = nullptr;
    const int result =
        sqlite3_prepare_v2(connection.get(), sql.c_str(), static_cast<int>(sql.size()) + 1, &handle, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK)
        connection.fail(sql);
}

SqliteQuery SqliteQuery::if_possible(const SqliteConnection& connection, const std::string& sql) {
    SqliteQuery query;
    sqlite3_stmt* handle = nullptr;
    const int result =
        sqlite3_prepare_v2(connection.get(), sql.c_str(), static_cast<int>(sql.size()) + 1, &handle, nullptr);
    query.handle_.reset(handle);
    if (result != SQLITE_OK && result != SQLITE_ERROR)
        connection.fail(sql);
    return query;
}

void SqliteQuery::bind(int index, const DatabaseValue& value) {
    int result = SQLITE_OK;
    if (const auto* const text = std::get_if<std::string>(&value))
        result = sqlite3_bind_text64(handle_.get(), index, text->data(), text->size(), SQLITE_TRANSIENT,
                                     SQLITE_UTF8);
    else if (const auto* const number = std::get_if<std::int64_t>(&value))
        result = sqlite3_bind_int64(handle_.get(), index, *number);
    else
        result = sqlite3_bind_null(handle_.get(), index);
    if (result != SQLITE_OK)
        throw DatabaseError("a value cannot be bound");
}

bool SqliteQuery::step() {
    switch (sqlite3_step(handle_.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        throw DatabaseError(sqlite3_errmsg(sqlite3_db_handle(handle_.get())));
    }
}

std::string SqliteQuery::name(int column) const {
    const char* const name = sqlite3_column_name(handle_.get(), column);
    return name == nullptr ? std::string{} : std::string{name};
}

DatabaseValue SqliteQuery::value(int column) const {
    sqlite3_stmt* const row = handle_.get();
    switch (sqlite3_column_type(row, column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return std::int64_t{sqlite3_column_int64(row, column)};
    default:
        break;
    }
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    if (text == nullptr)
        return {};
    return std::string{text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

} // namespace kestrune
