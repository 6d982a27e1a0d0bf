#include "scriptedserver.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace {

bool IsClosed(int client) {
    char byte = 0;
    return recv(client, &byte, 1, MSG_DONTWAIT) == 0;
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

std::vector<std::string> ScriptedServer::Requests() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
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
    std::string head;
    while (head.find("\r\n\r\n") == std::string::npos) {
        char piece[1000];
        const ssize_t size = recv(client, piece, sizeof(piece), 0);
        if (size <= 0) {
            return;
        }
        head.append(piece, static_cast<std::size_t>(size));
    }
    const std::size_t number = Requests().size();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        requests_.push_back(head);
    }
    const Answer answer = script_(head, number);
    bool isHeard = SendInPieces(client, answer);
    while (isHeard && (answer.isHeld || !answer.trickle.empty())) {
        isHeard = Send(client, answer.trickle) && !IsClosed(client);
        std::this_thread::sleep_for(answer.pause);
    }
}

bool ScriptedServer::SendInPieces(int client, const Answer& answer) const {
    if (answer.pieceBytes == std::string::npos) {
        return Send(client, answer.bytes);
    }
    for (std::size_t at = 0; at < answer.bytes.size(); at += answer.pieceBytes) {
        if (!Send(client, answer.bytes.substr(at, answer.pieceBytes))) {
            return false;
        }
        std::this_thread::sleep_for(answer.pause);
    }
    return true;
}

bool ScriptedServer::Send(int client, const std::string& bytes) const {
    std::size_t done = 0;
    while (done < bytes.size() && !isEnded_) {
        const ssize_t size = send(client, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
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
