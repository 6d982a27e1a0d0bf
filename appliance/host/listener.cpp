#include "host/listener.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace host {

namespace {

constexpr int kBacklog = 128;
constexpr unsigned kSilentPeerLimitMs = 30'000;  // for what was sent and not acknowledged

using AddressInfo = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressInfo Resolve(const std::string& address, int port) {
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error != 0) {
        throw std::runtime_error("cannot listen on " + address + ", which is no numeric address (" +
                                 gai_strerror(error) + ")");
    }
    return AddressInfo(found, &freeaddrinfo);
}

bool Open(const UniqueFd& socket, const addrinfo& address) {
    // Accepted connections inherit all of it.
    const int yes = 1;
    setsockopt(socket.Get(), IPPROTO_TCP, TCP_USER_TIMEOUT, &kSilentPeerLimitMs, sizeof(kSilentPeerLimitMs));
    setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    setsockopt(socket.Get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof(yes));
    return bind(socket.Get(), address.ai_addr, address.ai_addrlen) == 0 &&
           listen(socket.Get(), kBacklog) == 0;
}

std::string UrlOf(const UniqueFd& socket) {
    sockaddr_storage bound{};
    socklen_t size = sizeof(bound);
    getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&bound), &size);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    getnameinfo(reinterpret_cast<const sockaddr*>(&bound), size, host.data(), host.size(), port.data(),
                port.size(), NI_NUMERICHOST | NI_NUMERICSERV);
    std::string name = host.data();
    if (bound.ss_family == AF_INET6) {
        name = name == "::" ? "[::1]" : "[" + name + "]";
    } else if (name == "0.0.0.0") {
        name = "127.0.0.1";
    }
    return "http://" + name + ":" + port.data();
}

}  // namespace

Listener Listen(const std::string& address, int port) {
    const AddressInfo info = Resolve(address, port);
    UniqueFd socket(::socket(info->ai_family, info->ai_socktype | SOCK_CLOEXEC, info->ai_protocol));
    if (!Open(socket, *info)) {
        throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port) + ": " +
                                 std::generic_category().message(errno));
    }
    std::string url = UrlOf(socket);
    return {std::move(socket), std::move(url)};
}

}  // namespace host
