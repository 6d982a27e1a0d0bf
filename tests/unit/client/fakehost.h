// Plays the appliance over HTTP: answers what a test wants, well-formed or not.
#pragma once

#include <httplib.h>

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct FakeReply {
    int status = 200;
    std::string body;
    std::string requestId;
    bool isEndless = false;            // the body repeats, slowly, as long as somebody listens
    std::vector<FakeReply> next = {};  // to the same request again; the last one stays
    std::string type = "application/json";
};

// Listens on a free loopback port while it lives.
class FakeHost {
public:
    // `replies`: by "METHOD /path?query"; everything else is a 404 of the host's own.
    explicit FakeHost(std::map<std::string, FakeReply> replies);
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    std::string Url() const;

    // What arrived so far: "METHOD /path?query Authorization body", one text each; a Last-Event-ID stands for
    // the body that such a request has not.
    std::vector<std::string> Requests();

    // Returns when so many requests have arrived.
    void AwaitRequests(std::size_t count);

private:
    void Answer(const httplib::Request& request, httplib::Response& response);
    FakeReply TakeReply(const httplib::Request& request);

    std::map<std::string, FakeReply> replies_;
    std::mutex mutex_;
    std::vector<std::string> requests_;
    httplib::Server server_;
    int port_;
    std::thread thread_;
};
