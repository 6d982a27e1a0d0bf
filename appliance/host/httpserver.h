// The HTTP library's server on a socket that others opened, with connections of our own.
#pragma once

#include "host/options.h"
#include "host/uniquefd.h"

#include <httplib.h>

#include <functional>

namespace host {

class EventHub;

class HttpServer final : public httplib::Server {
public:
    // Owns `listener`; options and events stay the caller's. Throws std::system_error.
    HttpServer(UniqueFd listener, const host::Options& options, EventHub& events);

    // Sets what tells the size limit of a request's body, in bytes. Before Serve.
    void LimitBodies(std::function<std::size_t(const httplib::Request&)> limit);

    // Serves until Stop; returns when the last connection has ended, true when that was due to Stop.
    bool Serve();

    // Takes no further connection and no further request, and ends the event streams; requests that run are
    // answered. Called by any thread.
    void Stop();

private:
    bool process_and_close_socket(socket_t socket) override;

    const host::Options& options_;
    std::function<std::size_t(const httplib::Request&)> bodyLimit_;
    UniqueFd stopEvent_;
};

}  // namespace host
