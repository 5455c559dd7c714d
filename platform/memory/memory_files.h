#pragma once

#include "platform/files.h"

#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestrune {

// A file system in memory. Paths use "/"; a folder exists once it was created or is named in `folders`.
class MemoryFiles : public Files {
public:
    [[nodiscard]] std::string path(std::string_view folder, std::string_view name) const override;
    [[nodiscard]] bool file_exists(const std::string& path) const override;
    [[nodiscard]] bool folder_exists(const std::string& path) const override;
    bool create_folder(const std::string& path) override;
    [[nodiscard]] std::optional<std::vector<FileEntry>> list(const std::string& folder) const override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
    bool write(const std::string& path, std::string_view bytes) override;
    bool remove(const std::string& path) override;
    bool move(const std::string& from, const std::string& to) override;

    std::set<std::string> folders;
    std::map<std::string, std::string> contents; // by full path
    std::set<std::string> unreadable;            // paths of files or folders that cannot be read
    bool disk_full = false;                      // nothing can be written
    std::size_t longest_name = std::numeric_limits<std::size_t>::max();
};

} // namespace kestrune
