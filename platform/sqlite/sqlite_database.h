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
    [[nodiscard]] std::shared_ptr<OpenFile> open_file(const std::string& path) const;
    void store_held_back(std::string_view file);

    std::shared_ptr<Walks> walks_ = std::make_shared<Walks>();
};

} // namespace kestrune
