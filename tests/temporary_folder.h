#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <unistd.h>

namespace kestrune {

// A folder of a test's own; it goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() : path_(testing::TempDir() + "kestrune-test-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        // The ordinary user below must get in.
        std::filesystem::permissions(path_, std::filesystem::perms(0755));
    }
    ~TemporaryFolder() {
        // A test may have locked itself out of parts of it.
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms(0700), ignored);
        for (const auto& entry : std::filesystem::directory_iterator(path_, ignored))
            std::filesystem::permissions(entry.path(), std::filesystem::perms(0700), ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
    [[nodiscard]] std::size_t entries() const {
        const std::filesystem::directory_iterator all{path_};
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

private:
    std::string path_;
};

// Permissions mean nothing to root. While one lives, the process acts as a user to whom they do.
class OrdinaryUser {
public:
    OrdinaryUser() : was_root_(::geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        if (was_root_ && ::seteuid(nobody) != 0)
            throw std::runtime_error("cannot act as an ordinary user");
    }
    ~OrdinaryUser() {
        if (was_root_ && ::seteuid(0) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    OrdinaryUser(OrdinaryUser&&) = delete;
    OrdinaryUser& operator=(OrdinaryUser&&) = delete;

private:
    bool was_root_;
};

// Every write beyond a limit fails, as it does on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limited = before_;
        limited.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

inline std::string bytes_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void write_bytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace kestrune
