#include "e2e/rawconnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace e2e {

namespace {

constexpr int kPatienceMs = 15'000;

sockaddr_in AddressOf(const std::string& url) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1))));
    return address;
}

}  // namespace

RawConnection::RawConnection(const std::string& url)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_in address = AddressOf(url);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        throw std::runtime_error("cannot connect to " + url);
    }
}

RawConnection::~RawConnection() {
    if (socket_ >= 0) {
        close(socket_);
    }
}

RawConnection::RawConnection(RawConnection&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

bool RawConnection::Send(const std::string& bytes) const {
    return send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

bool RawConnection::Receive(std::string& text) {
    pollfd input{socket_, POLLIN, 0};
    if (poll(&input, 1, kPatienceMs) <= 0) {
        return false;
    }
    std::array<char, 4096> buffer{};
    const ssize_t size = recv(socket_, buffer.data(), buffer.size(), 0);
    isAtEnd_ = size <= 0;
    text.append(buffer.data(), isAtEnd_ ? 0 : static_cast<std::size_t>(size));
    return !isAtEnd_;
}

std::string RawConnection::ReceiveUntil(const std::string& mark) {
    std::string text;
    while (text.find(mark) == std::string::npos && Receive(text)) {
    }
    return text;
}

std::string RawConnection::ReceiveAll() {
    std::string text;
    while (Receive(text)) {
    }
    return text;
}

RawConnection OpenStream(const std::string& url, const std::string& token, const std::string& headers) {
    RawConnection stream(url);
    stream.Send("GET /events HTTP/1.1\r\nAuthorization: Bearer " + token + "\r\n" + headers + "\r\n");
    return stream;
}

std::string PostText(const std::string& method, const std::string& body) {
    return "POST /api/TEST.Module/v1/" + method +
           " HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace e2e
