#include "fakehost.h"

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kPause{20};

const FakeReply kNoSuchMethod = {
    404, R"({"success":false,"error":{"code":1003,"data":{"text":"no such method"}}})", "", false};

void SendEndlessly(httplib::Response& response, const std::string& piece, const std::string& type) {
    response.set_chunked_content_provider(type, [piece](std::size_t, httplib::DataSink& sink) {
        std::this_thread::sleep_for(kPause);
        return sink.write(piece.data(), piece.size());
    });
}

}  // namespace

FakeHost::FakeHost(std::map<std::string, FakeReply> replies) : replies_(std::move(replies)) {
    const auto answer = [this](const auto& request, auto& response) { Answer(request, response); };
    server_.Get(".*", answer);
    server_.Post(".*", answer);
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) {
        std::this_thread::sleep_for(kPause);
    }
}

FakeHost::~FakeHost() {
    server_.stop();
    thread_.join();
}

std::string FakeHost::Url() const {
    return "http://127.0.0.1:" + std::to_string(port_);
}

std::vector<std::string> FakeHost::Requests() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
}

void FakeHost::AwaitRequests(std::size_t count) {
    while (Requests().size() < count) {
        std::this_thread::sleep_for(kPause);
    }
}

FakeReply FakeHost::TakeReply(const httplib::Request& request) {
    const std::string name = request.method + " " + request.target;
    const std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(name + " " + request.get_header_value("Authorization") + " " + request.body +
                        request.get_header_value("Last-Event-ID"));
    const auto found = replies_.find(name);
    if (found == replies_.end()) {
        return kNoSuchMethod;
    }
    FakeReply reply = found->second;
    if (!reply.next.empty()) {
        found->second = reply.next.front();
        found->second.next.assign(reply.next.begin() + 1, reply.next.end());
    }
    return reply;
}

void FakeHost::Answer(const httplib::Request& request, httplib::Response& response) {
    const FakeReply reply = TakeReply(request);
    response.status = reply.status;
    response.set_header("X-Request-Id", reply.requestId);
    if (reply.isEndless) {
        SendEndlessly(response, reply.body, reply.type);
    } else {
        response.set_content(reply.body, reply.type);
    }
}
