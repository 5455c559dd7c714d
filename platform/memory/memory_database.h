#pragma once

#include "platform/database.h"
#include "platform/site_row.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// A table in memory. Rows stand in the order of their ids; an id is never used twice.
struct MemoryTable {
    struct Row {
        std::int64_t id = 0;
        std::vector<DatabaseValue> values; // in the order of the columns
    };

    std::string name;
    std::vector<std::string> columns;
    std::vector<std::string> required; // columns that refuse Null
    std::vector<Row> rows;
    std::int64_t next_id = 1;

    void add(std::vector<DatabaseValue> values) { rows.push_back({next_id++, std::move(values)}); }
    // Null when no row has the id.
    [[nodiscard]] Row* find(std::int64_t id);
    // Throws DatabaseError when there is no such column.
    [[nodiscard]] std::size_t column(std::string_view column) const;
};

// What a test has go wrong, and when.
struct DatabaseFaults {
    bool locked = false;                // by another program: opening fails
    bool read_only = false;             // reading works, writing fails
    std::optional<std::size_t> fail_at; // the operation with this number fails, counted from 1
    std::size_t operations = 0;         // done so far: openings, moves, updates, deletions

    // Counts one operation; throws DatabaseError when it is the one to fail.
    void count();
};

// A database engine without files, for tests. A "file" is the tables under its path; a path without tables is
// a missing file.
class MemoryDatabase : public Database {
public:
    [[nodiscard]] std::unique_ptr<Recordset> open(const std::string& path,
                                                  std::string_view statement) override;
    void copy(const std::string& from, const std::string& to) override;

    // An empty site library at the path, with the columns that the program knows.
    MemoryTable& create_library(const std::string& path);
    MemoryTable& create_table(const std::string& path, std::string name, std::vector<std::string> columns);
    // Null when there is none.
    [[nodiscard]] MemoryTable* table(const std::string& path, std::string_view name);

    static void add_site(MemoryTable& table, const SiteRow& row);
    [[nodiscard]] static std::vector<SiteRow> sites(const MemoryTable& table);

    DatabaseFaults faults;

private:
    std::map<std::string, std::vector<std::unique_ptr<MemoryTable>>> files_;
};

} // namespace kestrune
