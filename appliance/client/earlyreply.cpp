#include "client/earlyreply.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <regex>
#include <string>

namespace client {
namespace {

constexpr char kHeadEnd[] = "\r\n\r\n";
constexpr std::size_t kHeadEndBytes = sizeof(kHeadEnd) - 1;
constexpr std::size_t kPieceBytes = 4096;

bool HasInput(int socket) {
    pollfd input{socket, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

std::string ReceiveAll(int socket, std::size_t limitBytes) {
    std::string text;
    std::array<char, kPieceBytes> piece;
    ssize_t size = 0;
    while (text.size() < limitBytes && (size = recv(socket, piece.data(), piece.size(), 0)) > 0) {
        text.append(piece.data(), static_cast<std::size_t>(size));
    }
    return text;
}

std::optional<HttpReply> Parse(const std::string& text) {
    const std::size_t headEnd = text.find(kHeadEnd);
    const std::string head = text.substr(0, headEnd);
    std::smatch status;
    if (headEnd == std::string::npos ||
        !std::regex_search(head, status, std::regex(R"(^HTTP/1\.[01] (\d{3}) )"))) {
        return std::nullopt;
    }
    HttpReply reply;
    reply.status = std::stoi(status[1]);
    reply.body = text.substr(headEnd + kHeadEndBytes);
    std::smatch id;
    if (std::regex_search(head, id, std::regex(R"(\nX-Request-Id: *(\S+))", std::regex::icase))) {
        reply.requestId = id[1];
    }
    return reply;
}

}  // namespace

std::optional<HttpReply> TakeEarlyReply(int socket, std::size_t limitBytes) {
    return HasInput(socket) ? Parse(ReceiveAll(socket, limitBytes)) : std::nullopt;
}

}  // namespace client
