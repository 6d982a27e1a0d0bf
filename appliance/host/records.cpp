#include "host/records.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace host {

namespace {

constexpr std::size_t kRecordLimitBytes = std::size_t{64} << 10;

using Buffer = std::array<char, kRecordLimitBytes>;

enum class Kind : std::size_t { kPart, kLastPart, kEnded };

// Stands before the bytes of a record.
struct Head {
    Kind kind;
    std::size_t textSizeBytes;  // of all parts: room for them is made once, and no more than they need
};

bool SendRecord(int socket, Head head, const void* bytes, std::size_t sizeBytes, int flags = 0) {
    std::array<iovec, 2> pieces{{{&head, sizeof(head)}, {const_cast<void*>(bytes), sizeBytes}}};
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    ssize_t sent = 0;
    do {
        sent = sendmsg(socket, &message, MSG_NOSIGNAL | flags);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

// The size of the record, 0 at the end, or -1.
ssize_t ReceiveRecord(int socket, Head& head, Buffer& buffer) {
    std::array<iovec, 2> pieces{{{&head, sizeof(head)}, {buffer.data(), buffer.size()}}};
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    ssize_t size = 0;
    do {
        size = recvmsg(socket, &message, 0);
    } while (size < 0 && errno == EINTR);
    return size;
}

}  // namespace

bool SendText(int socket, const std::string& text) {
    std::size_t offset = 0;
    while (text.size() - offset > kRecordLimitBytes) {
        if (!SendRecord(socket, {Kind::kPart, text.size()}, text.data() + offset, kRecordLimitBytes)) {
            return false;
        }
        offset += kRecordLimitBytes;
    }
    return SendRecord(socket, {Kind::kLastPart, text.size()}, text.data() + offset, text.size() - offset);
}

void SendEnded(int socket, int waitStatus) {
    // The request server must not wait for a client; where the socket is full its end tells as much.
    (void)SendRecord(socket, {Kind::kEnded, 0}, &waitStatus, sizeof(waitStatus), MSG_DONTWAIT);
}

Received ReceiveText(int socket, std::string& text, int& waitStatus) {
    Buffer buffer;  // of which a short record touches little
    text.clear();
    for (;;) {
        Head head{};
        const ssize_t size = ReceiveRecord(socket, head, buffer);
        if (size <= 0) {
            return size < 0 && errno == EAGAIN ? Received::kTimedOut : Received::kClosed;
        }
        if (head.kind == Kind::kEnded) {
            std::memcpy(&waitStatus, buffer.data(), sizeof(waitStatus));
            return Received::kEnded;
        }
        text.reserve(head.textSizeBytes);
        text.append(buffer.data(), static_cast<std::size_t>(size) - sizeof(head));
        if (head.kind == Kind::kLastPart) {
            return Received::kText;
        }
    }
}

}  // namespace host
