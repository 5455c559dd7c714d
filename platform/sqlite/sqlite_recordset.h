#pragma once

#include "platform/database.h"
#include "platform/sqlite/open_file.h"
#include "platform/sqlite/site_sql.h"
#include "platform/sqlite/sqlite_handle.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

class SqliteRecordset;

// What the recordsets of one program have to know of each other.
struct Walks {
    // Those that hold back changes in an open transaction. Another operation of the same program on the same
    // file would wait for them in vain, so it has them stored first.
    std::vector<SqliteRecordset*> held_back;
    // How many have changed rows and are not gone yet.
    int changing = 0;
    // The file that was last opened beside one of those, and by which path: a walk that asks another file
    // about each of its rows does not pay for opening it each time. Gone with the last of them.
    std::shared_ptr<OpenFile> ready;
    std::string ready_path;
};

// The rows of one select over a connection of its own.
//
// As long as nothing is changed, rows come straight from the select. The first change notes which rows are
// still to come and lets go of the select: what is changed then cannot alter which rows the walk meets, nor
// their order, and no lock is held between two changes. A row that another program has deleted by then is
// passed over.
//
// The first change is stored at once, those after it in groups, so that a long walk does not flush the disk
// for every row. A group is stored when it has lasted for a tenth of a second, or twice as long as storing
// the one before it took; when the walk ends or is given up; and before another operation on the file.
// Between two groups other programs get the time to write. So neither they nor the walk wait for long, on any
// disk and with any number of rows.
class SqliteRecordset final : public Recordset {
public:
    SqliteRecordset(std::shared_ptr<OpenFile> file, const Statement& statement, std::shared_ptr<Walks> walks);
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
    using Clock = std::chrono::steady_clock;
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
    [[nodiscard]] bool group_is_due() const;
    void in_pieces();
    bool store_together(std::span<const Change> changes);
    [[nodiscard]] SqliteConnection& connection() { return file_->connection(); }

    std::shared_ptr<OpenFile> file_;
    std::shared_ptr<Walks> walks_;
    const char* table_ = nullptr;
    int first_column_ = 0;
    std::vector<std::string> columns_;

    SqliteQuery select_;     // nothing once the remaining rows are noted
    std::string select_sql_; // empty when it is of no use to the next
    bool select_has_row_ = false;

    std::vector<std::int64_t> row_ids_;
    std::size_t position_ = 0;
    SqliteQuery row_;
    std::vector<DatabaseValue> values_;
    bool deleted_ = false;

    std::vector<std::pair<std::size_t, DatabaseValue>> pending_;
    bool changed_before_ = false;
    std::vector<Change> group_;
    Clock::time_point group_began_;
    Clock::time_point stored_; // the group before it
    Clock::duration storing_{};
    std::string change_sql_;
    SqliteQuery change_query_;
};

} // namespace kestrune
