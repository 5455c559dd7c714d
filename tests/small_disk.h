#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrune {

// Disks that are really full: a small file system in memory, mounted over a folder for one process alone.
enum class SmallDisk { Done, Failed, NotToBeHad };

// Within a process of its own. An ordinary user gets the right to mount from a namespace that belongs to him.
inline bool mount_small_disk(const std::string& folder, const std::string& size) {
    const uid_t user = ::getuid();
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", folder.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

// Until not one byte more can be written.
inline void fill_disk(const std::string& folder) {
    const int file = ::open((folder + "/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string block(4096, 'x');
    ssize_t written = 1;
    while (written > 0)
        written = ::write(file, block.data(), block.size());
    EXPECT_EQ(errno, ENOSPC);
    ::close(file);
}

// Does the work in a process for which the folder is an empty disk of that size, "256k" for instance.
// Expectations that it fails are failures of the test.
inline SmallDisk on_small_disk(const std::string& folder, const std::string& size,
                               const std::function<void()>& work) {
    constexpr int failed = 1;
    constexpr int not_to_be_had = 2;
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process == 0) {
        if (!mount_small_disk(folder, size))
            ::_exit(not_to_be_had);
        try {
            work();
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        std::fflush(nullptr);
        ::_exit(testing::Test::HasFailure() ? failed : 0);
    }
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == not_to_be_had)
        return SmallDisk::NotToBeHad;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? SmallDisk::Done : SmallDisk::Failed;
}

} // namespace kestrune
