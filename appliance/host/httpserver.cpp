#include "host/httpserver.h"

#include "host/connection.h"
#include "host/connectionthreads.h"
#include "host/events.h"

#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace host {

namespace {

constexpr int kLookForStopUs = 100'000;

}  // namespace

HttpServer::HttpServer(UniqueFd listener, const host::Options& options, EventHub& events)
    : options_(options), stopEvent_(eventfd(0, EFD_CLOEXEC)) {
    if (!stopEvent_.IsOpen()) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    svr_sock_ = listener.Release();  // the library closes it
    set_idle_interval(0, kLookForStopUs);
    const auto endStreamsAndIdling = [this, &events] {
        events.Stop();
        eventfd_write(stopEvent_.Get(), 1);
    };
    new_task_queue = [this, &events, endStreamsAndIdling] {
        return new ConnectionThreads(
            options_.connectionLimit, [&events] { return events.StreamCount(); }, endStreamsAndIdling);
    };
    set_write_timeout(options_.readTimeS);
}

bool HttpServer::Serve() {
    return listen_after_bind();
}

void HttpServer::LimitBodies(std::function<std::size_t(const httplib::Request&)> limit) {
    bodyLimit_ = std::move(limit);
}

// The socket is not shut down: the supervisor shares it with the process that comes next.
void HttpServer::Stop() {
    svr_sock_ = INVALID_SOCKET;
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket, stopEvent_.Get(), options_);
    const auto beginBody = [&](httplib::Request& request) {
        // Replies are short and sent as they are: neither in parts nor compressed.
        request.ranges.clear();
        request.headers.erase("Accept-Encoding");
        connection.BeginBody(request, bodyLimit_(request));
    };
    bool closes = false;
    while (!closes && connection.WaitForRequest()) {
        const bool isServed = process_request(connection, false, closes, beginBody);
        const bool isSent = connection.Flush();
        closes = closes || !isServed || !isSent || !connection.IsAtRequestEnd();
    }
    connection.Close();
    return true;
}

}  // namespace host
