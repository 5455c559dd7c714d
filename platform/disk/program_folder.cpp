#include "platform/disk/program_folder.h"

#include "platform/disk/disk_files.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

constexpr const char* library_name = "SubmitList.mdb";
constexpr const char* own_name = "kestrune";

std::string variable(const char* name) {
    const char* const value =
        std::getenv(name); // NOLINT(concurrency-mt-unsafe): read before there are threads.
    return value == nullptr ? std::string() : std::string(value);
}

bool create_folders(const fs::path& folder) {
    std::error_code failed;
    if (fs::is_directory(folder, failed))
        return true;
    if (folder.has_parent_path() && folder.parent_path() != folder && !create_folders(folder.parent_path()))
        return false;
    return DiskFiles{}.create_folder(folder.string());
}

} // namespace

ProgramFolders find_program_folders(const std::string& executable_folder, const std::string& data_home) {
    const fs::path own{executable_folder};
    std::error_code failed;
    if (fs::exists(own / library_name, failed))
        return {executable_folder, {}};
    const std::string users =
        data_home.empty() ? executable_folder : (fs::path(data_home) / own_name).string();
    const fs::path shared = own.parent_path() / "share" / own_name / library_name;
    if (fs::exists(shared, failed))
        return {users, shared.string()};
    if (::faccessat(AT_FDCWD, executable_folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        return {executable_folder, {}};
    return {users, {}};
}

ProgramFolders find_program_folders() {
    std::error_code failed;
    const auto program = fs::read_symlink("/proc/self/exe", failed);
    return find_program_folders(failed ? "." : program.parent_path().string(), user_data_folder());
}

std::string user_data_folder() {
    // A relative path there counts as none.
    if (std::string data = variable("XDG_DATA_HOME"); data.starts_with('/'))
        return data;
    std::string home = variable("HOME");
    if (home.empty()) {
        const passwd* const user = ::getpwuid(::getuid()); // NOLINT(concurrency-mt-unsafe): as above.
        home = user == nullptr || user->pw_dir == nullptr ? "" : user->pw_dir;
    }
    return home.empty() ? home : (fs::path(home) / ".local" / "share").string();
}

bool seed_library(const ProgramFolders& folders) {
    DiskFiles files;
    const std::string library = files.path(folders.folder, library_name);
    if (files.file_exists(library))
        return true;
    if (folders.shared_library.empty() || !create_folders(folders.folder))
        return false;
    const auto bytes = files.read(folders.shared_library);
    return bytes && files.write(library, *bytes);
}

std::string program_folder() { return find_program_folders().folder; }

} // namespace kestrune
