#include "library/library_backup.h"

#include "platform/diagnostics.h"

#include <utility>

namespace kestrune {
namespace {

constexpr std::string_view backup_folder = "backup";

} // namespace

LibraryBackup::LibraryBackup(Database& database, Files& files, std::string folder)
    : database_(database), files_(files), folder_(std::move(folder)) {}

bool LibraryBackup::BackUp(std::string_view dbName) {
    const std::string backups = files_.path(folder_, backup_folder);
    if (!files_.folder_exists(backups))
        files_.create_folder(backups);
    try {
        database_.copy(files_.path(folder_, dbName), copy_path(dbName));
        return true;
    } catch (const DatabaseError& error) {
        diagnostics::report("the library was not backed up", error.what());
        return false;
    }
}

void LibraryBackup::BackUpBeforeDelete(std::string_view dbName) {
    if (!deleted_before_)
        deleted_before_ = BackUp(dbName);
}

std::string LibraryBackup::copy_path(std::string_view dbName) const {
    return files_.path(files_.path(folder_, backup_folder), dbName);
}

} // namespace kestrune
