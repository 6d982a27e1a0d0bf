#include "scriptedserver.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr char kHeadEnd[] = "\r\n\r\n";

bool IsWhole(const std::string& request) {
    const std::size_t head = request.find(kHeadEnd);
    return head != std::string::npos &&
           request.size() >= head + sizeof(kHeadEnd) - 1 + NumberBehind("Content-Length: ", request);
}

// Empty where the client goes away.
std::string Receive(int client) {
    std::string request;
    while (!IsWhole(request)) {
        char piece[1000];
        const ssize_t size = recv(client, piece, sizeof(piece), 0);
        if (size <= 0) {
            return "";
        }
        request.append(piece, static_cast<std::size_t>(size));
    }
    return request;
}

}  // namespace

ScriptedServer::ScriptedServer(Script script)
    : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), script_(std::move(script)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* place = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, place, size) != 0 || listen(listener_, 16) != 0 ||
        getsockname(listener_, place, &size) != 0) {
        std::abort();
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Serve(); });
}

ScriptedServer::~ScriptedServer() {
    isEnded_ = true;
    (void)shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
}

void ScriptedServer::Serve() {
    for (;;) {
        const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            return;
        }
        ServeOne(client);
        (void)shutdown(client, SHUT_RDWR);  // a forked child may have it, too
        close(client);
    }
}

void ScriptedServer::ServeOne(int client) {
    const std::string request = Receive(client);
    if (request.empty()) {
        return;
    }
    requests_.push_back(request);
    const Answer answer = script_(request, requests_.size() - 1);
    bool isHeard = Send(client, answer);
    while (isHeard && !answer.trickle.empty()) {
        std::this_thread::sleep_for(answer.pause);
        isHeard = Send(client, {answer.trickle});
    }
}

bool ScriptedServer::Send(int client, const Answer& answer) const {
    for (std::size_t done = 0; done < answer.bytes.size() && !isEnded_;) {
        if (done > 0 && answer.pieceBytes != std::string::npos) {
            std::this_thread::sleep_for(answer.pause);
        }
        const std::size_t wanted = std::min(answer.pieceBytes, answer.bytes.size() - done);
        const ssize_t size = send(client, answer.bytes.data() + done, wanted, MSG_NOSIGNAL);
        if (size < 0) {
            return false;
        }
        done += static_cast<std::size_t>(size);
    }
    return !isEnded_;
}

std::string HttpAnswer(const std::string& statusAndHeaders, const std::string& body) {
    return "HTTP/1.1 " + statusAndHeaders + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

std::size_t NumberBehind(const std::string& mark, const std::string& text) {
    const std::size_t at = text.find(mark);
    return at == std::string::npos ? 0 : std::stoul(text.substr(at + mark.size()));
}
