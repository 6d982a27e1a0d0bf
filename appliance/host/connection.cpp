#include "host/connection.h"

#include "host/bodysize.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace host {

namespace {

constexpr std::size_t kHeadLimitBytes = std::size_t{64} << 10;
constexpr std::size_t kHeldLimitBytes = std::size_t{64} << 10;
constexpr std::uint64_t kChunkingFactor = 4;  // chunks of a few bytes are mostly frame
constexpr std::size_t kSlowestBytesPerS = std::size_t{16} << 10;
constexpr std::chrono::seconds kLinger{2};

int ToPollTime(std::chrono::steady_clock::duration duration) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(duration).count();
    return static_cast<int>(std::max<decltype(milliseconds)>(milliseconds, 0));
}

}  // namespace

Connection::Connection(int socket, int stopEvent, const Options& options)
    : socket_(socket), stopEvent_(stopEvent), idleTime_(options.idleTimeS), readTime_(options.readTimeS) {}

bool Connection::WaitForRequest() {
    const bool isThere = begin_ == end_ ? WaitForInput(idleTime_) : !IsStopped();
    if (!isThere) {
        return false;
    }
    inHead_ = true;
    partBegin_ = Clock::now();
    partSizeBytes_ = 0;
    holdsHead_ = true;
    return true;
}

void Connection::BeginBody(const httplib::Request& request, std::size_t limitBytes) {
    inHead_ = false;
    partBegin_ = Clock::now();
    partSizeBytes_ = 0;
    chunkedLimitBytes_ = limitBytes * kChunkingFactor;
    isBodySized_ = FramingOf(request) == BodyFraming::kSized;
    bodyLeftBytes_ = AnnouncedSize(request);
}

bool Connection::IsAtRequestEnd() const {
    return !inHead_ && isBodySized_ && bodyLeftBytes_ == 0;
}

bool Connection::IsStopped() const {
    pollfd event{stopEvent_, POLLIN, 0};
    return poll(&event, 1, 0) != 0;
}

bool Connection::WaitForInput(Clock::duration limit) const {
    std::array<pollfd, 2> events{{{socket_.Get(), POLLIN, 0}, {stopEvent_, POLLIN, 0}}};
    poll(events.data(), events.size(), ToPollTime(limit));
    return events[0].revents != 0 && events[1].revents == 0;
}

// What frames a chunked body counts too: the library collects a line of it however long it is.
bool Connection::IsWithinLimits() const {
    if (inHead_) {
        return partSizeBytes_ <= kHeadLimitBytes;
    }
    return isBodySized_ || partSizeBytes_ <= chunkedLimitBytes_;
}

// A body may take longer the more of it has come, at the slowest rate.
Connection::Clock::duration Connection::TimeLeft() const {
    const auto earned = std::chrono::seconds(inHead_ ? 0 : partSizeBytes_ / kSlowestBytesPerS);
    const Clock::duration left = partBegin_ + readTime_ + earned - Clock::now();
    return std::min<Clock::duration>(left, readTime_);
}

// The result of recv; -1 also when a limit is reached.
ssize_t Connection::Fill() {
    if (!Flush() || !IsWithinLimits() || !WaitForInput(TimeLeft())) {
        return -1;
    }
    holdsHead_ = true;
    const ssize_t size = recv(socket_.Get(), buffer_.data(), buffer_.size(), 0);
    begin_ = 0;
    end_ = size > 0 ? static_cast<std::size_t>(size) : 0;
    return size;
}

ssize_t Connection::read(char* bytes, std::size_t sizeBytes) {
    if (begin_ == end_) {
        const ssize_t filled = Fill();
        if (filled <= 0) {
            return filled;
        }
    }
    const std::size_t size = std::min(sizeBytes, end_ - begin_);
    std::memcpy(bytes, buffer_.data() + begin_, size);
    begin_ += size;
    partSizeBytes_ += size;
    if (!inHead_) {
        bodyLeftBytes_ -= std::min<std::uint64_t>(bodyLeftBytes_, size);
    }
    return static_cast<ssize_t>(size);
}

ssize_t Connection::write(const char* bytes, std::size_t sizeBytes) {
    if (sizeBytes > kHeldLimitBytes) {
        holdsHead_ = false;
        return Flush() && Send(bytes, sizeBytes) ? static_cast<ssize_t>(sizeBytes) : -1;
    }
    held_.append(bytes, sizeBytes);
    if (!std::exchange(holdsHead_, false) && !Flush()) {
        return -1;
    }
    return static_cast<ssize_t>(sizeBytes);
}

bool Connection::Flush() {
    if (!Send(held_.data(), held_.size())) {
        return false;
    }
    held_.clear();
    return true;
}

bool Connection::Send(const char* bytes, std::size_t sizeBytes) {
    while (sizeBytes > 0) {
        const ssize_t sent = send(socket_.Get(), bytes, sizeBytes, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) {
            return false;
        }
        const auto size = static_cast<std::size_t>(std::max<ssize_t>(sent, 0));
        bytes += size;
        sizeBytes -= size;
    }
    return true;
}

void Connection::Close() {
    if (!IsAtRequestEnd()) {
        // A reset, sent in answer to what was not read, could overtake the reply.
        shutdown(socket_.Get(), SHUT_WR);
        const auto deadline = Clock::now() + kLinger;
        while (WaitForInput(deadline - Clock::now()) &&
               recv(socket_.Get(), buffer_.data(), buffer_.size(), 0) > 0) {
        }
    }
    socket_.Close();
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip.clear();
    port = 0;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    ip.clear();
    port = 0;
}

}  // namespace host
