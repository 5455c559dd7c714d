#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace kestrune {

// Anything that goes wrong with a database: missing, locked, not a database, a statement that is broken or of
// no known shape, a missing column, a row that cannot be written.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A value to store: Null, a whole number or a text (UTF-8).
using DatabaseValue = std::variant<std::monostate, std::int64_t, std::string>;

// The rows of one select, walked forward. Every member throws DatabaseError on failure. Rows changed before a
// failure keep their new values. Letting go of it ends the operation and lets go of the file.
class Recordset {
public:
    Recordset() = default;
    virtual ~Recordset() = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;
    Recordset(Recordset&&) = delete;
    Recordset& operator=(Recordset&&) = delete;

    // True when there is no current row (any more).
    [[nodiscard]] virtual bool at_end() const = 0;
    virtual void move_next() = 0;

    // A column of the current row, named without regard to case; nothing for Null. Throws when the result has
    // no such column or there is no current row.
    [[nodiscard]] virtual std::optional<std::string> text(std::string_view column) const = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> number(std::string_view column) const = 0;

    // Sets a column of the current row; stored by `update`. Values set and not stored are dropped by a move.
    virtual void set(std::string_view column, DatabaseValue value) = 0;
    virtual void update() = 0;
    virtual void delete_current() = 0;
};

// A database engine. Nothing is seen to stay open but the recordsets that the callers hold.
class Database {
public:
    Database() = default;
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    Database(Database&&) = delete;
    Database& operator=(Database&&) = delete;

    // Opens the database file at `path` (never creates one) and runs the select. Only statements of the known
    // shapes run (platform/statement.h). Throws DatabaseError.
    [[nodiscard]] virtual std::unique_ptr<Recordset> open(const std::string& path,
                                                          std::string_view statement) = 0;

    // Copies the database file as it stands, whole: `to` is replaced by the complete copy or stays as it was.
    // Throws DatabaseError.
    virtual void copy(const std::string& from, const std::string& to) {
        throw DatabaseError("this engine cannot copy " + from + " to " + to);
    }
};

} // namespace kestrune
