#include "host/intake.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace host {

namespace {

constexpr std::size_t kIdLimitBytes = 64;

// Room for the one descriptor that travels with a message.
union DescriptorSpace {
    cmsghdr header;
    char bytes[CMSG_SPACE(sizeof(int))];
};

bool OpenPair(UniqueFd& first, UniqueFd& second) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return false;
    }
    first = UniqueFd(ends[0]);
    second = UniqueFd(ends[1]);
    return true;
}

bool HandIn(int intake, int connection, const std::string& requestId) {
    iovec id{const_cast<char*>(requestId.data()), requestId.size()};
    DescriptorSpace space{};
    msghdr message{};
    message.msg_iov = &id;
    message.msg_iovlen = 1;
    message.msg_control = &space;
    message.msg_controllen = sizeof(space);
    space.header.cmsg_level = SOL_SOCKET;
    space.header.cmsg_type = SCM_RIGHTS;
    space.header.cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(&space.header), &connection, sizeof(int));
    return sendmsg(intake, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

}  // namespace

std::pair<UniqueFd, UniqueFd> OpenIntake() {
    std::pair<UniqueFd, UniqueFd> ends;
    if (!OpenPair(ends.first, ends.second)) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    return ends;
}

UniqueFd Connect(int intake, const std::string& requestId, int waitLimitS) {
    UniqueFd mine;
    UniqueFd theirs;
    const timeval limit{waitLimitS, 0};
    if (!OpenPair(mine, theirs) ||
        setsockopt(mine.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit)) != 0 ||
        setsockopt(mine.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)) != 0 ||
        !HandIn(intake, theirs.Get(), requestId)) {
        return UniqueFd();
    }
    return mine;
}

Arrival TakeArrival(int intake) {
    std::array<char, kIdLimitBytes> id{};
    iovec piece{id.data(), id.size()};
    DescriptorSpace space{};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = &space;
    message.msg_controllen = sizeof(space);
    const ssize_t size = recvmsg(intake, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (size <= 0 || CMSG_FIRSTHDR(&message) == nullptr) {
        return {};
    }
    int connection = -1;
    std::memcpy(&connection, CMSG_DATA(&space.header), sizeof(connection));
    return {UniqueFd(connection), std::string(id.data(), static_cast<std::size_t>(size))};
}

}  // namespace host
