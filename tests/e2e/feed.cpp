#include "e2e/feed.h"

#include "e2e/processes.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "target/etc/releases.conf";
constexpr char kKey[] = "target/etc/feed.pem";

void RunClient(const std::vector<std::string>& command) {
    const Outcome outcome = Program(command, {"PATH=/usr/bin:/bin"}).Wait();
    EXPECT_EQ(0, outcome.status) << outcome.err;
}

// A port that was free just now, for a server that cannot choose one itself.
int FreePort() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const bool isBound = bind(listener, generic, size) == 0 && getsockname(listener, generic, &size) == 0;
    close(listener);
    return isBound ? ntohs(address.sin_port) : 0;
}

std::string WriteSettings(const TemporaryFolder& folder, const FeedFolder& feed, int port) {
    folder.Write("lighttpd.conf", "server.bind = \"127.0.0.1\"\nserver.port = " + std::to_string(port) +
                                      "\nserver.document-root = \"" + feed.Path() +
                                      "\"\nserver.errorlog = \"" + folder.PathOf("errors") + "\"\n");
    return folder.PathOf("lighttpd.conf");
}

}  // namespace

FeedFolder::FeedFolder(const Appliance& appliance) : client_(appliance.PathOf("camvoractl")) {
    RunClient({client_, "feed", "key", keys_.PathOf("key")});
}

void FeedFolder::Publish(const std::string& name, const std::string& package) const {
    folder_.Write(name, package);
    RunClient({client_, "feed", "build", folder_.Path(), "--key", keys_.PathOf("key")});
}

void FeedFolder::Subscribe(const Appliance& appliance, const std::string& url) const {
    fs::copy_file(keys_.PathOf("key.pub"), appliance.PackagePath(kKey), fs::copy_options::overwrite_existing);
    const fs::path settings = appliance.PackagePath(kSettings);
    const TemporaryFolder fresh;
    fresh.Write("conf", "feed_url=\"" + url + "\"\n");
    fs::copy_file(fresh.PathOf("conf"), settings, fs::copy_options::overwrite_existing);
}

FaultyFeed::FaultyFeed(const FeedFolder& folder) : path_(folder.Path()) {
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
}

FaultyFeed::~FaultyFeed() {
    server_.stop();
    thread_.join();
}

void FaultyFeed::SendIndex(const httplib::Request& request, httplib::Response& response) {
    ++checks_;
    checksAtOnce_ = std::max<int>(checksAtOnce_, ++checksUnderWay_);
    std::this_thread::sleep_for(std::chrono::milliseconds(indexDelayMs_));
    response.set_content(ReadFile(path_ + request.path), "application/json");
    --checksUnderWay_;
}

void FaultyFeed::SendPackage(const httplib::Request& request, httplib::Response& response) {
    if (fault_.status != 200) {
        response.status = fault_.status;
        return;
    }
    std::string content = ReadFile(path_ + request.path);
    if (fault_.isAltered) {
        content[content.size() / 2] ^= 1;
    }
    const FeedFault fault = fault_;
    const auto length = static_cast<std::size_t>(static_cast<long>(content.size()) + fault.lengthError);
    response.set_content_provider(
        length, "application/octet-stream",
        [content, fault](std::size_t offset, std::size_t left, httplib::DataSink& sink) {
            const std::size_t end = std::min(fault.cutAt, content.size());
            if (offset >= end) {
                return false;
            }
            const std::size_t size = std::min({left, end - offset, fault.chunkBytes});
            std::this_thread::sleep_for(fault.pause);
            return sink.write(content.data() + offset, size);
        });
}

StaticFeed::StaticFeed(const FeedFolder& folder)
    : port_(FreePort()),
      server_({"/usr/sbin/lighttpd", "-D", "-f", WriteSettings(settings_, folder, port_)},
              {"PATH=/usr/bin:/bin"}) {
    EXPECT_TRUE(WaitUntil([this] { return static_cast<bool>(httplib::Client(Url()).Head("/")); }));
}

StaticFeed::~StaticFeed() {
    kill(server_.Pid(), SIGTERM);
    (void)server_.Wait();
}

}  // namespace e2e
