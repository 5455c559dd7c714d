#pragma once

#include "platform/sqlite/sqlite_handle.h"

#include <string>

namespace kestrune {

// Copies the database that the connection has open, as it stands for it, to a file. That file is replaced by
// the complete copy or stays as it was. Throws DatabaseError.
void copy_database(const SqliteConnection& source, const std::string& to);

} // namespace kestrune
