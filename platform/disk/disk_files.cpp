#include "platform/disk/disk_files.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kestrune {
namespace {

constexpr mode_t owner_only_file = 0600;
constexpr mode_t owner_only_folder = 0700;

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    [[nodiscard]] bool valid() const { return fd_ >= 0; }
    [[nodiscard]] int get() const { return fd_; }
    bool close() {
        const int fd = std::exchange(fd_, -1);
        return fd < 0 || ::close(fd) == 0;
    }

private:
    int fd_;
};

std::optional<struct stat> status(const std::string& path) {
    struct stat found {};
    if (::stat(path.c_str(), &found) != 0)
        return std::nullopt;
    return found;
}

// Not every file system tells in the folder what an entry is, and a link may lead to a file.
bool is_file(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_REG;
    struct stat found {};
    return ::fstatat(folder, entry.d_name, &found, 0) == 0 && S_ISREG(found.st_mode);
}

bool write_all(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// A rename is only safe on disk once the folder that records it is.
void flush_folder(const std::string& folder) {
    const Descriptor fd{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (fd.valid())
        ::fsync(fd.get());
}

std::string folder_of(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool fill_and_flush(Descriptor& fd, std::string_view bytes) {
    return ::fchmod(fd.get(), owner_only_file) == 0 && write_all(fd.get(), bytes) && ::fsync(fd.get()) == 0 &&
           fd.close();
}

// The path starts at the folder, an open one or AT_FDCWD.
std::optional<std::string> read_file(int folder, const std::string& path) {
    const Descriptor fd{::openat(folder, path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (!fd.valid())
        return std::nullopt;
    std::string bytes;
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): clearing it takes
                                    // longer than reading a small file
    for (;;) {
        const ssize_t got = ::read(fd.get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            return bytes;
        bytes.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

// Holds the folder open, so that the system does not look up its path for every file.
class DiskSequence : public FileSequence {
public:
    DiskSequence(const std::string& folder, std::vector<std::string> names)
        : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), names_(std::move(names)) {}

    std::optional<std::string> next() override {
        if (next_ == names_.size())
            return std::nullopt;
        return read_file(folder_.get(), names_[next_++]);
    }

private:
    Descriptor folder_;
    std::vector<std::string> names_;
    std::size_t next_ = 0;
};

} // namespace

std::string DiskFiles::path(std::string_view folder, std::string_view name) const {
    std::string joined{folder};
    if (joined.empty() || joined.back() != '/')
        joined += '/';
    return joined.append(name);
}

bool DiskFiles::file_exists(const std::string& path) const {
    const auto found = status(path);
    return found && S_ISREG(found->st_mode);
}

bool DiskFiles::folder_exists(const std::string& path) const {
    const auto found = status(path);
    return found && S_ISDIR(found->st_mode);
}

bool DiskFiles::create_folder(const std::string& path) {
    return ::mkdir(path.c_str(), owner_only_folder) == 0;
}

std::optional<std::vector<std::string>> DiskFiles::list(const std::string& folder) const {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
    if (!entries)
        return std::nullopt;
    std::vector<std::string> names;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread walks one folder.
    while (const dirent* const entry = ::readdir(entries.get())) {
        if (is_file(::dirfd(entries.get()), *entry))
            names.emplace_back(entry->d_name);
    }
    return names;
}

std::optional<std::string> DiskFiles::read(const std::string& path) const {
    return read_file(AT_FDCWD, path);
}

std::unique_ptr<FileSequence> DiskFiles::sequence(const std::string& folder,
                                                  std::vector<std::string> names) const {
    return std::make_unique<DiskSequence>(folder, std::move(names));
}

bool DiskFiles::write(const std::string& path, std::string_view bytes) {
    // In the same folder, so that the rename stays within one file system; its name does not depend on the
    // file's own, which may already be as long as the file system allows.
    std::string temporary = folder_of(path) + "/.kestrune-XXXXXX";
    Descriptor fd{::mkostemp(temporary.data(), O_CLOEXEC)};
    if (!fd.valid())
        return false;
    if (!fill_and_flush(fd, bytes) || ::rename(temporary.c_str(), path.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    flush_folder(folder_of(path));
    return true;
}

bool DiskFiles::remove(const std::string& path) { return ::unlink(path.c_str()) == 0; }

bool DiskFiles::move(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0)
        return false;
    // The new place first: after a power cut the file is then in both places rather than in none.
    flush_folder(folder_of(to));
    flush_folder(folder_of(from));
    return true;
}

} // namespace kestrune
