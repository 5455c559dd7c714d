#include "platform/sqlite/sqlite_database.h"

#include "platform/diagnostics.h"

namespace kestrune {

std::unique_ptr<Recordset> SqliteDatabase::open(const std::string& path, std::string_view statement) {
    const Statement known = parse_statement(statement);
    for (SqliteRecordset* const other : HeldBack(*held_back_)) {
        try {
            other->store_held_back();
        } catch (const DatabaseError& error) {
            diagnostics::report("changes of another walk were not stored", error.what());
        }
    }
    return std::make_unique<SqliteRecordset>(SqliteConnection::open_existing(path), known, held_back_);
}

} // namespace kestrune
