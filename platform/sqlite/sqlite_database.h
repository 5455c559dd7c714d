#pragma once

#include "platform/database.h"
#include "platform/sqlite/sqlite_recordset.h"

#include <memory>
#include <string>
#include <string_view>

namespace kestrune {

// The database engine over SQLite files. Two programs may have the same file open; a file that another one
// keeps locked is waited for a quarter of a second.
class SqliteDatabase : public Database {
public:
    [[nodiscard]] std::unique_ptr<Recordset> open(const std::string& path,
                                                  std::string_view statement) override;
    void copy(const std::string& from, const std::string& to) override;

private:
    void store_held_back(std::string_view file);

    std::shared_ptr<HeldBack> held_back_ = std::make_shared<HeldBack>();
};

} // namespace kestrune
