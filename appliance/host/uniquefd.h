// An open file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace host {

class UniqueFd {
public:
    UniqueFd() = default;
    // Owns `fd`; -1 is none.
    explicit UniqueFd(int fd) : fd_(fd) {}
    ~UniqueFd() { Close(); }
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    int Get() const { return fd_; }

    // Gives it up without closing it.
    int Release() { return std::exchange(fd_, -1); }
    bool IsOpen() const { return fd_ >= 0; }
    void Close() {
        if (IsOpen()) {
            close(std::exchange(fd_, -1));
        }
    }

private:
    int fd_ = -1;
};

}  // namespace host
