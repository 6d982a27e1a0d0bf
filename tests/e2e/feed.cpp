#include "e2e/feed.h"

#include "e2e/packages.h"
#include "e2e/processes.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kPauseAfterAByte{100};

void RunClient(const std::vector<std::string>& command) {
    const Outcome outcome = Program(command, {"PATH=/usr/bin:/bin"}).Wait();
    EXPECT_EQ(0, outcome.status) << outcome.err;
}

}  // namespace

Feed::Feed(const Appliance& appliance) : client_(appliance.PathOf("camvoractl")) {
    constexpr std::size_t kThreads = 64;
    server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_.Get(R"(/.*\.json)", [this](const httplib::Request& request, httplib::Response& response) {
        SendIndex(request, response);
    });
    server_.Get(R"(/.*\.spk)", [this](const httplib::Request& request, httplib::Response& response) {
        SendPackage(request, response);
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    RunClient({client_, "feed", "key", keys_.PathOf("key")});
    Subscribe(appliance);
}

Feed::~Feed() {
    server_.stop();
    thread_.join();
}

void Feed::Subscribe(const Appliance& appliance) const {
    fs::copy_file(keys_.PathOf("key.pub"), appliance.PackagePath("target/etc/feed.pem"));
    std::ofstream(appliance.PackagePath("target/etc/releases.conf"))
        << "feed_url=\"http://127.0.0.1:" << port_ << "\"\n";
}

void Feed::Publish(const std::string& sample) const {
    fs::copy_file(SamplePath(sample), folder_.PathOf(sample + ".spk"));
    RunClient({client_, "feed", "build", folder_.Path(), "--key", keys_.PathOf("key")});
}

void Feed::SendIndex(const httplib::Request& request, httplib::Response& response) {
    ++checks_;
    checksAtOnce_ = std::max<int>(checksAtOnce_, ++checksUnderWay_);
    if (answers_-- > 0) {
        response.set_content(ReadFile(folder_.Path() + request.path), "application/json");
    } else {
        response.status = 503;
    }
    --checksUnderWay_;
}

void Feed::SendPackage(const httplib::Request& request, httplib::Response& response) const {
    const std::string content = ReadFile(folder_.Path() + request.path);
    switch (how_) {
        case Sending::kAtOnce:
            response.set_content(content, "application/octet-stream");
            break;
        case Sending::kByteByByte:
            response.set_content_provider(
                content.size(), "application/octet-stream",
                [content](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                    std::this_thread::sleep_for(kPauseAfterAByte);
                    return sink.write(content.data() + offset, 1);
                });
            break;
        case Sending::kNotAtAll:
            response.status = 404;
    }
}

}  // namespace e2e
