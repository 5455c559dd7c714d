#pragma once

#include "platform/database.h"
#include "platform/files.h"

#include <string>
#include <string_view>

namespace kestrune {

// Keeps the last generation of a database of the program's in the folder "backup", so that a slip of the
// user's can be mended. No member throws; when nothing could be kept the operation that follows goes on all
// the same.
class LibraryBackup {
public:
    // folder is the program's own; all three outlive the object.
    LibraryBackup(Database& database, Files& files, std::string folder);

    // Copies the database as it stands, in place of an earlier copy. False when it could not.
    bool BackUp(std::string_view dbName);
    // The same, but only the first time in a run of the program: deletes come one by one, and the state
    // before the first of them is the one worth having.
    void BackUpBeforeDelete(std::string_view dbName);

    // Full path of the copy.
    [[nodiscard]] std::string copy_path(std::string_view dbName) const;

private:
    Database& database_;
    Files& files_;
    std::string folder_;
    bool deleted_before_ = false;
};

} // namespace kestrune
