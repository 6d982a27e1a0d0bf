// A web server that does as a script says, however wrong.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class ScriptedServer {
public:
    struct Answer {
        std::string bytes;    // the whole answer, with its head
        std::string trickle;  // is sent again and again afterwards
        std::chrono::milliseconds pause{20};
        std::size_t pieceBytes = std::string::npos;  // of `bytes`, between two pauses
        bool isHeld = false;                         // the connection stays
    };
    // Given the head of the request and its number, counted from 0.
    using Script = std::function<Answer(const std::string& head, std::size_t number)>;

    // Answers requests on a loopback port, one after the other, and closes each connection.
    explicit ScriptedServer(Script script);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port_); }

    // The heads of the requests so far.
    std::vector<std::string> Requests() const;

private:
    void Serve();
    void ServeOne(int client);
    bool SendInPieces(int client, const Answer& answer) const;
    bool Send(int client, const std::string& bytes) const;

    int port_ = 0;
    int listener_ = -1;
    const Script script_;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::atomic<bool> isEnded_{false};
    std::thread thread_;
};

// The head of an answer, and its body.
std::string HttpAnswer(const std::string& statusAndHeaders, const std::string& body);
