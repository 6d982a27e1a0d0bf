// Release feeds on this machine, as camvoractl publishes them.
#pragma once

#include "e2e/appliance.h"

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>

namespace e2e {

// Folder, key and settings of a feed; somebody else serves it.
class FeedFolder {
public:
    // Makes a key with the client of `appliance`.
    explicit FeedFolder(const Appliance& appliance);

    // Publishes the package, in place of another one of that name.
    void Publish(const std::string& name, const std::string& package) const;

    // Makes `appliance` ask the feed at `url` from now on.
    void Subscribe(const Appliance& appliance, const std::string& url) const;

    const std::string& Path() const { return folder_.Path(); }
    std::string PathOf(const std::string& name) const { return folder_.PathOf(name); }

private:
    std::string client_;
    TemporaryFolder folder_;
    TemporaryFolder keys_;
};

// What goes wrong with each package file that is sent.
struct FeedFault {
    int status = 200;                       // anything else is the whole answer
    std::size_t cutAt = std::string::npos;  // the connection ends before this byte
    long lengthError = 0;                   // added to the announced length
    bool isAltered = false;                 // one bit of it
    std::size_t chunkBytes = std::size_t{64} << 10U;
    std::chrono::milliseconds pause{0};  // after each chunk
};

// A server of the folder that may misbehave, on a port of its own.
class FaultyFeed {
public:
    explicit FaultyFeed(const FeedFolder& folder);
    ~FaultyFeed();
    FaultyFeed(const FaultyFeed&) = delete;
    FaultyFeed& operator=(const FaultyFeed&) = delete;

    std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_); }

    // From the next request on. Call it while none is under way.
    void SetFault(const FeedFault& fault) { fault_ = fault; }

    // How long an index takes from now on.
    void SetIndexDelay(std::chrono::milliseconds delay) { indexDelayMs_ = delay.count(); }

    // How many indexes were asked for, and how many of them at the same time at most.
    int Checks() const { return checks_; }
    int ChecksAtOnce() const { return checksAtOnce_; }

private:
    void SendIndex(const httplib::Request& request, httplib::Response& response);
    void SendPackage(const httplib::Request& request, httplib::Response& response);

    const std::string path_;
    FeedFault fault_;
    std::atomic<long> indexDelayMs_{0};
    std::atomic<int> checks_{0};
    std::atomic<int> checksUnderWay_{0};
    std::atomic<int> checksAtOnce_{0};
    httplib::Server server_;
    int port_;
    std::thread thread_;
};

// lighttpd with the folder, on a port of its own.
class StaticFeed {
public:
    explicit StaticFeed(const FeedFolder& folder);
    ~StaticFeed();
    StaticFeed(const StaticFeed&) = delete;
    StaticFeed& operator=(const StaticFeed&) = delete;

    std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_); }

private:
    TemporaryFolder settings_;
    int port_;
    Program server_;
};

}  // namespace e2e
