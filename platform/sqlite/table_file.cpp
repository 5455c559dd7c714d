#include "platform/sqlite/table_file.h"

#include "platform/database_value.h"
#include "platform/sqlite/site_schema.h"
#include "platform/sqlite/sqlite_handle.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <optional>
#include <sqlite3.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace kestrune {
namespace {

constexpr std::string_view site_table = "tblSubmitList";
constexpr std::string_view referral_table = "referral2";

std::string quoted(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

bool has_columns(const std::vector<TableColumn>& columns, std::initializer_list<std::string_view> names) {
    return std::all_of(names.begin(), names.end(), [&columns](std::string_view name) {
        return std::any_of(columns.begin(), columns.end(),
                           [name](const TableColumn& column) { return same_column(column.name, name); });
    });
}

// What the program reads as a whole number is one also where the file has it as a number with a point.
bool is_counted(const TableColumn& column) {
    constexpr std::array<std::string_view, 4> counted{"padkey", "referral", "linkfound", "hitcount"};
    return std::any_of(counted.begin(), counted.end(),
                       [&column](std::string_view name) { return same_column(column.name, name); });
}

const char* declared_type(const TableColumn& column) {
    switch (column.type) {
    case ColumnType::WholeNumber:
    case ColumnType::YesNo:
        return "INTEGER";
    case ColumnType::Number:
        return is_counted(column) ? "INTEGER" : "REAL";
    // As a number it would lose digits.
    case ColumnType::ExactNumber:
        return is_counted(column) ? "INTEGER" : "TEXT";
    case ColumnType::Bytes:
        return "BLOB";
    case ColumnType::DateTime:
    case ColumnType::Text:
        break;
    }
    return "TEXT";
}

void flush(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool flushed = file >= 0 && ::fsync(file) == 0;
    const int error = errno;
    if (file >= 0)
        ::close(file);
    if (!flushed)
        throw DatabaseError("cannot flush " + path + ": " + std::strerror(error));
}

class SqliteTableWriter final : public TableWriter {
public:
    SqliteTableWriter(const std::string& path, std::string table, std::vector<TableColumn> columns)
        : path_(path), table_(std::move(table)), columns_(std::move(columns)),
          database_(SqliteConnection::create(empty(path))) {
        // The file is nobody's until `finish` has returned, so nothing need be undone or flushed on the way.
        database_->run("PRAGMA journal_mode = OFF");
        database_->run("PRAGMA synchronous = OFF");
        database_->run("BEGIN");
        std::string definitions;
        std::string marks;
        for (const TableColumn& column : columns_) {
            definitions +=
                (definitions.empty() ? "" : ", ") + quoted(column.name) + ' ' + declared_type(column);
            marks += marks.empty() ? "?" : ", ?";
        }
        database_->run(("CREATE TABLE " + quoted(table_) + '(' + definitions + ')').c_str());
        insert_ = SqliteQuery{*database_, "INSERT INTO " + quoted(table_) + " VALUES(" + marks + ')'};
    }

    void add(const std::vector<TableValue>& row) override {
        for (std::size_t i = 0; i < row.size(); ++i)
            bind(static_cast<int>(i) + 1, row[i]);
        insert_.step();
        insert_.reset();
    }

    void finish() override {
        insert_ = {};
        create_indexes();
        database_->run("COMMIT");
        database_.reset();
        flush(path_);
    }

private:
    static const std::string& empty(const std::string& path) {
        ::unlink(path.c_str());
        return path;
    }

    void bind(int index, const TableValue& value) {
        sqlite3_stmt* const insert = insert_.get();
        int result = SQLITE_OK;
        if (const auto* const text = std::get_if<std::string>(&value))
            result =
                sqlite3_bind_text64(insert, index, text->data(), text->size(), SQLITE_STATIC, SQLITE_UTF8);
        else if (const auto* const bytes = std::get_if<std::vector<std::byte>>(&value))
            result = sqlite3_bind_blob64(insert, index, bytes->data(), bytes->size(), SQLITE_STATIC);
        else if (const auto* const whole = std::get_if<std::int64_t>(&value))
            result = sqlite3_bind_int64(insert, index, *whole);
        else if (const auto* const number = std::get_if<double>(&value))
            result = sqlite3_bind_double(insert, index, *number);
        else
            result = sqlite3_bind_null(insert, index);
        if (result != SQLITE_OK)
            throw DatabaseError("a value cannot be bound");
    }

    void create_indexes() {
        if (same_column(table_, site_table) &&
            has_columns(columns_, {"padkey", "url", "description", "status", "softtype", "pad", "referral",
                                   "linkfound"})) {
            create_site_indexes(*database_);
            database_->run("CREATE INDEX sites_by_key ON tblSubmitList(padkey)");
        }
        if (same_column(table_, referral_table) && has_columns(columns_, {"url"}))
            create_referral_indexes(*database_);
    }

    std::string path_;
    std::string table_;
    std::vector<TableColumn> columns_;
    std::optional<SqliteConnection> database_;
    SqliteQuery insert_;
};

} // namespace

std::unique_ptr<TableWriter> create_table_file(const std::string& path, const std::string& table,
                                               const std::vector<TableColumn>& columns) {
    return std::make_unique<SqliteTableWriter>(path, table, columns);
}

} // namespace kestrune
