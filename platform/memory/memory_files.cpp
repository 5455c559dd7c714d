#include "platform/memory/memory_files.h"

#include <utility>

namespace kestrune {
namespace {

std::string folder_of(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

} // namespace

std::string MemoryFiles::path(std::string_view folder, std::string_view name) const {
    return std::string(folder) + "/" + std::string(name);
}

bool MemoryFiles::file_exists(const std::string& path) const { return contents.count(path) != 0; }

bool MemoryFiles::folder_exists(const std::string& path) const { return folders.count(path) != 0; }

bool MemoryFiles::create_folder(const std::string& path) {
    if (disk_full || file_exists(path) || !folder_exists(folder_of(path)))
        return false;
    return folders.insert(path).second;
}

std::optional<std::vector<FileEntry>> MemoryFiles::list(const std::string& folder) const {
    if (!folder_exists(folder) || unreadable.count(folder) != 0)
        return std::nullopt;
    std::vector<FileEntry> found;
    // Backwards: callers must not rely on the order in which a file system lists its files.
    for (auto file = contents.rbegin(); file != contents.rend(); ++file) {
        if (folder_of(file->first) == folder)
            found.push_back({file->first.substr(folder.size() + 1), file->second.size()});
    }
    return found;
}

std::optional<std::string> MemoryFiles::read(const std::string& path) const {
    const auto file = contents.find(path);
    if (file == contents.end() || unreadable.count(path) != 0)
        return std::nullopt;
    return file->second;
}

bool MemoryFiles::write(const std::string& path, std::string_view bytes) {
    const std::string folder = folder_of(path);
    if (disk_full || !folder_exists(folder) || path.size() - folder.size() - 1 > longest_name)
        return false;
    contents[path] = std::string(bytes);
    return true;
}

bool MemoryFiles::remove(const std::string& path) { return contents.erase(path) != 0; }

bool MemoryFiles::move(const std::string& from, const std::string& to) {
    const std::string folder = folder_of(to);
    const auto file = contents.find(from);
    if (file == contents.end() || !folder_exists(folder) || to.size() - folder.size() - 1 > longest_name)
        return false;
    if (from != to) {
        contents[to] = std::move(file->second);
        contents.erase(file);
    }
    return true;
}

} // namespace kestrune
