#include "platform/memory/memory_files.h"

#include <utility>

namespace kestrune {
namespace {

std::string folder_of(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

std::string name_of(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

// "/a/" names the folder "/a".
std::string without_slash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

class MemorySequence : public FileSequence {
public:
    MemorySequence(const MemoryFiles& files, std::string folder, std::vector<std::string> names)
        : files_(files), folder_(std::move(folder)), names_(std::move(names)) {}

    std::optional<std::string> next() override {
        if (next_ == names_.size())
            return std::nullopt;
        return files_.read(files_.path(folder_, names_[next_++]));
    }

private:
    const MemoryFiles& files_;
    std::string folder_;
    std::vector<std::string> names_;
    std::size_t next_ = 0;
};

} // namespace

std::string MemoryFiles::path(std::string_view folder, std::string_view name) const {
    std::string joined{folder};
    if (joined.empty() || joined.back() != '/')
        joined += '/';
    return joined.append(name);
}

bool MemoryFiles::file_exists(const std::string& path) const { return contents.contains(path); }

bool MemoryFiles::folder_exists(const std::string& path) const {
    const std::string folder = without_slash(path);
    return folder == "/" || folders.contains(folder);
}

bool MemoryFiles::create_folder(const std::string& path) {
    const std::string folder = without_slash(path);
    if (folder_exists(folder) || file_exists(folder) || !may_create(folder))
        return false;
    folders.insert(folder);
    return true;
}

std::optional<std::vector<std::string>> MemoryFiles::list(const std::string& folder) const {
    const std::string wanted = without_slash(folder);
    if (!folder_exists(wanted) || unreadable.contains(wanted))
        return std::nullopt;
    std::vector<std::string> names;
    for (const auto& [path, bytes] : contents) {
        if (folder_of(path) == wanted)
            names.push_back(name_of(path));
    }
    return names;
}

std::optional<std::string> MemoryFiles::read(const std::string& path) const {
    const auto found = contents.find(path);
    if (found == contents.end() || unreadable.contains(path))
        return std::nullopt;
    return found->second;
}

std::unique_ptr<FileSequence> MemoryFiles::sequence(const std::string& folder,
                                                    std::vector<std::string> names) const {
    return std::make_unique<MemorySequence>(*this, folder, std::move(names));
}

bool MemoryFiles::write(const std::string& path, std::string_view bytes) {
    if (disk_full || folder_exists(path) || !may_create(path))
        return false;
    // The new file stands beside the old one until it is whole.
    std::size_t used = bytes.size();
    for (const auto& [name, content] : contents)
        used += content.size();
    if (disk_size && used > *disk_size)
        return false;
    contents[path] = bytes;
    return true;
}

bool MemoryFiles::remove(const std::string& path) {
    return !read_only_folders.contains(folder_of(path)) && contents.erase(path) == 1;
}

bool MemoryFiles::move(const std::string& from, const std::string& to) {
    if (!file_exists(from) || folder_exists(to) || !may_create(to) ||
        read_only_folders.contains(folder_of(from)))
        return false;
    auto node = contents.extract(from);
    node.key() = to;
    contents.erase(to);
    contents.insert(std::move(node));
    return true;
}

bool MemoryFiles::may_create(const std::string& path) const {
    const std::string folder = folder_of(path);
    const std::string name = name_of(path);
    return !name.empty() && name.size() <= longest_name && folder_exists(folder) &&
           !read_only_folders.contains(folder);
}

} // namespace kestrune
