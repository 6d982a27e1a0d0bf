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
    bool isEndless = false;  // the body repeats, slowly, as long as somebody listens
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

    // What arrived so far: "METHOD /path?query Authorization body", one text each.
    std::vector<std::string> Requests();

    // Returns when a request has arrived.
    void AwaitRequest();

private:
    void Answer(const httplib::Request& request, httplib::Response& response);

    std::map<std::string, FakeReply> replies_;
    std::mutex mutex_;
    std::vector<std::string> requests_;
    httplib::Server server_;
    int port_;
    std::thread thread_;
};
