#include "platform/sqlite/sqlite_recordset.h"

#include "platform/database_value.h"
#include "platform/diagnostics.h"

#include <algorithm>
#include <exception>

namespace kestrune {
namespace {

constexpr std::size_t group_size = 500;

// Column names stand in statements without quotes, because SQLite takes a quoted name that it does not find
// for a text. So only names that need none are written to.
bool plain_name(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
}

} // namespace

SqliteRecordset::SqliteRecordset(SqliteConnection connection, const Statement& statement,
                                 std::shared_ptr<HeldBack> held_back)
    : connection_(std::move(connection)), held_back_(std::move(held_back)) {
    const SiteSql sql = site_sql(statement);
    table_ = sql.table;
    if (!sql.indexed.empty())
        select_ = SqliteQuery::if_possible(connection_, sql.indexed);
    if (!select_)
        select_ = SqliteQuery{connection_, sql.plain};
    for (std::size_t i = 0; i < sql.values.size(); ++i)
        select_.bind(static_cast<int>(i) + 1, sql.values[i]);
    first_column_ = table_ == nullptr ? 0 : 1;
    for (int i = first_column_; i < select_.columns(); ++i)
        columns_.push_back(select_.name(i));
    // A column of that name would hide the row's own number.
    if (table_ != nullptr && std::any_of(columns_.begin(), columns_.end(), [](const std::string& name) {
            return same_column(name, "_rowid_");
        }))
        throw DatabaseError("the rows of this table cannot be told apart");
    select_has_row_ = select_.step();
}

SqliteRecordset::~SqliteRecordset() {
    try {
        store_held_back();
    } catch (const std::exception& error) {
        diagnostics::report("changes at the end of a walk were not stored", error.what());
    }
    std::erase(*held_back_, this);
}

std::string_view SqliteRecordset::file() const { return connection_.file(); }

bool SqliteRecordset::at_end() const { return walking() ? !select_has_row_ : position_ >= row_ids_.size(); }

void SqliteRecordset::move_next() {
    pending_.clear();
    if (walking()) {
        if (std::exchange(select_has_row_, false))
            select_has_row_ = select_.step();
        return;
    }
    deleted_ = false;
    if (position_ < row_ids_.size())
        ++position_;
    while (position_ < row_ids_.size() && !load_row())
        ++position_;
    if (at_end())
        store_held_back();
}

std::optional<std::string> SqliteRecordset::text(std::string_view column) const {
    return as_text(cell(column));
}

std::optional<std::int64_t> SqliteRecordset::number(std::string_view column) const {
    return as_number(cell(column));
}

void SqliteRecordset::set(std::string_view column, DatabaseValue value) {
    need_row();
    const std::size_t index = column_index(column);
    if (table_ == nullptr || !plain_name(columns_[index]))
        throw DatabaseError("a column that cannot be written: " + std::string(column));
    const auto same = std::find_if(pending_.begin(), pending_.end(),
                                   [index](const auto& pending) { return pending.first == index; });
    if (same != pending_.end())
        same->second = std::move(value);
    else
        pending_.emplace_back(index, std::move(value));
}

void SqliteRecordset::update() {
    need_row();
    if (pending_.empty())
        return;
    note_remaining_rows();
    Change update{std::string("UPDATE ") + table_ + " SET ", {}};
    for (const auto& [index, value] : pending_) {
        update.values.push_back(value);
        update.sql += (update.values.size() == 1 ? "" : ", ") + columns_[index] + " = ?" +
                      std::to_string(update.values.size());
    }
    update.values.emplace_back(row_ids_[position_]);
    update.sql += " WHERE _rowid_ = ?" + std::to_string(update.values.size());
    change(std::move(update));
    for (auto& [index, value] : pending_)
        values_[index] = std::move(value);
    pending_.clear();
}

void SqliteRecordset::delete_current() {
    need_row();
    if (table_ == nullptr)
        throw DatabaseError("a row that cannot be deleted");
    note_remaining_rows();
    change({std::string("DELETE FROM ") + table_ + " WHERE _rowid_ = ?1", {row_ids_[position_]}});
    pending_.clear();
    deleted_ = true;
}

std::size_t SqliteRecordset::column_index(std::string_view column) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [column](const std::string& name) { return same_column(name, column); });
    if (found == columns_.end())
        throw DatabaseError("no such column: " + std::string(column));
    return static_cast<std::size_t>(found - columns_.begin());
}

DatabaseValue SqliteRecordset::cell(std::string_view column) const {
    need_row();
    const std::size_t index = column_index(column);
    return walking() ? select_.value(static_cast<int>(index) + first_column_) : values_[index];
}

void SqliteRecordset::need_row() const {
    if (at_end() || deleted_)
        throw DatabaseError("there is no current row");
}

void SqliteRecordset::note_remaining_rows() {
    if (!walking())
        return;
    std::vector<DatabaseValue> current;
    for (int i = first_column_; i < select_.columns(); ++i)
        current.push_back(select_.value(i));
    std::vector<std::int64_t> ids;
    do {
        ids.push_back(select_.integer(0));
    } while (select_.step());
    values_ = std::move(current);
    row_ids_ = std::move(ids);
    position_ = 0;
    select_ = {};
}

// False when the row is there no more.
bool SqliteRecordset::load_row() {
    if (!row_)
        row_ = SqliteQuery{connection_, std::string("SELECT * FROM ") + table_ + " WHERE _rowid_ = ?1"};
    row_.bind(1, row_ids_[position_]);
    const bool found = row_.step();
    for (std::size_t i = 0; found && i < values_.size(); ++i)
        values_[i] = row_.value(static_cast<int>(i));
    row_.reset();
    return found;
}

void SqliteRecordset::change(Change change) {
    if (changed_before_ && !connection_.in_transaction())
        begin_group();
    carry_out(change);
    if (changed_before_) {
        group_.push_back(std::move(change));
        if (group_.size() >= group_size)
            store_held_back();
    }
    changed_before_ = true;
}

void SqliteRecordset::carry_out(const Change& change) {
    if (change.sql != change_sql_) {
        change_query_ = SqliteQuery{connection_, change.sql};
        change_sql_ = change.sql;
    }
    for (std::size_t i = 0; i < change.values.size(); ++i)
        change_query_.bind(static_cast<int>(i) + 1, change.values[i]);
    try {
        change_query_.step();
    } catch (const DatabaseError&) {
        change_query_.reset();
        // Some failures undo the whole transaction.
        if (!group_.empty() && !connection_.in_transaction())
            one_by_one();
        throw;
    }
    change_query_.reset();
    if (sqlite3_changes(connection_.get()) != 1)
        throw DatabaseError("the row is there no more");
}

void SqliteRecordset::begin_group() {
    connection_.run("BEGIN IMMEDIATE");
    held_back_->push_back(this);
}

void SqliteRecordset::store_held_back() {
    if (!connection_.in_transaction())
        return;
    if (sqlite3_exec(connection_.get(), "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        if (connection_.in_transaction())
            connection_.run("ROLLBACK");
        one_by_one();
    }
    group_.clear();
    std::erase(*held_back_, this);
}

// What is stored this way stays stored; the first that cannot be ends it.
void SqliteRecordset::one_by_one() {
    std::erase(*held_back_, this);
    for (const Change& change : std::exchange(group_, {}))
        carry_out(change);
}

} // namespace kestrune
