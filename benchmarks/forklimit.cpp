// The limit of a server that serves each request in a process of its own: the HTTP library of the host, and
// for each request a bare fork, exit and wait. Prints its port and serves until it is ended.
#include <httplib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace {

constexpr std::size_t kThreads = 64;
constexpr std::size_t kReplySizeBytes = 1200;  // about that of "List"

void ServeInBareProcess(const httplib::Request&, httplib::Response& response) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    response.set_content(std::string(kReplySizeBytes, 'x'), "application/json");
}

}  // namespace

int main() {
    httplib::Server server;
    server.set_tcp_nodelay(true);
    server.set_keep_alive_max_count(1'000'000'000);
    server.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server.Post("/list", ServeInBareProcess);
    const int port = server.bind_to_any_port("127.0.0.1");
    std::printf("%d\n", port);
    std::fflush(stdout);
    return port > 0 && server.listen_after_bind() ? 0 : 1;
}
