#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace kestrune {

// A whole table on its way from one database file into another: its columns with their types, then its rows.

enum class ColumnType : std::uint8_t {
    WholeNumber,
    Number,
    ExactNumber, // currency and decimals, as texts that hold every digit
    YesNo,       // 1 and 0
    DateTime,    // "2004-02-29 13:05:00"
    Text,
    Bytes,
};

struct TableColumn {
    std::string name;
    ColumnType type = ColumnType::Text;
    friend bool operator==(const TableColumn&, const TableColumn&) = default;
};

// Null, a whole number, a number, a text (UTF-8) or bytes.
using TableValue = std::variant<std::monostate, std::int64_t, double, std::string, std::vector<std::byte>>;

// Fills the one table of a new database file. Members throw DatabaseError.
class TableWriter {
public:
    TableWriter() = default;
    virtual ~TableWriter() = default;
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;
    TableWriter(TableWriter&&) = delete;
    TableWriter& operator=(TableWriter&&) = delete;

    // One value for each column, in order.
    virtual void add(const std::vector<TableValue>& row) = 0;
    // Nothing counts as written before this has returned; then all of it is on the disk.
    virtual void finish() = 0;
};

// Creates a database file at the path (replacing what is there) with an empty table. Throws DatabaseError.
using CreateTable = std::function<std::unique_ptr<TableWriter>(
    const std::string& path, const std::string& table, const std::vector<TableColumn>& columns)>;

} // namespace kestrune
