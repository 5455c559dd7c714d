#include "platform/sqlite/open_file.h"

#include <utility>

namespace kestrune {

OpenFile::OpenFile(const std::string& path) : connection_(SqliteConnection::open_existing(path)) {}

bool OpenFile::in_place() const {
    int moved = 1;
    return sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK &&
           moved == 0;
}

SqliteQuery OpenFile::take(const std::string& sql) {
    if (idle_ && idle_sql_ == sql)
        return std::exchange(idle_, {});
    return {connection_, sql};
}

void OpenFile::give_back(std::string sql, SqliteQuery query) {
    query.reset();
    idle_sql_ = std::move(sql);
    idle_ = std::move(query);
}

} // namespace kestrune
