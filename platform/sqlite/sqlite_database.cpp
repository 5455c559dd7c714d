#include "platform/sqlite/sqlite_database.h"

#include "platform/diagnostics.h"
#include "platform/sqlite/database_copy.h"

#include <utility>

namespace kestrune {

std::unique_ptr<Recordset> SqliteDatabase::open(const std::string& path, std::string_view statement) {
    const Statement known = parse_statement(statement);
    SqliteConnection connection = SqliteConnection::open_existing(path);
    store_held_back(connection.file());
    return std::make_unique<SqliteRecordset>(std::move(connection), known, held_back_);
}

void SqliteDatabase::copy(const std::string& from, const std::string& to) {
    const SqliteConnection source = SqliteConnection::open_existing(from);
    store_held_back(source.file());
    copy_database(source, to);
}

void SqliteDatabase::store_held_back(std::string_view file) {
    for (SqliteRecordset* const other : HeldBack(*held_back_)) {
        if (other->file() != file)
            continue;
        try {
            other->store_held_back();
        } catch (const DatabaseError& error) {
            diagnostics::report("changes of another walk were not stored", error.what());
        }
    }
}

} // namespace kestrune
