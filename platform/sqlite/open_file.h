#pragma once

#include "platform/sqlite/sqlite_handle.h"

#include <string>

namespace kestrune {

// An open database file, and one statement that stays prepared for whoever runs it next.
class OpenFile {
public:
    explicit OpenFile(const std::string& path);

    [[nodiscard]] SqliteConnection& connection() { return connection_; }
    [[nodiscard]] const SqliteConnection& connection() const { return connection_; }
    // Whether the path that it was opened by still leads to it.
    [[nodiscard]] bool in_place() const;

    // A statement with no row and unknown values bound; prepared only if it was not given back last.
    [[nodiscard]] SqliteQuery take(const std::string& sql);
    // Lets go of its row and of the locks held for it.
    void give_back(std::string sql, SqliteQuery query);

private:
    SqliteConnection connection_;
    std::string idle_sql_;
    SqliteQuery idle_;
};

} // namespace kestrune
