// A web server that does as a script says, however wrong.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

class ScriptedServer {
public:
    struct Answer {
        std::string bytes;         // the whole answer, with its head
        std::string trickle = {};  // is sent again and again afterwards
        std::chrono::milliseconds pause{20};
        std::size_t pieceBytes = std::string::npos;  // of `bytes`, between two pauses
    };
    // Given the request and its number, counted from 0.
    using Script = std::function<Answer(const std::string& request, std::size_t number)>;

    // Answers requests on a loopback port, one after the other, and closes each connection.
    explicit ScriptedServer(Script script);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port_); }

    // The requests so far, heads and bodies; to be read while none is under way.
    const std::vector<std::string>& Requests() const { return requests_; }

private:
    void Serve();
    void ServeOne(int client);
    bool Send(int client, const Answer& answer) const;

    int port_ = 0;
    int listener_ = -1;
    const Script script_;
    std::vector<std::string> requests_;
    std::atomic<bool> isEnded_{false};
    std::thread thread_;
};

// The head of an answer, and its body.
std::string HttpAnswer(const std::string& statusAndHeaders, const std::string& body);

// The number behind `mark`; 0 where it is not in the text.
std::size_t NumberBehind(const std::string& mark, const std::string& text);
