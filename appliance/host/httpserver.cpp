#include "host/httpserver.h"

#include "host/connection.h"
#include "host/connectionthreads.h"
#include "host/events.h"

#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace host {

HttpServer::HttpServer(UniqueFd listener, const host::Options& options, const EventHub& events)
    : options_(options), listener_(std::move(listener)), stopEvent_(eventfd(0, EFD_CLOEXEC)) {
    if (!stopEvent_.IsOpen()) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    svr_sock_ = listener_.Get();
    new_task_queue = [this, &events] {
        return new ConnectionThreads(options_.connectionLimit, [&events] { return events.StreamCount(); });
    };
    set_write_timeout(options_.readTimeS);
}

bool HttpServer::Serve() {
    return listen_after_bind();
}

void HttpServer::Stop() {
    svr_sock_ = INVALID_SOCKET;
    shutdown(listener_.Get(), SHUT_RDWR);  // ends the wait for a connection
    eventfd_write(stopEvent_.Get(), 1);
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket, stopEvent_.Get(), options_);
    const auto beginBody = [&](httplib::Request& request) {
        // Replies are short and sent as they are: neither in parts nor compressed.
        request.ranges.clear();
        request.headers.erase("Accept-Encoding");
        connection.BeginBody(request);
    };
    bool closes = false;
    while (!closes && connection.WaitForRequest()) {
        const bool isServed = process_request(connection, false, closes, beginBody);
        closes = closes || !isServed || !connection.Flush() || !connection.IsAtRequestEnd();
    }
    connection.Close();
    return true;
}

}  // namespace host
