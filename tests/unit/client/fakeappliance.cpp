#include "fakeappliance.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kPause{20};
const std::string kMethodPath = "POST /api/ORVA.Camvora.AddOns/v1/";

std::vector<std::string> WordsOf(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string NameOf(const httplib::Request& request) {
    const std::string name = request.method + " " + request.target;
    return name.rfind(kMethodPath, 0) == 0 ? name.substr(kMethodPath.size()) : name;
}

std::string FilesOf(const httplib::Request& request) {
    std::string text;
    for (const auto& [field, file] : request.files) {
        text += field + "=" + file.filename + ":" + file.content;
    }
    return text;
}

void SendEndlessly(httplib::Response& response, const std::string& piece, const std::string& type) {
    response.set_chunked_content_provider(type, [piece](std::size_t, httplib::DataSink& sink) {
        std::this_thread::sleep_for(kPause);
        return sink.write(piece.data(), piece.size());
    });
}

}  // namespace

FakeReply Success(const std::string& data) {
    return {200, R"({"success":true,"data":)" + data + "}", "r1"};
}

FakeReply Error(int httpStatus, const std::string& error) {
    return {httpStatus, R"({"success":false,"error":)" + error + "}", "r1"};
}

FakeReply InTurn(const std::vector<FakeReply>& replies) {
    FakeReply first = replies.front();
    first.next.assign(replies.begin() + 1, replies.end());
    return first;
}

Program StartClient(const std::string& line, const std::vector<std::string>& environment) {
    return Program(WordsOf(CAMVORACTL " " + line), environment);
}

std::vector<std::string> Offered(const std::string& line, const std::string& last,
                                 const std::vector<std::string>& environment) {
    std::vector<std::string> command = WordsOf(CAMVORACTL " complete-words -- " + line);
    command.push_back(last);
    std::istringstream lines(Program(command, environment).Wait().out);
    std::vector<std::string> words;
    for (std::string text; std::getline(lines, text);) {
        words.push_back(text.substr(0, text.find('\t')));
    }
    return words;
}

std::vector<std::string> AllCommands() {
    std::vector<std::string> commands;
    for (const std::string& command : Offered("", "")) {
        const std::vector<std::string> below = Offered(command, "");
        const bool isParent = command == "pkg" || command == "feed" || command == "pair";
        for (const std::string& name : isParent ? below : std::vector<std::string>{""}) {
            commands.push_back(name.empty() ? command : command + " " + name);
        }
    }
    return commands;
}

FakeAppliance::FakeAppliance(FakeReplies replies) : replies_(std::move(replies)) {
    const auto answer = [this](const auto& request, auto& response) { Answer(request, response); };
    server_.Get(".*", answer);
    server_.Post(".*", answer);
    server_.Delete(".*", answer);
    url_ = "http://127.0.0.1:" + std::to_string(server_.bind_to_any_port("127.0.0.1"));
    dir_.Write("token", "secret\n");
    dir_.Write(kAddressFile, url_ + "\n");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) {
        std::this_thread::sleep_for(kPause);
    }
}

FakeAppliance::~FakeAppliance() {
    server_.stop();
    thread_.join();
}

Program FakeAppliance::Start(const std::string& line) const {
    return StartClient(line, {"TZ=UTC", "CAMVORA_DIR=" + dir_.Path()});
}

Outcome FakeAppliance::RunInShell(const std::string& script) const {
    const std::string folder = std::filesystem::path(CAMVORACTL).parent_path();
    return Program({"/bin/sh", "-c", script}, {"PATH=/usr/bin:/bin:" + folder, "CAMVORA_DIR=" + dir_.Path()})
        .Wait();
}

Outcome FakeAppliance::RunAtTerminal(const std::string& line, const std::string& typed,
                                     const std::string& settings) const {
    return RunInShell("printf '" + typed + "' | script -qec 'stty cols 70; " + settings + " camvoractl " +
                      line + "' /dev/null");
}

std::vector<std::string> FakeAppliance::Requests() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
}

void FakeAppliance::AwaitRequests(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex_);
    arrived_.wait(lock, [&] { return requests_.size() >= count; });
}

void FakeAppliance::AwaitRequest(const std::string& beginning) {
    std::unique_lock<std::mutex> lock(mutex_);
    arrived_.wait(lock, [&] {
        return std::any_of(requests_.begin(), requests_.end(),
                           [&](const std::string& request) { return request.rfind(beginning, 0) == 0; });
    });
}

FakeReply FakeAppliance::TakeReply(const httplib::Request& request) {
    const std::string name = NameOf(request);
    const std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(name + " " + request.get_header_value("Authorization") + " " + request.body +
                        FilesOf(request) + request.get_header_value("Last-Event-ID"));
    arrived_.notify_all();
    const auto found = replies_.find(name);
    if (found == replies_.end()) {
        return Success("null");
    }
    FakeReply reply = found->second;
    if (!reply.next.empty()) {
        found->second = InTurn(reply.next);
    }
    return reply;
}

void FakeAppliance::Answer(const httplib::Request& request, httplib::Response& response) {
    const FakeReply reply = TakeReply(request);
    response.status = reply.status;
    response.set_header("X-Request-Id", reply.requestId);
    if (reply.isEndless) {
        SendEndlessly(response, reply.body, reply.type);
    } else {
        response.set_content(reply.body, reply.type);
    }
}
