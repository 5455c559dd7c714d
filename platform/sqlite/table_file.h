#pragma once

#include "platform/table.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrune {

// A database file with one table that another engine's file had, its columns named and typed as they were
// there. The tables that the program knows get their indexes. It fits CreateTable, and throws as that says.
std::unique_ptr<TableWriter> create_table_file(const std::string& path, const std::string& table,
                                               const std::vector<TableColumn>& columns);

} // namespace kestrune
