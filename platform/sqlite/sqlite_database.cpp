#include "platform/sqlite/sqlite_database.h"

namespace kestrune {

std::unique_ptr<Recordset> SqliteDatabase::open(const std::string& path, std::string_view /*statement*/) {
    throw DatabaseError("cannot open " + path);
}

} // namespace kestrune
