#pragma once

#include <unistd.h>
#include <utility>

namespace kestrune {

// An open file, closed when it goes.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    [[nodiscard]] bool valid() const { return fd_ >= 0; }
    [[nodiscard]] int get() const { return fd_; }
    void close() {
        if (valid())
            ::close(std::exchange(fd_, -1));
    }

private:
    int fd_ = -1;
};

} // namespace kestrune
