#include "platform/sqlite/sqlite_recordset.h"

#include "platform/database_value.h"
#include "platform/diagnostics.h"

#include <algorithm>
#include <exception>
#include <thread>

namespace kestrune {
namespace {

constexpr std::chrono::milliseconds shortest_group{100};
// Another program waits a second for its turn (sqlite_handle.cpp).
constexpr std::chrono::milliseconds longest_group{500};
// Longer than the pauses of a program that waits for the file (sqlite_handle.cpp).
constexpr std::chrono::milliseconds between_groups{3};
// In KiB. Pages of a group that do not fit are written again and again, so there is room for a million sites.
const char* const room_for_a_group = "PRAGMA cache_size = -524288";

// Column names stand in statements without quotes, because SQLite takes a quoted name that it does not find
// for a text. So only names that need none are written to.
bool plain_name(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
}

} // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<OpenFile> file, const Statement& statement,
                                 std::shared_ptr<Walks> walks)
    : file_(std::move(file)), walks_(std::move(walks)) {
    const SiteSql sql = site_sql(statement);
    table_ = sql.table;
    if (!sql.indexed.empty())
        select_ = SqliteQuery::if_possible(connection(), sql.indexed);
    if (!select_) {
        select_ = file_->take(sql.plain);
        select_sql_ = sql.plain;
    }
    for (std::size_t i = 0; i < sql.values.size(); ++i)
        select_.bind(static_cast<int>(i) + 1, sql.values[i]);
    // Only now it is certain which columns there are: a statement from before may have to be prepared anew.
    select_has_row_ = select_.step();
    first_column_ = table_ == nullptr ? 0 : 1;
    for (int i = first_column_; i < select_.columns(); ++i)
        columns_.push_back(select_.name(i));
    // A column of that name would hide the row's own number.
    if (table_ != nullptr && std::any_of(columns_.begin(), columns_.end(), [](const std::string& name) {
            return same_column(name, "_rowid_");
        }))
        throw DatabaseError("the rows of this table cannot be told apart");
}

SqliteRecordset::~SqliteRecordset() {
    try {
        store_held_back();
        if (walking() && !select_sql_.empty())
            file_->give_back(std::move(select_sql_), std::move(select_));
    } catch (const std::exception& error) {
        diagnostics::report("changes at the end of a walk were not stored", error.what());
    }
    std::erase(walks_->held_back, this);
    if (changed_before_ && --walks_->changing == 0)
        walks_->ready.reset();
}

std::string_view SqliteRecordset::file() const { return file_->connection().file(); }

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
        row_ = SqliteQuery{connection(), std::string("SELECT * FROM ") + table_ + " WHERE _rowid_ = ?1"};
    row_.bind(1, row_ids_[position_]);
    const bool found = row_.step();
    for (std::size_t i = 0; found && i < values_.size(); ++i)
        values_[i] = row_.value(static_cast<int>(i));
    row_.reset();
    return found;
}

void SqliteRecordset::change(Change change) {
    if (changed_before_ && !connection().in_transaction())
        begin_group();
    carry_out(change);
    if (!changed_before_) {
        changed_before_ = true;
        ++walks_->changing;
        return;
    }
    group_.push_back(std::move(change));
    if (group_is_due())
        store_held_back();
}

void SqliteRecordset::carry_out(const Change& change) {
    if (change.sql != change_sql_) {
        change_query_ = SqliteQuery{connection(), change.sql};
        change_sql_ = change.sql;
    }
    for (std::size_t i = 0; i < change.values.size(); ++i)
        change_query_.bind(static_cast<int>(i) + 1, change.values[i]);
    try {
        change_query_.step();
    } catch (const DatabaseError&) {
        change_query_.reset();
        // Some failures undo the whole transaction.
        if (!group_.empty() && !connection().in_transaction())
            in_pieces();
        throw;
    }
    change_query_.reset();
    if (sqlite3_changes(connection().get()) != 1)
        throw DatabaseError("the row is there no more");
}

void SqliteRecordset::begin_group() {
    if (storing_ == Clock::duration{})
        connection().run(room_for_a_group);
    std::this_thread::sleep_until(stored_ + between_groups);
    connection().run("BEGIN IMMEDIATE");
    walks_->held_back.push_back(this);
    group_began_ = Clock::now();
}

bool SqliteRecordset::group_is_due() const {
    return Clock::now() - group_began_ >=
           std::clamp<Clock::duration>(8 * storing_, shortest_group, longest_group);
}

void SqliteRecordset::store_held_back() {
    if (!connection().in_transaction())
        return;
    const auto began = Clock::now();
    if (sqlite3_exec(connection().get(), "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        if (connection().in_transaction())
            connection().run("ROLLBACK");
        in_pieces();
    }
    stored_ = Clock::now();
    storing_ = stored_ - began;
    group_.clear();
    std::erase(walks_->held_back, this);
}

// Half of them may still fit on a disk that is too full for all. What is stored stays stored; the first
// change that cannot be stored by itself ends it.
void SqliteRecordset::in_pieces() {
    std::erase(walks_->held_back, this);
    const std::vector<Change> changes = std::exchange(group_, {});
    std::span<const Change> left = changes;
    for (std::size_t piece = changes.size(); !left.empty();) {
        piece = std::min(piece, left.size());
        if (piece == 1)
            carry_out(left.front());
        else if (!store_together(left.first(piece))) {
            piece /= 2;
            continue;
        }
        left = left.subspan(piece);
    }
}

bool SqliteRecordset::store_together(std::span<const Change> changes) {
    try {
        connection().run("BEGIN IMMEDIATE");
        for (const Change& change : changes)
            carry_out(change);
        connection().run("COMMIT");
        return true;
    } catch (const DatabaseError&) {
        if (connection().in_transaction())
            connection().run("ROLLBACK");
        return false;
    }
}

} // namespace kestrune
