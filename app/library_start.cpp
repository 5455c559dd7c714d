#include "app/library_start.h"

#include "library/library_backup.h"
#include "library/site_library.h"
#include "platform/database.h"
#include "platform/diagnostics.h"
#include "platform/disk/disk_files.h"
#include "platform/sqlite/site_merge.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/sqlite/table_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

// Tells one shipped library from the next without reading it.
std::string stamp_of(const std::string& path) {
    std::error_code failed;
    const auto written = std::filesystem::last_write_time(path, failed);
    const auto size = std::filesystem::file_size(path, failed);
    return failed ? std::string()
                  : std::to_string(size) + " " + std::to_string(written.time_since_epoch().count()) + "\n";
}

std::vector<JetFile> seeded_files(const ProgramFolders& folders) {
    seed_library(folders);
    return jet_files_in(folders.folder);
}

} // namespace

LibraryStart::LibraryStart(ProgramFolders folders) : LibraryStart(std::move(folders), create_table_file) {}

LibraryStart::LibraryStart(ProgramFolders folders, const CreateTable& create)
    : folders_(std::move(folders)), conversions_(seeded_files(folders_), create) {}

bool LibraryStart::finish(const std::function<bool(JetProgress)>& progress) {
    const std::vector<JetOutcome> outcomes = conversions_.finish(progress);
    if (std::find(outcomes.begin(), outcomes.end(), JetOutcome::GivenUp) != outcomes.end())
        return false;
    if (!folders_.shared_library.empty())
        add_new_sites();
    return true;
}

void LibraryStart::add_new_sites() {
    DiskFiles files;
    const std::string stamp = stamp_of(folders_.shared_library);
    const std::string stamp_file = files.path(folders_.folder, "SubmitList.shipped");
    if (stamp.empty() || files.read(stamp_file) == stamp)
        return;
    const std::string library = files.path(folders_.folder, site_library_name);
    SqliteDatabase database;
    run_database_step("the sites that this version brings", [&] {
        const bool any = !merge_site_libraries(folders_.shared_library, library, MergeMode::DryRun).empty();
        if (any && !LibraryBackup{database, files, folders_.folder}.BackUp(site_library_name))
            return;
        merge_site_libraries(folders_.shared_library, library, MergeMode::Store);
        files.write(stamp_file, stamp);
    });
}

} // namespace kestrune
