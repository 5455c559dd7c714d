#include "platform/disk/program_folder.h"

#include <filesystem>
#include <system_error>

namespace kestrune {

std::string program_folder() {
    std::error_code failed;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? "." : program.parent_path().string();
}

} // namespace kestrune
