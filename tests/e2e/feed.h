// A release feed on this machine, as camvoractl publishes it.
#pragma once

#include "e2e/appliance.h"

#include <httplib.h>

#include <atomic>
#include <string>
#include <thread>

namespace e2e {

// How package files are sent.
enum class Sending { kAtOnce, kByteByByte, kNotAtAll };

class Feed {
public:
    // Serves a folder on a port of its own, and makes the appliance ask there.
    explicit Feed(const Appliance& appliance);
    ~Feed();
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    // Publishes the sample package of that name, too.
    void Publish(const std::string& sample) const;

    // From the next package file on.
    void Send(Sending how) { how_ = how; }

    static constexpr int kAllChecks = 1'000'000;

    // From now on so many, then no more.
    void AnswerChecks(int count) { answers_ = count; }

    // How many indexes were asked for, and how many of them at the same time at most.
    int Checks() const { return checks_; }
    int ChecksAtOnce() const { return checksAtOnce_; }

private:
    void Subscribe(const Appliance& appliance) const;
    void SendIndex(const httplib::Request& request, httplib::Response& response);
    void SendPackage(const httplib::Request& request, httplib::Response& response) const;

    const std::string client_;
    const TemporaryFolder folder_;
    const TemporaryFolder keys_;
    std::atomic<Sending> how_{Sending::kAtOnce};
    std::atomic<int> answers_{kAllChecks};
    std::atomic<int> checks_{0};
    std::atomic<int> checksUnderWay_{0};
    std::atomic<int> checksAtOnce_{0};
    httplib::Server server_;
    int port_;
    std::thread thread_;
};

}  // namespace e2e
