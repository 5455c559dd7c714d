#pragma once

#include "platform/table.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrune {

// Why a Jet file cannot be read in full.
class JetError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class NoSuchJetTable : public JetError {
public:
    using JetError::JetError;
};

// A table of a Jet file, read by libmdb, row by row in the order of the file. libmdb trusts what it reads: a
// damaged file can end the process, so this runs in one that may end (jet_conversion.h).
class JetTable {
public:
    // The table is named without regard to letter case; a link to another file's table does not count.
    // Throws JetError.
    JetTable(const std::string& path, const std::string& table);
    ~JetTable();
    JetTable(const JetTable&) = delete;
    JetTable& operator=(const JetTable&) = delete;
    JetTable(JetTable&&) = delete;
    JetTable& operator=(JetTable&&) = delete;

    [[nodiscard]] const std::vector<TableColumn>& columns() const { return columns_; }
    // How many rows the file says that the table has.
    [[nodiscard]] std::int64_t row_count() const;

    // Reads the next row into `row`, one value for each column; false at the end. Throws JetError.
    bool next(std::vector<TableValue>& row);

private:
    class Reader;
    std::unique_ptr<Reader> reader_;
    std::vector<TableColumn> columns_;
};

} // namespace kestrune
