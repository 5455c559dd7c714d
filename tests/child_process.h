#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kestrune {

// A copy of the test's process that does some work: another program at the same library, or one that is
// killed in the middle of it. The work must not use anything of the test framework's.
class ChildProcess {
public:
    explicit ChildProcess(const std::function<void()>& work) : ChildProcess([] {}, work) {}
    // Made once the preparation in the copy is done and the work begins.
    ChildProcess(const std::function<void()>& prepare, const std::function<void()>& work) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            throw std::runtime_error("no pipe");
        process_ = ::fork();
        if (process_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::close(ends[0]);
            try {
                prepare();
                [[maybe_unused]] const ssize_t told = ::write(ends[1], "r", 1);
                work();
            } catch (...) {
                ::_exit(1);
            }
            ::_exit(0);
        }
        ::close(ends[1]);
        char ready = 0;
        while (::read(ends[0], &ready, 1) < 0 && errno == EINTR) {
        }
        ::close(ends[0]);
    }
    ~ChildProcess() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            wait();
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&&) = delete;
    ChildProcess& operator=(ChildProcess&&) = delete;

    // As a power cut would, but for what the system still holds in memory.
    void kill_after(std::chrono::microseconds delay) {
        std::this_thread::sleep_for(delay);
        ::kill(process_, SIGKILL);
        wait();
    }
    // True when the work was done and went well.
    bool wait() {
        int status = 0;
        while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t process_ = -1;
};

} // namespace kestrune
