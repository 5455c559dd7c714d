#include "tools/library/library_file.h"

#include "library/library_backup.h"
#include "library/site_library.h"
#include "platform/database_value.h"
#include "platform/disk/disk_files.h"
#include "platform/jet/jet_header.h"
#include "platform/sqlite/sqlite_database.h"

#include <algorithm>
#include <limits>

namespace kestrune {
namespace {

SqliteConnection open_library(const std::string& folder) {
    const std::string path = DiskFiles{}.path(folder, site_library_name);
    need_database_file(path, "library");
    return SqliteConnection::open_existing(path);
}

std::string quoted(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted += '"';
}

} // namespace

void need_database_file(const std::string& path, std::string_view what) {
    if (!DiskFiles{}.file_exists(path))
        throw LibraryError(std::string("there is no ").append(what).append(": ").append(path));
    if (is_jet_file(path))
        throw LibraryError(path +
                           " is a database made with Access; \"kestrune-library convert\" converts the "
                           "databases of a folder");
}

LibraryFile::LibraryFile(const std::string& folder) : folder_(folder), connection_(open_library(folder)) {
    const SqliteQuery table{connection_, "SELECT * FROM tblSubmitList"};
    for (int i = 0; i < table.columns(); ++i)
        columns_.push_back(table.name(i));
    for (const char* const needed :
         {"padkey", "url", "description", "status", "softtype", "pad", "referral", "linkfound", "note"})
        (void)column(needed);
}

std::optional<std::size_t> LibraryFile::find_column(std::string_view name) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [name](const std::string& column) { return same_column(column, name); });
    if (found == columns_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - columns_.begin());
}

std::size_t LibraryFile::column(std::string_view name) const {
    const auto found = find_column(name);
    if (!found)
        throw LibraryError("the library has no column " + std::string(name));
    return *found;
}

void LibraryFile::for_each(const std::function<void(const LibraryRow&)>& visit) const {
    SqliteQuery rows{connection_, "SELECT _rowid_, * FROM tblSubmitList ORDER BY _rowid_"};
    LibraryRow row;
    while (rows.step()) {
        row.id = rows.integer(0);
        row.values.clear();
        for (int i = 1; i < rows.columns(); ++i)
            row.values.push_back(as_text(rows.value(i)));
        visit(row);
    }
}

std::int64_t LibraryFile::size() const {
    SqliteQuery count{connection_, "SELECT count(*) FROM tblSubmitList"};
    count.step();
    return count.integer(0);
}

std::vector<std::string> LibraryFile::damages() const {
    std::vector<std::string> damages;
    SqliteQuery check{connection_, "PRAGMA integrity_check"};
    while (check.step())
        damages.push_back(as_text(check.value(0)).value_or(""));
    if (damages == std::vector<std::string>{"ok"})
        damages.clear();
    return damages;
}

LibraryChanges::LibraryChanges(LibraryFile& library) : library_(library) {
    library_.connection().run("BEGIN IMMEDIATE");
    SqliteQuery last{library_.connection(), "SELECT max(padkey) FROM tblSubmitList"};
    last.step();
    next_key_ = last.integer(0) + 1;
}

LibraryChanges::~LibraryChanges() {
    query_ = {};
    if (library_.connection().in_transaction())
        sqlite3_exec(library_.connection().get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void LibraryChanges::insert(const LibraryValues& values) {
    if (next_key_ > std::numeric_limits<std::int32_t>::max())
        throw LibraryError("no key is left for another site");
    LibraryValues all = values;
    all.emplace_back("padkey", std::to_string(next_key_++));
    std::string names;
    std::string marks;
    for (const auto& [column, value] : all) {
        names += (names.empty() ? "" : ", ") + quoted(column);
        marks += marks.empty() ? "?" : ", ?";
    }
    run("INSERT INTO tblSubmitList(" + names + ") VALUES(" + marks + ")", all, std::nullopt);
}

void LibraryChanges::update(std::int64_t id, const LibraryValues& values) {
    if (values.empty())
        return;
    std::string settings;
    for (const auto& [column, value] : values)
        settings += (settings.empty() ? "" : ", ") + quoted(column) + " = ?";
    run("UPDATE tblSubmitList SET " + settings + " WHERE _rowid_ = ?", values, id);
}

void LibraryChanges::commit() {
    query_ = {};
    library_.connection().run("COMMIT");
}

// From another connection: this one has the changes open, which the copy must not have.
void LibraryChanges::before_change() {
    if (std::exchange(changed_, true))
        return;
    SqliteDatabase database;
    DiskFiles files;
    if (!LibraryBackup{database, files, library_.folder()}.BackUp(site_library_name))
        throw LibraryError(
            "the library could not be copied to the folder \"backup\", so nothing was changed");
}

void LibraryChanges::run(const std::string& sql, const LibraryValues& values,
                         std::optional<std::int64_t> id) {
    before_change();
    if (sql != sql_) {
        query_ = SqliteQuery{library_.connection(), sql};
        sql_ = sql;
    }
    int index = 0;
    for (const auto& [column, value] : values)
        query_.bind(++index, value ? DatabaseValue{*value} : DatabaseValue{});
    if (id)
        query_.bind(++index, *id);
    query_.step();
    query_.reset();
}

} // namespace kestrune
