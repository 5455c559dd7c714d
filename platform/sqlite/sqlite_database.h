#pragma once

#include "platform/database.h"

namespace kestrune {

// The database engine over SQLite files.
class SqliteDatabase : public Database {
public:
    [[nodiscard]] std::unique_ptr<Recordset> open(const std::string& path, std::string_view statement) override;
};

} // namespace kestrune
