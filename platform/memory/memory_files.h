#pragma once

#include "platform/files.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// A file system in memory, for tests: paths with "/", folders that exist only when they are created (the root
// "/" always does).
class MemoryFiles : public Files {
public:
    [[nodiscard]] std::string path(std::string_view folder, std::string_view name) const override;
    [[nodiscard]] bool file_exists(const std::string& path) const override;
    [[nodiscard]] bool folder_exists(const std::string& path) const override;
    bool create_folder(const std::string& path) override;
    [[nodiscard]] std::optional<std::vector<std::string>> list(const std::string& folder) const override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
    [[nodiscard]] std::unique_ptr<FileSequence> sequence(const std::string& folder,
                                                         std::vector<std::string> names) const override;
    bool write(const std::string& path, std::string_view bytes) override;
    bool remove(const std::string& path) override;
    bool move(const std::string& from, const std::string& to) override;

    std::map<std::string, std::string> contents; // by full path
    std::set<std::string> folders;               // without the root

    // What a test has go wrong.
    bool disk_full = false;               // nothing can be written; moving and removing still work
    std::optional<std::size_t> disk_size; // bytes that all files together may have; a write beyond it fails
    std::set<std::string> unreadable;     // files and folders that exist and cannot be read
    std::set<std::string> read_only_folders; // nothing in them can be written, created or removed
    std::size_t longest_name = 255;          // bytes; a longer name cannot be created

private:
    [[nodiscard]] bool may_create(const std::string& path) const;
};

} // namespace kestrune
