#pragma once

#include "platform/sqlite/sqlite_handle.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

// What is wrong with a library, in words for its owner.
class LibraryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws LibraryError when there is no file, or one that must be converted first. `what` it is to be is said
// then.
void need_database_file(const std::string& path, std::string_view what);

// One row; nothing for Null. Values stand in the order of LibraryFile::columns.
struct LibraryRow {
    std::int64_t id = 0; // the row's own number within the file, which is not its padkey
    std::vector<std::optional<std::string>> values;
};

// Values to store by column.
using LibraryValues = std::vector<std::pair<std::string, std::optional<std::string>>>;

// A site library as a whole, for the person who keeps it: unlike the program, its tool adds rows and works on
// columns that the program does not know. Members throw LibraryError or DatabaseError.
class LibraryFile {
public:
    // folder holds the file SubmitList.mdb.
    explicit LibraryFile(const std::string& folder);

    [[nodiscard]] const std::string& folder() const { return folder_; }
    [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }
    // Where a column stands, named without regard to letter case.
    [[nodiscard]] std::optional<std::size_t> find_column(std::string_view name) const;
    // The same for a column that a library must have.
    [[nodiscard]] std::size_t column(std::string_view name) const;

    // In the order of the file.
    void for_each(const std::function<void(const LibraryRow&)>& visit) const;
    [[nodiscard]] std::int64_t size() const;
    // What the database engine finds wrong with the file, one line each; empty when it is sound.
    [[nodiscard]] std::vector<std::string> damages() const;

    [[nodiscard]] SqliteConnection& connection() { return connection_; }

private:
    std::string folder_;
    SqliteConnection connection_;
    std::vector<std::string> columns_;
};

// Changes of a library that are stored together, by `commit`, or not at all. The library is copied to the
// folder "backup" beside it before the first of them.
class LibraryChanges {
public:
    explicit LibraryChanges(LibraryFile& library);
    ~LibraryChanges();
    LibraryChanges(const LibraryChanges&) = delete;
    LibraryChanges& operator=(const LibraryChanges&) = delete;
    LibraryChanges(LibraryChanges&&) = delete;
    LibraryChanges& operator=(LibraryChanges&&) = delete;

    // Adds a row under the next free padkey.
    void insert(const LibraryValues& values);
    void update(std::int64_t id, const LibraryValues& values);
    void commit();

private:
    void before_change();
    void run(const std::string& sql, const LibraryValues& values, std::optional<std::int64_t> id);

    LibraryFile& library_;
    std::int64_t next_key_ = 0;
    bool changed_ = false;
    std::string sql_;
    SqliteQuery query_;
};

} // namespace kestrune
