#include "platform/sqlite/sqlite_database.h"

#include "platform/diagnostics.h"
#include "platform/sqlite/database_copy.h"

#include <utility>

namespace kestrune {

std::unique_ptr<Recordset> SqliteDatabase::open(const std::string& path, std::string_view statement) {
    const Statement known = parse_statement(statement);
    std::shared_ptr<OpenFile> file = open_file(path);
    store_held_back(file->connection().file());
    return std::make_unique<SqliteRecordset>(std::move(file), known, walks_);
}

std::shared_ptr<OpenFile> SqliteDatabase::open_file(const std::string& path) const {
    std::shared_ptr<OpenFile>& ready = walks_->ready;
    if (ready && walks_->ready_path == path && ready.use_count() == 1 && ready->in_place())
        return ready;
    auto file = std::make_shared<OpenFile>(path);
    if (walks_->changing > 0) {
        ready = file;
        walks_->ready_path = path;
    }
    return file;
}

void SqliteDatabase::copy(const std::string& from, const std::string& to) {
    const SqliteConnection source = SqliteConnection::open_existing(from);
    store_held_back(source.file());
    copy_database(source, to);
}

void SqliteDatabase::store_held_back(std::string_view file) {
    for (SqliteRecordset* const other : std::vector(walks_->held_back)) {
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
