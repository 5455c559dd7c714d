#pragma once

#include "platform/database.h"
#include "platform/sqlite/site_sql.h"
#include "platform/sqlite/sqlite_handle.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

class SqliteRecordset;

// The recordsets that hold back changes in an open transaction. Another operation of the same program on the
// same file would wait for them in vain, so it has them stored first.
using HeldBack = std::vector<SqliteRecordset*>;

// The rows of one select over a connection of its own.
//
// As long as nothing is changed, rows come straight from the select. The first change notes which rows are
// still to come and lets go of the select: what is changed then cannot alter which rows the walk meets, nor
// their order, and no lock is held between two changes. A row that another program has deleted by then is
// passed over.
//
// The first change is stored at once, those after it in groups, so that a long walk does not flush the disk
// for every row. A group is stored when it is full, when the walk ends or is given up, and before another
// operation on the file.
class SqliteRecordset final : public Recordset {
public:
    SqliteRecordset(SqliteConnection connection, const Statement& statement,
                    std::shared_ptr<HeldBack> held_back);
    ~SqliteRecordset() override;
    SqliteRecordset(const SqliteRecordset&) = delete;
    SqliteRecordset& operator=(const SqliteRecordset&) = delete;
    SqliteRecordset(SqliteRecordset&&) = delete;
    SqliteRecordset& operator=(SqliteRecordset&&) = delete;

    [[nodiscard]] bool at_end() const override;
    void move_next() override;
    [[nodiscard]] std::optional<std::string> text(std::string_view column) const override;
    [[nodiscard]] std::optional<std::int64_t> number(std::string_view column) const override;
    void set(std::string_view column, DatabaseValue value) override;
    void update() override;
    void delete_current() override;

    // The database file, under one name however it was opened.
    [[nodiscard]] std::string_view file() const;
    // Stores the changes held back. When they cannot be stored together, as many as possible are stored one
    // by one, in order, and the failure is thrown.
    void store_held_back();

private:
    struct Change {
        std::string sql;
        std::vector<DatabaseValue> values;
    };

    [[nodiscard]] bool walking() const { return static_cast<bool>(select_); }
    [[nodiscard]] std::size_t column_index(std::string_view column) const;
    [[nodiscard]] DatabaseValue cell(std::string_view column) const;
    void need_row() const;
    void note_remaining_rows();
    bool load_row();
    void change(Change change);
    void carry_out(const Change& change);
    void begin_group();
    void one_by_one();

    SqliteConnection connection_;
    std::shared_ptr<HeldBack> held_back_;
    const char* table_ = nullptr;
    int first_column_ = 0;
    std::vector<std::string> columns_;

    SqliteQuery select_; // nothing once the remaining rows are noted
    bool select_has_row_ = false;

    std::vector<std::int64_t> row_ids_;
    std::size_t position_ = 0;
    SqliteQuery row_;
    std::vector<DatabaseValue> values_;
    bool deleted_ = false;

    std::vector<std::pair<std::size_t, DatabaseValue>> pending_;
    bool changed_before_ = false;
    std::vector<Change> group_;
    std::string change_sql_;
    SqliteQuery change_query_;
};

} // namespace kestrune
