#pragma once

#include "platform/disk/disk_files.h"
#include "platform/memory/memory_database.h"
#include "platform/memory/memory_files.h"
#include "platform/sqlite/site_schema.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/sqlite/sqlite_handle.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// Site libraries of every database there is, for tests that must hold with each of them. Names are file names
// in the family's folder. The guards undo what they are called after when they go.
using Guard = std::shared_ptr<void>;

class MemoryLibraries {
public:
    MemoryDatabase database;
    MemoryFiles files;
    std::string folder = "/program";

    void create(const std::string& name, const std::vector<SiteRow>& rows) {
        MemoryTable& library = database.create_library(path(name));
        for (const SiteRow& row : rows)
            MemoryDatabase::add_site(library, row);
    }
    // Also holds rows that a library of ours refuses: it requires nothing, and has a column more.
    void create_loose(const std::string& name, const std::vector<SiteRow>& rows) {
        create(name, {});
        MemoryTable& library = *table(name);
        library.required.clear();
        library.columns.emplace_back("extra");
        for (const SiteRow& row : rows) {
            MemoryDatabase::add_site(library, row);
            library.rows.back().values.back() = std::string("kept");
        }
    }
    void create_without(const std::string& name, const std::string& column,
                        const std::vector<SiteRow>& rows) {
        create(name, {});
        MemoryTable& library = *table(name);
        std::erase(library.columns, column);
        for (const SiteRow& row : rows)
            MemoryDatabase::add_site(library, row);
    }
    void create_referrals(const std::string& name, const std::vector<std::pair<std::string, int>>& rows) {
        MemoryTable& referrals = database.create_table(path(name), "referral2", {"url", "hitcount"});
        for (const auto& [url, hits] : rows)
            referrals.add({url, std::int64_t{hits}});
    }
    [[nodiscard]] std::vector<SiteRow> sites(const std::string& name) {
        return MemoryDatabase::sites(*table(name));
    }
    [[nodiscard]] std::string extra(const std::string& name) {
        return std::get<std::string>(table(name)->rows.front().values.back());
    }
    // By another program.
    Guard lock(const std::string& /*name*/) {
        database.faults.locked = true;
        return {nullptr, [this](void*) { database.faults.locked = false; }};
    }
    Guard make_read_only(const std::string& /*name*/) {
        database.faults.read_only = true;
        return {nullptr, [this](void*) { database.faults.read_only = false; }};
    }
    // By another program, while this one has it open.
    void delete_behind_the_back(const std::string& name, int padkey) {
        std::erase_if(table(name)->rows, [padkey](const MemoryTable::Row& row) {
            return row.values.front() == DatabaseValue{std::int64_t{padkey}};
        });
    }
    [[nodiscard]] std::string path(const std::string& name) const { return files.path(folder, name); }

private:
    MemoryTable* table(const std::string& name) { return database.table(path(name), "tblSubmitList"); }
};

class SqliteLibraries {
public:
    SqliteDatabase database;
    DiskFiles files;
    TemporaryFolder temporary;
    std::string folder = temporary.path();

    void create(const std::string& name, const std::vector<SiteRow>& rows) {
        create_site_library(path(name), rows);
    }
    void create_loose(const std::string& name, const std::vector<SiteRow>& rows) {
        SqliteConnection raw = SqliteConnection::create(path(name));
        raw.run("CREATE TABLE TBLSUBMITLIST(padkey, url, description, status, softtype, Pad, referral, "
                "linkfound, note, "
                "extra DEFAULT 'kept')");
        insert(
            raw, rows,
            {"padkey", "url", "description", "status", "softtype", "pad", "referral", "linkfound", "note"});
    }
    void create_without(const std::string& name, const std::string& column,
                        const std::vector<SiteRow>& rows) {
        std::vector<std::string> columns{"padkey", "url",      "description", "status", "softtype",
                                         "pad",    "referral", "linkfound",   "note"};
        std::erase(columns, column);
        std::string list;
        for (const std::string& each : columns)
            list += (list.empty() ? "" : ", ") + each;
        SqliteConnection raw = SqliteConnection::create(path(name));
        raw.run(("CREATE TABLE tblSubmitList(" + list + ")").c_str());
        insert(raw, rows, columns);
    }
    void create_referrals(const std::string& name, const std::vector<std::pair<std::string, int>>& rows) {
        SqliteConnection raw = SqliteConnection::create(path(name));
        raw.run("CREATE TABLE referral2(url TEXT, hitcount INTEGER)");
        for (const auto& [url, hits] : rows) {
            SqliteQuery insert{raw, "INSERT INTO referral2 VALUES(?1, ?2)"};
            insert.bind(1, url);
            insert.bind(2, std::int64_t{hits});
            insert.step();
        }
    }
    [[nodiscard]] std::vector<SiteRow> sites(const std::string& name) const {
        const SqliteConnection raw = SqliteConnection::open_existing(path(name));
        SqliteQuery query{
            raw, "SELECT padkey, url, description, status, softtype, pad, referral, linkfound, note FROM "
                 "tblSubmitList ORDER BY _rowid_"};
        std::vector<SiteRow> rows;
        while (query.step())
            rows.push_back({static_cast<std::int32_t>(query.integer(0)), text(query, 1), text(query, 2),
                            text(query, 3), text(query, 4), text(query, 5), number(query, 6),
                            number(query, 7), text(query, 8)});
        return rows;
    }
    [[nodiscard]] std::string extra(const std::string& name) const {
        const SqliteConnection raw = SqliteConnection::open_existing(path(name));
        SqliteQuery query{raw, "SELECT extra FROM tblSubmitList"};
        query.step();
        return std::get<std::string>(query.value(0));
    }
    Guard lock(const std::string& name) const {
        auto other = std::make_shared<SqliteConnection>(SqliteConnection::open_existing(path(name)));
        other->run("BEGIN EXCLUSIVE");
        return other;
    }
    Guard make_read_only(const std::string& name) const {
        std::filesystem::permissions(path(name), std::filesystem::perms(0444));
        return std::make_shared<OrdinaryUser>();
    }
    void delete_behind_the_back(const std::string& name, int padkey) const {
        SqliteConnection other = SqliteConnection::open_existing(path(name));
        other.run(("DELETE FROM tblSubmitList WHERE padkey = " + std::to_string(padkey)).c_str());
    }
    [[nodiscard]] std::string path(const std::string& name) const { return files.path(folder, name); }

private:
    static std::optional<std::string> text(const SqliteQuery& query, int column) {
        const DatabaseValue value = query.value(column);
        return value == DatabaseValue{} ? std::nullopt : std::optional(std::get<std::string>(value));
    }
    static std::optional<std::int64_t> number(const SqliteQuery& query, int column) {
        const DatabaseValue value = query.value(column);
        return value == DatabaseValue{} ? std::nullopt : std::optional(std::get<std::int64_t>(value));
    }
    static void insert(const SqliteConnection& raw, const std::vector<SiteRow>& rows,
                       const std::vector<std::string>& columns) {
        for (const SiteRow& row : rows) {
            MemoryTable values;
            values.columns = columns;
            MemoryDatabase::add_site(values, row);
            std::string statement = "INSERT INTO tblSubmitList(";
            std::string marks;
            for (const std::string& column : columns) {
                statement.append(marks.empty() ? "" : ", ").append(column);
                marks += marks.empty() ? "?" : ", ?";
            }
            statement.append(") VALUES(").append(marks).append(")");
            SqliteQuery insert{raw, statement};
            for (std::size_t i = 0; i < columns.size(); ++i)
                insert.bind(static_cast<int>(i) + 1, values.rows.front().values[i]);
            insert.step();
        }
    }
};

using EveryLibrary = testing::Types<MemoryLibraries, SqliteLibraries>;

// A site of status "N", with PAD support, of category "1=general".
inline SiteRow site(int padkey, const std::string& description) {
    SiteRow row;
    row.padkey = padkey;
    row.url = "http://site" + std::to_string(padkey) + ".example/";
    row.description = description;
    row.softtype = "1=general";
    row.pad = "PAD";
    return row;
}

} // namespace kestrune
